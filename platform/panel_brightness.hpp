#pragma once

#include <QObject>
#include <memory>
#include <optional>

namespace vorn {

class DesktopAppearance;

/// Whether the panel or menu bar that the tray is in is dark: not every desktop has it follow the windows. Main thread
/// only; changes live.
class PanelBrightness : public QObject {
    Q_OBJECT

public:
    /// The desktop's; never null. `appearance` is what holds where the desktop does not tell, and must outlive it.
    static std::unique_ptr<PanelBrightness> system(const DesktopAppearance& appearance);

    explicit PanelBrightness(const DesktopAppearance& appearance);

    [[nodiscard]] bool isDark() const;

signals:
    void changed();

protected:
    /// What the desktop says of its panel; absent when it says nothing.
    void setPanelIsDark(std::optional<bool> isDark);

private:
    const DesktopAppearance& m_appearance;
    std::optional<bool> m_panelIsDark;
};

}  // namespace vorn
