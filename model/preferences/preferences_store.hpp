#pragma once

#include <QSettings>
#include <QString>
#include <QVariantMap>
#include <memory>

namespace vorn {

/// The store behind the preferences, with what QSettings leaves to its users: a damaged file is copied before it is
/// written over, and whatever goes wrong is told. What cannot be saved is tried again with the next change.
class PreferencesStore {
public:
    explicit PreferencesStore(std::unique_ptr<QSettings> settings);

    /// Invalid when nothing is stored.
    [[nodiscard]] QVariant value(const QString& key) const { return m_settings->value(key); }
    /// On the disk when it returns, or else in `problem`.
    void save(const QString& key, const QVariant& value);
    /// From now on nothing is written.
    void detach() { m_isDetached = true; }
    /// For people; empty when all is well.
    [[nodiscard]] const QString& problem() const { return m_problem; }

private:
    [[nodiscard]] QString file() const { return m_settings->fileName(); }
    [[nodiscard]] QSettings::Status freshStatus() const;
    bool keepDamagedFile();

    std::unique_ptr<QSettings> m_settings;
    bool m_isDamaged = false;  ///< The file holds what QSettings could not read, and would not write again.
    bool m_isDetached = false;
    QVariantMap m_unsaved;
    QString m_note;  ///< What the user should know even though changes are saved.
    QString m_problem;
};

}  // namespace vorn
