#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "core/data/probe_record.hpp"

namespace vorn {

class BackgroundQueue;

/// The record of asking the client, which the terminal keeps too: each learns what the other was told, so that none
/// hammers a client that fails, and a fall that both saw is believed.
class ProbeMemory {
public:
    struct News {
        ProbeRecord record;
        std::set<WindowKind> announced;  ///< Resets that another program was told to expect, new in the record.
    };

    /// `disk` must outlive this.
    ProbeMemory(ProbeRecordStore store, BackgroundQueue& disk);

    /// What the file has when it is not what was last seen.
    std::optional<News> read();
    /// Makes the file say `mine`, in the background, except for what another program learnt since. Nothing is written
    /// that would only repeat the file.
    void save(ProbeRecord mine);

    /// Called on the main thread when a save found something in the file.
    std::function<void(News)> onNews;

private:
    struct Shared;

    [[nodiscard]] News newsIn(ProbeRecord record);
    void finishSave(const std::optional<ProbeRecord>& record);

    ProbeRecordStore m_store;
    BackgroundQueue& m_disk;
    const std::shared_ptr<Shared> m_shared;  ///< With the saving jobs.
    bool m_isRead = false;
    std::optional<FileStamp> m_stamp;  ///< Of the file as it was last seen.
    ProbeRecord m_seen;                ///< What it held.
    std::set<WindowKind> m_announced;  ///< Resets that are no news when the file has them.
    int m_saves = 0;                   ///< Jobs that have not answered yet.
};

}  // namespace vorn
