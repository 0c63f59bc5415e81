#pragma once

#include <filesystem>

#include "model/model_sources.hpp"

namespace vorn {

/// The file in which the relay leaves what it was told.
class SnapshotFile : public SnapshotSource {
public:
    explicit SnapshotFile(std::filesystem::path file) : m_file(std::move(file)) {}

    [[nodiscard]] std::optional<FileStamp> stamp() const override { return fileStamp(m_file); }
    [[nodiscard]] std::optional<StatusLineSnapshot> read() const override { return StatusLineSnapshot::read(m_file); }

private:
    std::filesystem::path m_file;
};

}  // namespace vorn
