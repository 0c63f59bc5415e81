#pragma once

#include <filesystem>
#include <string>

#include "core/support/time.hpp"

namespace vorn {

/// What the user chose in the application and a program without its settings honours as well.
struct SharedChoices {
    std::string claudePath;        ///< The executable to ask; empty: it is looked for.
    bool useLocalActivity = true;  ///< Whether rates may come from the transcripts.
    Seconds refresh{300};          ///< How often a client is asked that answers; a minute to a day.
    bool operator==(const SharedChoices&) const = default;
};

/// Each choice that the file lacks or that means nothing is the default.
SharedChoices loadSharedChoices(const std::filesystem::path& file);

/// Throws std::filesystem::filesystem_error; the old file then stands.
void saveSharedChoices(const std::filesystem::path& file, const SharedChoices& choices);

}  // namespace vorn
