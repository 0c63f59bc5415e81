#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "core/support/time.hpp"

namespace vorn {

class ActivitySummary;
class UsageModel;
struct UsageInsights;

/// One of several that share a whole.
struct RankedShare {
    Q_GADGET
    QML_VALUE_TYPE(rankedShare)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(double share MEMBER share)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(bool isRest MEMBER isRest)

public:
    QString name;
    double share = 0;     ///< 0..1
    QString text;         ///< "46%"
    bool isRest = false;  ///< All that have no bar of their own.
    bool operator==(const RankedShare&) const = default;
};

/// A statement that Claude Code printed.
struct PrintedFinding {
    Q_GADGET
    QML_VALUE_TYPE(printedFinding)
    Q_PROPERTY(QString percent MEMBER percent)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString detail MEMBER detail)

public:
    QString percent;  ///< "71%"
    QString title;
    QString detail;  ///< What followed a middle dot; may be empty.
    bool operator==(const PrintedFinding&) const = default;
};

/// What consumed the quota: as Vorn measured it, and as Claude Code printed it.
class BreakdownPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(int period READ period WRITE setPeriod NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList projects READ projects NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList models READ models NOTIFY changed FINAL)
    Q_PROPERTY(QString nothingMeasured READ nothingMeasured NOTIFY changed FINAL)
    Q_PROPERTY(int printedPeriod READ printedPeriod WRITE setPrintedPeriod NOTIFY changed FINAL)
    Q_PROPERTY(QList<QString> printedPeriods READ printedPeriods NOTIFY changed FINAL)
    Q_PROPERTY(QString printedHeading READ printedHeading NOTIFY changed FINAL)
    Q_PROPERTY(QString nothingPrinted READ nothingPrinted NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList findings READ findings NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList skills READ skills NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList subagents READ subagents NOTIFY changed FINAL)
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged FINAL)

public:
    enum Period : int { FiveHours, Day, Week };

    struct Measured {
        std::vector<RankedShare> projects;  ///< Largest first, "Other" last.
        std::vector<RankedShare> models;
        QString nothing;  ///< Why there are none; else empty.
        bool operator==(const Measured&) const = default;
    };
    struct Printed {
        int period = 0;       ///< Which one the rest is about.
        QStringList periods;  ///< As printed.
        QString heading;      ///< "Claude Code · 133 requests · 9 sessions"
        QString nothing;      ///< Said when nothing was printed; else empty.
        std::vector<PrintedFinding> findings;
        std::vector<RankedShare> skills;
        std::vector<RankedShare> subagents;
        bool operator==(const Printed&) const = default;
    };

    /// `model` must outlive it.
    explicit BreakdownPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] int period() const { return m_period; }
    void setPeriod(int period);
    [[nodiscard]] QVariantList projects() const;
    [[nodiscard]] QVariantList models() const;
    [[nodiscard]] const QString& nothingMeasured() const { return m_measured.nothing; }
    [[nodiscard]] int printedPeriod() const { return m_printed.period; }
    void setPrintedPeriod(int period);
    [[nodiscard]] const QStringList& printedPeriods() const { return m_printed.periods; }
    [[nodiscard]] const QString& printedHeading() const { return m_printed.heading; }
    [[nodiscard]] const QString& nothingPrinted() const { return m_printed.nothing; }
    [[nodiscard]] QVariantList findings() const;
    [[nodiscard]] QVariantList skills() const;
    [[nodiscard]] QVariantList subagents() const;
    /// Nothing is computed while it is not.
    [[nodiscard]] bool isShown() const { return m_isShown; }
    void setShown(bool shown);

signals:
    void changed();
    void isShownChanged();

private:
    /// When what was measured has to be measured again; the window moves on slowly.
    static constexpr Seconds kSlide{300};

    void activityChanged();
    void update();

    UsageModel& m_model;
    Period m_period = FiveHours;
    int m_wantedPrinted = 0;
    bool m_isShown = true;
    std::optional<Instant> m_measuredAt;  ///< Absent when it has to be done again.
    Measured m_measured;
    Printed m_printed;
};

BreakdownPresenter::Measured measuredBreakdown(const ActivitySummary& activity, Instant since);
BreakdownPresenter::Printed printedBreakdown(const UsageInsights* insights, int period);

}  // namespace vorn
