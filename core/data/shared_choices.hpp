#pragma once

#include <filesystem>
#include <string>

#include "core/support/time.hpp"

namespace vorn {

/// Choices of the user in the application that `vornctl`, which cannot read its settings, follows as well.
struct SharedChoices {
    std::string claudePath;        ///< The executable to ask; empty: it is looked for.
    bool useLocalActivity = true;  ///< Whether rates may come from the transcripts.
    Seconds refresh{300};          ///< How often to ask a client that answers; 1 minute to 1 day.
    bool operator==(const SharedChoices&) const = default;
};

/// A choice that is missing or invalid in the file is the default.
SharedChoices loadSharedChoices(const std::filesystem::path& file);

/// Throws std::filesystem::filesystem_error; the old file then stands.
void saveSharedChoices(const std::filesystem::path& file, const SharedChoices& choices);

}  // namespace vorn
