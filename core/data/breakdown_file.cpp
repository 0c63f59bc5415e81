#include "core/data/breakdown_file.hpp"

#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr Seconds kLifetime{86400};
constexpr std::chrono::milliseconds kPatience{50};
constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

}  // namespace

std::optional<UsageInsights> loadBreakdown(Instant now) try {
    const auto content = readFile(VornPaths::breakdown(), kLargestFile);
    const auto document = content ? parseJson(*content) : std::nullopt;
    if (!document) {
        return std::nullopt;
    }
    UsageInsights breakdown = decodeUsageInsights(*document, DateCoding::secondsSince1970);
    // One from the future was kept before the clock was set back.
    const bool isFresh = breakdown.observedAt <= now && now - breakdown.observedAt <= kLifetime;
    return isFresh ? std::optional(std::move(breakdown)) : std::nullopt;
} catch (const DecodingError&) {
    return std::nullopt;
}

void saveBreakdown(const std::optional<UsageInsights>& breakdown) {
    if (!breakdown) {
        return;
    }
    try {
        const fs::path file = VornPaths::breakdown();
        const FileLock lock = FileLock::beside(file, kPatience);
        removeAbandonedTemporaries(file);
        replaceFile(file, dumpJson(encode(*breakdown, DateCoding::secondsSince1970), true) + "\n");
    } catch (const fs::filesystem_error&) {
        // It will be printed again; and where another one keeps the file, that one has just been told.
    }
}

}  // namespace vorn
