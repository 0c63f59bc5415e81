#pragma once

#include <QObject>
#include <filesystem>

#include "core/data/shared_choices.hpp"

namespace vorn {

class Preferences;

/// Leaves what the terminal tool honours of the preferences where it looks for it, at once and after every change, for
/// as long as the object lives. Not for a demonstration. Main thread only.
class ChoicesFile : public QObject {
    Q_OBJECT

public:
    /// `preferences` must outlive this.
    ChoicesFile(const Preferences& preferences, std::filesystem::path file, QObject* parent = nullptr);

private:
    /// Writes the file if it would differ; a failure is tried again with the next change.
    void write() const;

    const Preferences& m_preferences;
    std::filesystem::path m_file;
};

}  // namespace vorn
