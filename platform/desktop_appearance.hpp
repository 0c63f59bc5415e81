#pragma once

#include <QObject>
#include <memory>

namespace vorn {

/// How the user wants things to look. Main thread only; changes live.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    struct Look {
        bool isDark = false;
        bool highContrast = false;
        bool reducedMotion = false;
        bool operator==(const Look&) const = default;
    };

    /// The desktop's; never null.
    static std::unique_ptr<DesktopAppearance> system();

    [[nodiscard]] const Look& look() const { return m_look; }
    [[nodiscard]] bool isDark() const { return m_look.isDark; }
    [[nodiscard]] bool highContrast() const { return m_look.highContrast; }
    [[nodiscard]] bool reducedMotion() const { return m_look.reducedMotion; }
    /// For pictures and tests, which choose the look themselves, and for the adapters.
    void setLook(const Look& look);

signals:
    void changed();

private:
    Look m_look;
};

}  // namespace vorn
