#pragma once

#include <QObject>
#include <QQuickView>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <vector>

#include "ui/window/view_engine.hpp"

namespace vorn {

/// A window with a view of QML in it, of which there is one and which may stay open; view, presenters and engine exist
/// only while it does. Main thread only.
class ViewWindow : public QObject {
    Q_OBJECT

public:
    ~ViewWindow() override;

    /// Shows it with the keyboard focus; brings it to the front when it is shown already. Stays closed where it cannot
    /// be loaded.
    void open();
    void close();
    [[nodiscard]] bool isOpen() const { return m_view != nullptr; }

signals:
    void opened();
    void closed();

protected:
    /// What a window shows.
    struct Shown {
        QString title;
        const char* url;
        QVariantMap properties;         ///< The view's initial ones.
        std::shared_ptr<void> content;  ///< What they point into; outlives the view.
    };

    /// `engine` must outlive it.
    ViewWindow(ViewEngine& engine, QObject* parent);

    [[nodiscard]] virtual Shown shown() = 0;
    /// The view could be made, and is not shown yet.
    virtual void prepare(QQuickView& view) = 0;
    virtual void present(QQuickView& view);
    /// It is about to be closed.
    virtual void leave(QQuickView& view) = 0;

    [[nodiscard]] QQuickView* view() const;
    /// Sets a property of the view; nothing while it is closed.
    void setViewProperty(const char* name, const QVariant& value);
    /// Before what the view refers to goes.
    void discardViews();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class View;

    /// Whether it could be made.
    bool createView();

    ViewEngine& m_engine;
    std::unique_ptr<View> m_view;                  ///< While open.
    std::vector<std::unique_ptr<View>> m_closing;  ///< Until the events that closed them are through.
};

}  // namespace vorn
