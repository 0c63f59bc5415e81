#pragma once

#include <QString>
#include <string>

#include "core/wording/phrase.hpp"

namespace vorn {

/// Keeps numbers with signs and units, and times of day, in order inside right-to-left layouts.
QString leftToRight(const std::string& utf8);

/// The phrase as one text, with its figures kept from left to right.
QString shownPhrase(const Format::Phrase& phrase);

}  // namespace vorn
