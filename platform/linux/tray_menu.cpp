#include "platform/linux/tray_menu.hpp"

#include <QAction>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QMenu>

#include "platform/linux/bus_structure.hpp"

namespace vorn {

namespace {

constexpr uint kRevision = 1;

void registerTypes() {
    qDBusRegisterMetaType<TrayMenuNode>();
    qDBusRegisterMetaType<TrayMenuProperties>();
    qDBusRegisterMetaType<QList<TrayMenuProperties>>();
    qDBusRegisterMetaType<TrayMenuEvent>();
    qDBusRegisterMetaType<QList<TrayMenuEvent>>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
    qDBusRegisterMetaType<QList<int>>();
}

/// "&Quit" is "_Quit" there.
QString labelOf(const QString& text) {
    QString label;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'_') {
            label += QStringLiteral("__");
        } else if (text[i] != u'&') {
            label += text[i];
        } else if (i + 1 < text.size()) {
            label += text[i + 1] == u'&' ? text[++i] : QChar(u'_');
        }
    }
    return label;
}

QVariantMap propertiesOf(const QAction& action) {
    if (action.isSeparator()) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    }
    return {{QStringLiteral("label"), labelOf(action.text())}, {QStringLiteral("enabled"), action.isEnabled()}};
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuNode& node) {
    return putStructure(out, node.id, node.properties, node.children);
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuNode& node) {
    return takeStructure(in, node.id, node.properties, node.children);
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuProperties& properties) {
    return putStructure(out, properties.id, properties.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuProperties& properties) {
    return takeStructure(in, properties.id, properties.properties);
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuEvent& event) {
    return putStructure(out, event.id, event.event, event.data, event.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuEvent& event) {
    return takeStructure(in, event.id, event.event, event.data, event.timestamp);
}

TrayMenuAdaptor::TrayMenuAdaptor(QMenu& menu) : QDBusAbstractAdaptor(&menu), m_menu(menu) {
    registerTypes();
}

QAction* TrayMenuAdaptor::action(int id) const {
    return m_menu.actions().value(qsizetype{id} - 1);
}

QList<TrayMenuProperties> TrayMenuAdaptor::entries() const {
    QList<TrayMenuProperties> entries;
    for (const QAction* const entry : m_menu.actions()) {
        entries.append({.id = static_cast<int>(entries.size()) + 1, .properties = propertiesOf(*entry)});
    }
    return entries;
}

QString TrayMenuAdaptor::textDirection() const {
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

uint TrayMenuAdaptor::GetLayout(int parentId, int recursionDepth, const QStringList& /*propertyNames*/,
                                TrayMenuNode& layout) {
    if (const QAction* const entry = action(parentId)) {
        layout = {.id = parentId, .properties = propertiesOf(*entry), .children = {}};
        return kRevision;
    }
    layout.properties = {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    if (parentId == 0 && recursionDepth != 0) {
        for (const auto& [id, properties] : entries()) {
            const TrayMenuNode child{.id = id, .properties = properties, .children = {}};
            layout.children.append(QDBusVariant(QVariant::fromValue(child)));
        }
    }
    return kRevision;
}

QList<TrayMenuProperties> TrayMenuAdaptor::GetGroupProperties(const QList<int>& ids,
                                                              const QStringList& /*propertyNames*/) {
    QList<TrayMenuProperties> wanted = entries();
    if (!ids.isEmpty()) {
        wanted.removeIf([&](const TrayMenuProperties& entry) { return !ids.contains(entry.id); });
    }
    return wanted;
}

QDBusVariant TrayMenuAdaptor::GetProperty(int id, const QString& name) {
    const QAction* const entry = action(id);
    const QVariant value = entry == nullptr ? QVariant() : propertiesOf(*entry).value(name);
    return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void TrayMenuAdaptor::Event(int id, const QString& eventId, const QDBusVariant& /*data*/, uint /*timestamp*/) {
    QAction* const entry = action(id);
    if (entry != nullptr && eventId == QStringLiteral("clicked")) {
        // The host waits for the answer to this call; what the entry does may take longer.
        QMetaObject::invokeMethod(entry, &QAction::trigger, Qt::QueuedConnection);
    }
}

QList<int> TrayMenuAdaptor::EventGroup(const QList<TrayMenuEvent>& events) {
    QList<int> unknown;
    for (const TrayMenuEvent& event : events) {
        if (event.id != 0 && action(event.id) == nullptr) {
            unknown.append(event.id);
        }
        Event(event.id, event.event, event.data, event.timestamp);
    }
    return unknown;
}

bool TrayMenuAdaptor::AboutToShow(int /*id*/) {
    return false;  // It has not changed.
}

QList<int> TrayMenuAdaptor::AboutToShowGroup(const QList<int>& /*ids*/, QList<int>& /*idErrors*/) {
    return {};
}

}  // namespace vorn
