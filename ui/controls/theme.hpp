#pragma once

#include <QColor>
#include <QObject>

#include <QtQml/qqmlregistration.h>

#include "platform/desktop_appearance.hpp"
#include "ui/controls/view_enums.hpp"

class QJSEngine;
class QQmlEngine;

namespace vorn {

/// Every colour of the windows, by its job. Colour says only status: facts are always `accent`, which is also the
/// colour of a comfortable window.
struct ThemeColors {
    Q_GADGET
    QML_VALUE_TYPE(themeColors)
    Q_PROPERTY(QColor window MEMBER window)
    Q_PROPERTY(QColor surface MEMBER surface)
    Q_PROPERTY(QColor sunken MEMBER sunken)
    Q_PROPERTY(QColor line MEMBER line)
    Q_PROPERTY(QColor fieldLine MEMBER fieldLine)
    Q_PROPERTY(QColor text MEMBER text)
    Q_PROPERTY(QColor secondText MEMBER secondText)
    Q_PROPERTY(QColor thirdText MEMBER thirdText)
    Q_PROPERTY(QColor accent MEMBER accent)
    Q_PROPERTY(QColor textOnAccent MEMBER textOnAccent)
    Q_PROPERTY(QColor track MEMBER track)
    Q_PROPERTY(QColor grid MEMBER grid)
    Q_PROPERTY(QColor area MEMBER area)
    Q_PROPERTY(QColor hover MEMBER hover)
    Q_PROPERTY(QColor pressed MEMBER pressed)

public:
    QColor window;
    QColor surface;    ///< Cards and the popover.
    QColor sunken;     ///< The popover's foot. No status colour stands on it.
    QColor line;       ///< Decoration.
    QColor fieldLine;  ///< Borders that tell where something is.
    QColor text;
    QColor secondText;
    QColor thirdText;
    QColor accent;
    QColor watch;
    QColor atRisk;
    QColor limited;
    QColor textOnAccent;
    QColor track;          ///< What of a bar is empty; translucent, as are the four below.
    QColor grid;           ///< Of a chart.
    QColor area;           ///< Under a line in a chart.
    QColor hover;          ///< Over a control under the mouse.
    QColor pressed;        ///< Over a control held down.
    double tintShare = 0;  ///< Of a status in the head's background.
    double paleShare = 0;  ///< Of a status in a forecast.

    Q_INVOKABLE QColor status(StatusForViews::Status status) const;
    /// The head's background over `surface`.
    Q_INVOKABLE QColor tint(StatusForViews::Status status) const;
    /// A forecast over `surface`.
    Q_INVOKABLE QColor pale(StatusForViews::Status status) const;

    bool operator==(const ThemeColors&) const = default;
};

ThemeColors themeColors(const DesktopAppearance::Look& look);

/// Sizes in device-independent pixels; all of them grow with the system's font.
struct ThemeSizes {
    Q_GADGET
    QML_VALUE_TYPE(themeSizes)
    Q_PROPERTY(double scale MEMBER scale)
    Q_PROPERTY(int caption MEMBER caption)
    Q_PROPERTY(int small MEMBER small)
    Q_PROPERTY(int body MEMBER body)
    Q_PROPERTY(int title MEMBER title)
    Q_PROPERTY(int head MEMBER head)
    Q_PROPERTY(int percent MEMBER percent)
    Q_PROPERTY(int largeHead MEMBER largeHead)
    Q_PROPERTY(int hair MEMBER hair)
    Q_PROPERTY(int tight MEMBER tight)
    Q_PROPERTY(int near MEMBER near)
    Q_PROPERTY(int gap MEMBER gap)
    Q_PROPERTY(int between MEMBER between)
    Q_PROPERTY(int inset MEMBER inset)
    Q_PROPERTY(int edge MEMBER edge)
    Q_PROPERTY(int control MEMBER control)
    Q_PROPERTY(int iconButton MEMBER iconButton)
    Q_PROPERTY(int icon MEMBER icon)
    Q_PROPERTY(int mark MEMBER mark)
    Q_PROPERTY(int bar MEMBER bar)
    Q_PROPERTY(int ring MEMBER ring)
    Q_PROPERTY(int ringMargin MEMBER ringMargin)
    Q_PROPERTY(int popoverWidth MEMBER popoverWidth)
    Q_PROPERTY(int popoverRadius MEMBER popoverRadius)
    Q_PROPERTY(int cardRadius MEMBER cardRadius)
    Q_PROPERTY(int controlRadius MEMBER controlRadius)
    Q_PROPERTY(int focusWidth MEMBER focusWidth)

public:
    double scale = 1;
    // Type.
    int caption = 0;
    int small = 0;
    int body = 0;
    int title = 0;
    int head = 0;
    int percent = 0;
    int largeHead = 0;
    // Space.
    int hair = 1;
    int tight = 0;
    int near = 0;
    int gap = 0;
    int between = 0;
    int inset = 0;
    int edge = 0;
    // Things.
    int control = 0;
    int iconButton = 0;
    int icon = 0;
    int mark = 0;
    int bar = 0;
    int ring = 0;
    int ringMargin = 0;  ///< What the drawing leaves free around the ring.
    int popoverWidth = 0;
    int popoverRadius = 0;
    int cardRadius = 0;
    int controlRadius = 0;
    int focusWidth = 0;
    bool operator==(const ThemeSizes&) const = default;
};

/// `bodyPixels`: the height of the system's font; sizes far from anything readable are held back.
ThemeSizes themeSizes(double bodyPixels);

/// What all views take their colours, sizes and durations from; one for each engine, following the desktop live.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(vorn::ThemeColors colors READ colors NOTIFY changed FINAL)
    Q_PROPERTY(vorn::ThemeSizes sizes READ sizes NOTIFY changed FINAL)
    Q_PROPERTY(bool highContrast READ highContrast NOTIFY changed FINAL)
    Q_PROPERTY(bool mirrored READ mirrored NOTIFY changed FINAL)
    Q_PROPERTY(bool moves READ moves NOTIFY changed FINAL)
    Q_PROPERTY(int tiltDuration READ tiltDuration NOTIFY changed FINAL)
    Q_PROPERTY(int barDuration READ barDuration NOTIFY changed FINAL)
    Q_PROPERTY(int openDuration READ openDuration NOTIFY changed FINAL)
    Q_PROPERTY(int turnDuration READ turnDuration CONSTANT FINAL)
    Q_PROPERTY(QString fixedFamily READ fixedFamily NOTIFY changed FINAL)

public:
    /// The engine whose theme follows `appearance`, which must outlive the engine.
    static void setAppearance(QQmlEngine& engine, DesktopAppearance& appearance);
    static Theme* create(QQmlEngine* engine, QJSEngine*);

    explicit Theme(DesktopAppearance& appearance, QObject* parent = nullptr);

    [[nodiscard]] const ThemeColors& colors() const { return m_colors; }
    [[nodiscard]] const ThemeSizes& sizes() const { return m_sizes; }
    [[nodiscard]] bool highContrast() const { return m_appearance.highContrast(); }
    /// The user reads from right to left.
    [[nodiscard]] static bool mirrored();
    [[nodiscard]] bool moves() const { return !m_appearance.reducedMotion(); }
    // In milliseconds; 0 with reduced motion.
    [[nodiscard]] int tiltDuration() const { return moves() ? 350 : 0; }
    [[nodiscard]] int barDuration() const { return moves() ? 250 : 0; }
    [[nodiscard]] int openDuration() const { return moves() ? 120 : 0; }
    [[nodiscard]] static int turnDuration() { return 900; }
    /// The system's font for commands, paths and what other programs print.
    [[nodiscard]] static QString fixedFamily();

signals:
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();

    DesktopAppearance& m_appearance;
    ThemeColors m_colors;
    ThemeSizes m_sizes;
};

}  // namespace vorn
