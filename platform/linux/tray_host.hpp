#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>
#include <functional>

namespace vorn {

/// Whether the desktop has something that shows tray items, and of which kind. Asks nothing of the bus that could
/// block. Main thread only.
class TrayHost : public QObject {
    Q_OBJECT

public:
    enum class Kind : std::uint8_t {
        none,
        notifier,  ///< StatusNotifierItem, over the bus
        embedded,  ///< windows embedded into the panel, on X11 only
    };

    TrayHost();

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// Whether the host puts an item that comes later to the left of those that are there.
    [[nodiscard]] bool addsToTheLeft() const { return m_addsToTheLeft; }
    /// Whether somebody shows what is enrolled, rather than only keeping the list.
    [[nodiscard]] bool isShown() const { return m_kind == Kind::embedded || (m_kind == Kind::notifier && m_hasHost); }
    /// To be called every few seconds: nothing announces a panel that embeds windows, nor its end.
    void tick();

signals:
    /// `kind` is another one, or the same one started anew and knows nothing of the items.
    void restarted();
    void shownChanged();

private slots:
    void hostsChanged();

private:
    void setKind(Kind kind);
    void setHasHost(bool hasHost);
    void watcherCame();
    void watcherWent();
    /// Asks whether `name` has an owner; answers later, and not at all when the bus does not.
    void askForOwner(const QString& name, std::function<void(bool hasOwner)> answer);
    void awaitEmbedding();
    void lookForEmbedding();

    QDBusConnection m_bus;
    QTimer m_firstLook;
    Kind m_kind = Kind::none;
    bool m_hasHost = false;
    bool m_isWatcherThere = false;
    bool m_addsToTheLeft = false;
    int m_watchers = 0;  ///< Counts them, so that an answer about one that went is not taken for another's.
};

}  // namespace vorn
