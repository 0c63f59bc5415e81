#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "core/sources/activity_summary.hpp"

namespace vorn {

class UsageModel;

/// A time below the strip.
struct ActivityMark {
    Q_GADGET
    QML_VALUE_TYPE(activityMark)
    Q_PROPERTY(double position MEMBER position)
    Q_PROPERTY(QString text MEMBER text)

public:
    double position = 0;  ///< 0..1 of the width.
    QString text;
    bool operator==(const ActivityMark&) const = default;
};

/// How token use was spread over the last day or week.
class ActivityPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(int span READ span WRITE setSpan NOTIFY changed FINAL)
    Q_PROPERTY(QString lastReply READ lastReply NOTIFY changed FINAL)
    Q_PROPERTY(QString nothing READ nothing NOTIFY changed FINAL)
    Q_PROPERTY(QString summary READ summary NOTIFY changed FINAL)
    Q_PROPERTY(QList<double> bars READ bars NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList marks READ marks NOTIFY changed FINAL)
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged FINAL)

public:
    enum Span : int { Day, Week };

    struct Content {
        QString lastReply;                             ///< "last reply 20:43"; empty without any.
        QString nothing;                               ///< Why there are no bars; else empty.
        QString summary;                               ///< The whole span in a sentence, for those who listen.
        std::vector<ActivitySummary::Bucket> buckets;  ///< Aligned with the wall clock.
        Seconds width{};                               ///< Of a bucket.
        std::vector<ActivityMark> marks;
        Instant latest;  ///< When the current bucket began; today, as long as it lasts.
        bool operator==(const Content&) const = default;
    };

    /// `model` must outlive it.
    explicit ActivityPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] int span() const { return m_span; }
    void setSpan(int span);
    [[nodiscard]] const QString& lastReply() const { return m_content.lastReply; }
    [[nodiscard]] const QString& nothing() const { return m_content.nothing; }
    [[nodiscard]] const QString& summary() const { return m_content.summary; }
    /// Heights, 0..1 of the highest; empty when nothing happened.
    [[nodiscard]] QList<double> bars() const;
    [[nodiscard]] QVariantList marks() const;
    /// Nothing is computed while it is not.
    [[nodiscard]] bool isShown() const { return m_isShown; }
    void setShown(bool shown);

    /// "19:10 – 19:20 · 84k weighted tokens"
    Q_INVOKABLE QString describe(int bar) const;

signals:
    void changed();
    void isShownChanged();

private:
    void passTime();
    void update();

    UsageModel& m_model;
    Span m_span = Day;
    bool m_isShown = true;
    Content m_content;
};

/// Why there is no local activity to show, whatever was done; empty when there may be some.
QString whyNoActivity(const UsageModel& model);

ActivityPresenter::Content activityContent(const UsageModel& model, ActivityPresenter::Span span);

}  // namespace vorn
