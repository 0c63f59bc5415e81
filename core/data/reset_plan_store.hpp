#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

#include "core/data/reset_plan.hpp"
#include "core/support/file.hpp"

namespace vorn {

/// The plan's file: one JSON object, made for reading by people too. Dates are kept to the whole second.
class ResetPlanStore {
public:
    /// How long `edit` waits for another process by default: it is called on the application's main thread.
    static constexpr std::chrono::milliseconds defaultPatience{50};

    explicit ResetPlanStore(std::filesystem::path file);

    /// Never fails: a file that is missing, unreadable or not wholly a plan is the empty plan.
    [[nodiscard]] ResetPlan load() const;

    /// Stands for the file's content, to be compared before it is read again; see `fileStamp`.
    [[nodiscard]] std::optional<FileStamp> stamp() const { return fileStamp(m_file); }

    /// Replaces the file, creating its directory where that is missing. Throws std::filesystem::filesystem_error, and
    /// DecodingError for a plan that `load` could not read back; the old file then stands.
    void save(const ResetPlan& plan) const;

    /// Applies a change to the plan as it stands in the file, with every other editor locked out, so that the
    /// application and the terminal do not undo each other's changes. Returns the plan after the change; when that
    /// is the same as before, nothing is written. A file that is no plan is first copied beside it, with ".damaged"
    /// appended, so that a mistake in editing it by hand costs nothing. Throws as `save` does, and
    /// std::filesystem::filesystem_error with `device_or_resource_busy` when the lock cannot be had in time.
    ResetPlan edit(const std::function<void(ResetPlan&)>& change,
                   std::chrono::milliseconds patience = defaultPatience) const;

private:
    void keepIfDamaged() const;

    std::filesystem::path m_file;
};

}  // namespace vorn
