#pragma once

#include <QObject>
#include <QQuickView>
#include <QSize>
#include <memory>
#include <vector>

#include "ui/views/view_engine.hpp"
#include "ui/views/window_place.hpp"

class QQuickItem;

namespace vorn {

/// An ordinary window with a view of QML in it, of which there is one and which may stay open; view, presenters and
/// engine exist only while it does. Its place is remembered. Main thread only.
class ViewWindow : public QObject {
    Q_OBJECT

public:
    ~ViewWindow() override;

    /// Shows it with the keyboard focus; brings it to the front when it is shown already. Stays closed where it cannot
    /// be loaded.
    void open();
    Q_SLOT void close();
    [[nodiscard]] bool isOpen() const { return m_view != nullptr; }

signals:
    void opened();
    void closed();

protected:
    /// What it opens with at first, and what it never gets smaller than.
    struct Sizes {
        QSize usual;
        QSize least;
    };

    /// A window's view; holds the engine as long as it exists. Who derives from it adds what is shown.
    class View : public QQuickView {
    public:
        explicit View(ViewEngine::Hold hold) : QQuickView(hold.get(), nullptr), m_hold(std::move(hold)) {}

    private:
        ViewEngine::Hold m_hold;
    };

    /// `engine` must outlive it. `place`: where the window was last time.
    ViewWindow(ViewEngine& engine, WindowPlaceStore place, QObject* parent);

    /// With its source set.
    [[nodiscard]] virtual std::unique_ptr<View> makeView(ViewEngine::Hold hold) = 0;
    [[nodiscard]] virtual Sizes sizesFor(const QQuickItem& root) const = 0;
    /// It could be made, and is not shown yet.
    virtual void prepare(View& view) = 0;
    /// It is about to be closed.
    virtual void leave(View& view) = 0;

    [[nodiscard]] View* view() const { return m_view.get(); }
    /// Before what the view refers to goes.
    void discardViews();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Whether it could be made.
    bool createView();
    [[nodiscard]] WindowPlace lastPlace() const { return m_place.load ? m_place.load() : WindowPlace{}; }

    ViewEngine& m_engine;
    WindowPlaceStore m_place;
    std::unique_ptr<View> m_view;                  ///< While open.
    std::vector<std::unique_ptr<View>> m_closing;  ///< Until the events that closed them are through.
};

}  // namespace vorn
