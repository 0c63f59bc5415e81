#include "cli/record_keeper.hpp"

#include "cli/runtime_file.hpp"

namespace vorn::cli {
namespace fs = std::filesystem;
namespace {

/// For another process that is writing the record.
constexpr std::chrono::milliseconds kPatience{2000};

ProbeRecord runtimeRecord() {
    const auto file = findRuntimeFile(kRuntimeRecord);
    return file ? ProbeRecordStore(*file).load() : ProbeRecord();
}

void forgetRuntimeRecord() {
    if (const auto file = findRuntimeFile(kRuntimeRecord)) {
        std::error_code ignored;
        fs::remove(*file, ignored);
    }
}

}  // namespace

/// What is kept elsewhere counts while nobody has asked since; a reset that was announced in the file counts anyway.
ProbeRecord RecordKeeper::newest(ProbeRecord stored) const {
    ProbeRecord elsewhere = m_held ? *m_held : runtimeRecord();
    if (!m_held && elsewhere.lastProbeAt <= stored.lastProbeAt) {
        return stored;
    }
    elsewhere.expectedResets.merge(stored.expectedResets);
    return elsewhere;
}

ProbeRecord RecordKeeper::load() const {
    return newest(m_store.load());
}

ProbeRecord RecordKeeper::edit(const std::function<void(ProbeRecord&)>& change) {
    try {
        ProbeRecord record = m_store.edit(
            [&](ProbeRecord& stored) {
                stored = newest(std::move(stored));
                change(stored);
            },
            kPatience);
        m_held.reset();
        forgetRuntimeRecord();
        return record;
    } catch (const fs::filesystem_error&) {
        ProbeRecord record = load();
        change(record);
        const auto file = makeRuntimeFile(kRuntimeRecord);
        if (file && ProbeRecordStore(*file).save(record)) {
            m_held.reset();
        } else {
            m_held = record;
        }
        return record;
    }
}

}  // namespace vorn::cli
