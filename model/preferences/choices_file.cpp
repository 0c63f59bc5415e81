#include "model/preferences/choices_file.hpp"

#include <utility>

#include "core/support/file.hpp"
#include "model/preferences/preferences.hpp"

namespace vorn {
namespace fs = std::filesystem;

ChoicesFile::ChoicesFile(const Preferences& preferences, fs::path file, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_file(std::move(file)) {
    connect(&preferences, &Preferences::claudePathOverrideChanged, this, &ChoicesFile::write);
    connect(&preferences, &Preferences::useLocalActivityChanged, this, &ChoicesFile::write);
    connect(&preferences, &Preferences::refreshMinutesChanged, this, &ChoicesFile::write);
    write();
}

void ChoicesFile::write() const try {
    const SharedChoices choices{
        .claudePath = m_preferences.claudePathOverride().toStdString(),
        .useLocalActivity = m_preferences.useLocalActivity(),
        .refresh = std::chrono::duration<double, std::ratio<60>>(m_preferences.refreshMinutes())};
    if (choices != loadSharedChoices(m_file)) {
        removeAbandonedTemporaries(m_file);  // there is one application, and nobody else writes it
        saveSharedChoices(m_file, choices);
    }
} catch (const fs::filesystem_error&) {
    // The terminal tool then goes by what it last found; here nothing depends on it.
}

}  // namespace vorn
