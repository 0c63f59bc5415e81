#pragma once

#include <QObject>

#include <QtQml/qqmlregistration.h>

#include "ui/answer/freshness_content.hpp"
#include "ui/answer/head_content.hpp"
#include "ui/answer/other_limit.hpp"
#include "ui/popover/window_list_model.hpp"

namespace vorn {

class UsageModel;

/// Everything that the popover shows, as long as it lives.
class PopoverPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::HeadContent head READ head NOTIFY headChanged FINAL)
    Q_PROPERTY(vorn::FreshnessContent freshness READ freshness NOTIFY freshnessChanged FINAL)
    Q_PROPERTY(vorn::WindowListModel* windows READ windows CONSTANT FINAL)
    Q_PROPERTY(QVariantList otherLimits READ otherLimits NOTIFY otherLimitsChanged FINAL)

public:
    /// `model` must outlive it.
    explicit PopoverPresenter(const UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] const HeadContent& head() const { return m_head; }
    [[nodiscard]] const FreshnessContent& freshness() const { return m_freshness; }
    [[nodiscard]] WindowListModel* windows() { return &m_windows; }
    [[nodiscard]] const QVariantList& otherLimits() const { return m_otherLimits; }

signals:
    void headChanged();
    void freshnessChanged();
    void otherLimitsChanged();

private:
    void show(const Answer& answer);

    HeadContent m_head;
    FreshnessContent m_freshness;
    WindowListModel m_windows;
    QVariantList m_otherLimits;
};

}  // namespace vorn
