#include "core/usage_command/client_state.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "core/data/claude_paths.hpp"
#include "core/data/limit_names.hpp"
#include "core/data/rate_limits.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/member_text.hpp"
#include "core/support/stable_hash.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;

bool isWhole(double percent) {
    return percent == std::floor(percent);
}

bool isSameReset(std::optional<Instant> one, std::optional<Instant> other) {
    using std::chrono::minutes;
    if (!one || !other) {
        return one.has_value() == other.has_value();
    }
    return std::chrono::floor<minutes>(*one) == std::chrono::floor<minutes>(*other);
}

bool saysTheSame(const UsageWindow& told, const UsageWindow& kept) {
    const double share = isWhole(told.usedPercent) ? std::floor(kept.usedPercent) : kept.usedPercent;
    return told.usedPercent == share && isSameReset(told.resetsAt, kept.resetsAt);
}

}  // namespace

bool CachedUsage::isIn(const ClientAnswer& answer) const {
    bool isAny = false;
    for (const UsageWindow& told : answer.windows) {
        const auto kept =
            std::ranges::find_if(windows, [&](const UsageWindow& each) { return isSameLimit(each.kind, told.kind); });
        if (kept != windows.end() && !saysTheSame(told, *kept)) {
            return false;
        }
        isAny = isAny || kept != windows.end();
    }
    return isAny;
}

std::filesystem::path clientStateFile() {
    const auto directory = environmentValue("CLAUDE_CONFIG_DIR");
    return (directory ? expandTilde(*directory) : homeDirectory()) / ".claude.json";
}

std::optional<CachedUsage> readCachedUsage(const std::filesystem::path& stateFile) {
    const auto content = readFile(stateFile, kLargestFile);
    const auto member = content ? parseJson(memberText(*content, "cachedUsageUtilization")) : std::nullopt;
    const auto* const fetchedAt = member ? findMember(*member, "fetchedAtMs") : nullptr;
    const auto* const limits = member ? findMember(*member, "utilization") : nullptr;
    if (fetchedAt == nullptr || !fetchedAt->is_number() || limits == nullptr) {
        return std::nullopt;
    }
    CachedUsage cached{.fetchedAt = instantSince1970(fetchedAt->get<double>() / 1000)};
    if (!isPlausible(cached.fetchedAt)) {
        return std::nullopt;
    }
    cached.windows = decodeRateLimits(*limits, cached.fetchedAt, DataSource::usageCommand).windows;
    if (const auto* const account = findMember(*member, "accountUuid"); account != nullptr && account->is_string()) {
        cached.account = fmt::format("{:016x}", stableHash(account->get_ref<const std::string&>()));
    }
    return cached;
}

void dateAnswer(ClientAnswer& answer, const CachedUsage& cached) {
    answer.account = cached.account;
    if (!cached.isIn(answer)) {
        return;
    }
    answer.fetchedAt = std::min(cached.fetchedAt, answer.answeredAt);
    for (UsageWindow& window : answer.windows) {
        window.observedAt = answer.fetchedAt;
    }
    if (answer.others) {
        for (OtherLimit& limit : answer.others->limits) {
            limit.observedAt = answer.fetchedAt;
        }
        if (answer.others->credits) {
            answer.others->credits->observedAt = answer.fetchedAt;
        }
    }
}

}  // namespace vorn
