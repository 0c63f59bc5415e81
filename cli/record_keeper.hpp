#pragma once

#include <functional>
#include <optional>

#include "core/data/probe_record.hpp"
#include "core/data/vorn_paths.hpp"

namespace vorn::cli {

/// The ending of the file that stands in for `probe.json` while that cannot be written.
inline constexpr const char* kRuntimeRecord = ".probe.json";

/// The record of asking the client. It belongs into Vorn's folder; while that cannot be written it is kept in the
/// user's runtime folder, so that a bar that runs vornctl every few seconds does not ask the client each time, and
/// where even that fails, in this object.
class RecordKeeper {
public:
    /// The newest record of those that are kept.
    [[nodiscard]] ProbeRecord load() const;

    /// Applies the change to the record as it stands, with other editors locked out. Returns the changed record.
    ProbeRecord edit(const std::function<void(ProbeRecord&)>& change);

    /// Keeps the record in this object alone, for a run that writes nothing.
    void hold(ProbeRecord record) { m_held = std::move(record); }

private:
    [[nodiscard]] ProbeRecord newest(ProbeRecord stored) const;

    ProbeRecordStore m_store{VornPaths::probeRecord()};
    std::optional<ProbeRecord> m_held;
};

}  // namespace vorn::cli
