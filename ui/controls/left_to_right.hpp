#pragma once

#include <QString>
#include <string>

#include "core/wording/phrase.hpp"

namespace vorn {

/// Keeps numbers with signs and units, and times of day, in order inside right-to-left layouts.
QString leftToRight(const std::string& utf8);

/// The phrase with its figures so kept.
QString shownPhrase(const Format::Phrase& phrase);

}  // namespace vorn
