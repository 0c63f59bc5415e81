#pragma once

#include <QObject>

#include <QtQml/qqmlregistration.h>

namespace vorn {

/// What people ask for in a view and only the application can do. A view calls the signals; there is one object for all
/// windows.
class AppRequests : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")

public:
    enum Table : int { History, Activity };
    Q_ENUM(Table)
    enum TableFormat : int { Csv, Json };
    Q_ENUM(TableFormat)

    using QObject::QObject;

signals:
    void refresh();  ///< Ask the client now.
    void openDashboard();
    void openSettings();
    void chooseClaude();  ///< In a dialog for files.
    void exportTable(Table table, TableFormat format);
    void quit();
};

}  // namespace vorn
