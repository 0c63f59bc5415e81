#pragma once

#include <filesystem>

#include "model/model_sources.hpp"

namespace vorn {

/// The file in which the relay leaves what it was told.
class SnapshotFile : public SnapshotSource {
public:
    /// `more`: where the limits lie that it has no place for.
    SnapshotFile(std::filesystem::path file, std::filesystem::path more)
        : m_file(std::move(file)), m_more(std::move(more)) {}

    [[nodiscard]] std::optional<FileStamp> stamp() const override { return fileStamp(m_file); }
    [[nodiscard]] std::optional<StatusLineSnapshot> read() const override { return StatusLineSnapshot::read(m_file); }
    [[nodiscard]] std::optional<MoreLimits> readMore() const override { return readMoreLimits(m_more); }

private:
    std::filesystem::path m_file;
    std::filesystem::path m_more;
};

}  // namespace vorn
