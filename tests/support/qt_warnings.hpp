#pragma once

#include <QtGlobal>
#include <string>
#include <vector>

namespace vorn::test {

/// Everything that Qt or QML complained about while it lives.
class Warnings {
public:
    Warnings() : m_previous(qInstallMessageHandler(&Warnings::take)) { s_texts.clear(); }
    ~Warnings() { qInstallMessageHandler(m_previous); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    [[nodiscard]] static const std::vector<std::string>& texts() { return s_texts; }

private:
    static void take(QtMsgType type, const QMessageLogContext&, const QString& text) {
        const bool isOfThePlatform = text.startsWith("This plugin does not support");
        if (type != QtDebugMsg && type != QtInfoMsg && !isOfThePlatform) {
            s_texts.push_back(text.toStdString());
        }
    }
    static inline std::vector<std::string> s_texts;
    QtMessageHandler m_previous;
};

}  // namespace vorn::test
