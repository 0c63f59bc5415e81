#include "core/data/reset_plan_store.hpp"

#include <utility>

#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;  // bytes

ResetPlan decode(std::string_view text) {
    const auto document = parseJson(text);
    if (!document) {
        throw DecodingError("The reset plan is not JSON.");
    }
    return decodeResetPlan(*document, DateCoding::iso8601);
}

/// A missing or damaged one is an empty one.
ResetPlan decodeLeniently(const std::optional<std::string>& text) try {
    return text ? decode(*text) : ResetPlan{};
} catch (const DecodingError&) {
    return {};
}

}  // namespace

ResetPlanStore::ResetPlanStore(fs::path file) : m_file(std::move(file)) {}

ResetPlan ResetPlanStore::load() const {
    return decodeLeniently(readFile(m_file, kLargestFile));
}

void ResetPlanStore::save(const ResetPlan& plan) const {
    createPrivateDirectories(m_file.parent_path());
    const std::string text = dumpJson(encode(plan, DateCoding::iso8601), /*pretty=*/true);
    // A date beyond the year 9999 or an id that is no UUID would make the whole plan unreadable: better refuse it.
    static_cast<void>(decode(text));
    replaceFile(m_file, text);
}

void ResetPlanStore::keepIfDamaged() const {
    const auto text = readFile(m_file, kLargestFile);
    if (!text || text->empty()) {
        return;
    }
    try {
        static_cast<void>(decode(*text));
    } catch (const DecodingError&) {
        fs::path copy = m_file;
        copy += ".damaged";
        replaceFile(copy, *text);
    }
}

ResetPlan ResetPlanStore::edit(const std::function<void(ResetPlan&)>& change,
                               std::chrono::milliseconds patience) const {
    const FileLock lock = FileLock::beside(m_file, patience);
    const ResetPlan before = decodeLeniently(readToReplace(m_file, kLargestFile));
    ResetPlan after = before;
    change(after);
    if (after != before) {
        removeAbandonedTemporaries(m_file);
        keepIfDamaged();
        save(after);
    }
    return after;
}

}  // namespace vorn
