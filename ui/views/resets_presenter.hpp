#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <QtQml/qqmlregistration.h>

#include "core/data/reset_plan.hpp"

namespace vorn {

class UsageModel;

/// A planned reset as a row shows it.
struct ResetRow {
    Q_GADGET
    QML_VALUE_TYPE(resetRow)
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString when MEMBER when)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool isPast MEMBER isPast)

public:
    QString id;
    QString when;    ///< "Wed 25 Nov, 18:00"
    QString detail;  ///< "Weekly limits · announced by mail"
    bool isPast = false;
    bool operator==(const ResetRow&) const = default;
};

/// What came of an attempt to add a reset: where the form has a problem, and what to say there.
struct ResetProblem {
    Q_GADGET
    QML_VALUE_TYPE(resetProblem)
    Q_PROPERTY(QString date MEMBER date)
    Q_PROPERTY(QString time MEMBER time)

public:
    QString date;  ///< About the date; empty when it is fine.
    QString time;
    bool operator==(const ResetProblem&) const = default;
};

/// The resets that the user expects or holds, and what can be done with them.
class ResetsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QVariantList resets READ resets NOTIFY changed FINAL)
    Q_PROPERTY(int banked READ banked NOTIFY changed FINAL)
    Q_PROPERTY(QList<QString> scopes READ scopes CONSTANT FINAL)
    Q_PROPERTY(vorn::ResetProblem problem READ problem NOTIFY problemChanged FINAL)

public:
    static constexpr int kMostBanked = 99;

    struct Content {
        std::vector<ResetRow> resets;  ///< By date.
        int banked = 0;                ///< 0..kMostBanked
        bool operator==(const Content&) const = default;
    };

    /// `model` must outlive it.
    explicit ResetsPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] QVariantList resets() const;
    [[nodiscard]] int banked() const { return m_content.banked; }
    /// What a reset may cover, in the order of `PlannedReset::allScopes`.
    [[nodiscard]] static QStringList scopes();
    [[nodiscard]] const ResetProblem& problem() const { return m_problem; }

    // What a form begins with: tomorrow at the next full hour, as the user writes it.
    Q_INVOKABLE QString suggestedDate() const;
    Q_INVOKABLE QString suggestedTime() const;
    /// True when it was added; else `problem` says why not.
    Q_INVOKABLE bool add(const QString& date, const QString& time, int scope, const QString& note);
    Q_INVOKABLE void forgetProblem();
    Q_INVOKABLE void remove(const QString& id);
    Q_INVOKABLE void setBanked(int count);
    /// The user redeemed one in Claude's settings.
    Q_INVOKABLE void redeem(int scope);

signals:
    void changed();
    void problemChanged();

private:
    void update();
    void setProblem(const ResetProblem& problem);

    UsageModel& m_model;
    Content m_content;
    ResetProblem m_problem;
};

ResetsPresenter::Content resetsContent(const ResetPlan& plan, Instant now);

/// What a person typed into the form.
struct TypedMoment {
    QString date;
    QString time;
};
/// The moment, or what is wrong with it.
struct ReadMoment {
    std::optional<Instant> moment{};
    ResetProblem problem{};
};
ReadMoment readMoment(const TypedMoment& typed, Instant now);

}  // namespace vorn
