#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <optional>

#include <QtQml/qqmlregistration.h>

#include "ui/tray/menu_bar_glyph.hpp"

namespace vorn {

class DesktopAppearance;
class PanelBrightness;
class Preferences;
class UsageModel;

/// What stands in the tray, or would stand there: always of the present moment.
class LiveGlyph : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QColor panelColor READ panelColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor panelText READ panelText NOTIFY changed FINAL)
    Q_PROPERTY(bool isExample READ isExample NOTIFY changed FINAL)
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)

public:
    /// What the glyph is made from; all of it must outlive the object.
    struct Sources {
        Preferences& preferences;
        const UsageModel& model;
        const DesktopAppearance& appearance;
        const PanelBrightness& panel;
        bool hasCells = true;
    };
    explicit LiveGlyph(const Sources& sources, QObject* parent = nullptr);

    [[nodiscard]] QColor panelColor() const;
    [[nodiscard]] QColor panelText() const { return m_look.palette.foreground; }
    /// The figures are invented, since there are none yet.
    [[nodiscard]] bool isExample() const { return m_example.has_value(); }
    /// For a screen reader: the items and what they say.
    [[nodiscard]] const QString& spoken() const { return m_spoken; }

    [[nodiscard]] bool hasCells() const { return m_sources.hasCells; }
    [[nodiscard]] const MenuBarGlyph::Look& look() const { return m_look; }
    /// One part for every item that is on; never empty.
    [[nodiscard]] const std::vector<MenuBarPart>& items() const { return m_items; }
    /// What stands there when only one ring is wanted.
    [[nodiscard]] const std::vector<MenuBarPart>& singleRing() const { return m_singleRing; }
    /// A ring that shows all that a style can show.
    [[nodiscard]] const std::vector<MenuBarPart>& sample() const { return m_sample; }

signals:
    void changed();

private:
    void update();
    [[nodiscard]] const Answer& figures();

    const Sources m_sources;
    std::optional<Answer> m_example;  ///< While there are no figures.
    std::vector<MenuBarPart> m_items;
    std::vector<MenuBarPart> m_singleRing;
    std::vector<MenuBarPart> m_sample;
    MenuBarGlyph::Look m_look;
    QString m_spoken;
};

}  // namespace vorn
