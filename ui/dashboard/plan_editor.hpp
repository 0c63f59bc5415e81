#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

#include <QtQml/qqmlregistration.h>

#include "ui/dashboard/dashboard_enums.hpp"

namespace vorn {

class UsageModel;

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

/// What the user does to the plan of resets.
class PlanEditor : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(QList<QString> scopes READ scopes CONSTANT FINAL)
    Q_PROPERTY(vorn::ResetProblem problem READ problem NOTIFY problemChanged FINAL)

public:
    /// `model` must outlive it.
    explicit PlanEditor(UsageModel& model, QObject* parent = nullptr);

    /// What a reset may cover, in the order of `Scope`.
    [[nodiscard]] static QStringList scopes();
    [[nodiscard]] const ResetProblem& problem() const { return m_problem; }

    // What a form begins with: tomorrow at the next full hour, as the user writes it.
    Q_INVOKABLE QString suggestedDate() const;
    Q_INVOKABLE QString suggestedTime() const;
    /// True when it was added; else `problem` says why not.
    Q_INVOKABLE bool add(const QString& date, const QString& time, vorn::ScopeForViews::Scope scope,
                         const QString& note);
    Q_INVOKABLE void forgetProblem();
    Q_INVOKABLE void remove(const QString& id);
    Q_INVOKABLE void setBanked(int count);
    /// The user redeemed a banked reset in Claude's settings.
    Q_INVOKABLE void redeem(vorn::ScopeForViews::Scope scope);

signals:
    void problemChanged();

private:
    void setProblem(const ResetProblem& problem);

    UsageModel& m_model;
    ResetProblem m_problem;
};

/// What a person typed into the form.
struct TypedMoment {
    QString date;
    QString time;
};
/// What was typed as a moment, or what is wrong with it.
struct ReadMoment {
    std::optional<Instant> moment{};
    ResetProblem problem{};
};
ReadMoment readMoment(const TypedMoment& typed, Instant now);

}  // namespace vorn
