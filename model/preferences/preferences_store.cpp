#include "model/preferences/preferences_store.hpp"

#include <QFile>
#include <filesystem>

#include "core/support/file.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLargestFile = 16U << 20U;  // bytes; usually some hundreds

/// QSettings parses a section of the file when its keys are asked for and not before.
QSettings::Status wholeStatus(const QSettings& settings) {
    static_cast<void>(settings.allKeys());
    return settings.status();
}

}  // namespace

PreferencesStore::PreferencesStore(std::unique_ptr<QSettings> settings) : m_settings(std::move(settings)) {
    const QSettings::Status status = wholeStatus(*m_settings);
    if (status == QSettings::FormatError) {
        m_isDamaged = true;
        m_problem =
            QStringLiteral("The settings file %1 is damaged. What cannot be read in it is at its default.").arg(file());
    } else if (status == QSettings::AccessError) {
        m_problem = QStringLiteral("The settings in %1 cannot be read. Changes hold until Vorn quits.").arg(file());
    } else if (QFile::exists(file()) && !m_settings->isWritable()) {
        m_problem = QStringLiteral("The settings file %1 is read-only. Changes hold until Vorn quits.").arg(file());
    }
}

/// The status of an object lasts for its life, so what is wrong by now takes a new one. It shares what is not yet
/// written with ours and tries to write it as well.
QSettings::Status PreferencesStore::freshStatus() const {
    return wholeStatus(QSettings(file(), m_settings->format()));
}

bool PreferencesStore::keepDamagedFile() try {
    const QString copy = file() + QStringLiteral(".damaged");
    replaceFile(copy.toStdString(), requireFile(file().toStdString(), kLargestFile));
    m_note = QStringLiteral(
                 "The settings file was damaged. What could not be read in it is at its default; a copy is kept as %1.")
                 .arg(copy);
    return true;
} catch (const std::filesystem::filesystem_error&) {
    return false;
}

void PreferencesStore::save(const QString& key, const QVariant& value) {
    if (m_isDetached) {
        return;
    }
    m_unsaved.insert(key, value);
    m_isDamaged = m_isDamaged || freshStatus() == QSettings::FormatError;
    if (m_isDamaged && !keepDamagedFile()) {
        m_problem = QStringLiteral(
                        "The settings file %1 is damaged and no copy of it can be kept. Changes hold until Vorn quits.")
                        .arg(file());
        return;
    }
    m_isDamaged = false;
    for (const auto& [name, latest] : m_unsaved.asKeyValueRange()) {
        m_settings->setValue(name, latest);
    }
    m_settings->sync();
    if (freshStatus() != QSettings::NoError) {
        m_problem = QStringLiteral("The settings cannot be saved to %1. Changes hold until Vorn quits.").arg(file());
        return;
    }
    m_unsaved.clear();
    m_problem = m_note;
}

}  // namespace vorn
