#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <memory>

class QQmlEngine;

namespace vorn {

class DesktopAppearance;

/// The one QML engine behind all windows. It is made when the first window needs it and goes some time after the last
/// one let go of it, since it is most of what the process would occupy while nobody looks. Main thread only.
class ViewEngine : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kLinger = std::chrono::seconds(30);

    /// Held by a window while it is shown.
    using Hold = std::shared_ptr<QQmlEngine>;

    /// `appearance` must outlive it. `linger`: how long the engine outlives the last hold.
    explicit ViewEngine(DesktopAppearance& appearance, std::chrono::milliseconds linger = kLinger,
                        QObject* parent = nullptr);
    ~ViewEngine() override;

    /// Makes the engine if there is none. The hold must not outlive this object.
    Hold hold();
    [[nodiscard]] bool isLoaded() const { return m_engine != nullptr; }

    /// Chooses how windows are drawn; before the first QML window of the process.
    static void useSoftwareRendering();

signals:
    /// Everything made with the engine has to be deleted now.
    void aboutToUnload();

private:
    void unload();

    DesktopAppearance& m_appearance;
    std::unique_ptr<QQmlEngine> m_engine;
    std::weak_ptr<QQmlEngine> m_hold;  ///< What is out there; dead while no window is shown.
    QTimer m_unloadTimer;
};

}  // namespace vorn
