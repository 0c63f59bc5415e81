#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

#include "ui/views/view_enums.hpp"

namespace vorn {

class UsageModel;

/// Whether there is something to show, how fresh it is, and what to do when it cannot be had.
class FreshnessPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(vorn::PhaseForViews::Phase phase READ phase NOTIFY changed FINAL)
    Q_PROPERTY(QString phaseTitle READ phaseTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY changed FINAL)
    Q_PROPERTY(bool needsClaude READ needsClaude NOTIFY changed FINAL)
    Q_PROPERTY(QString text READ text NOTIFY changed FINAL)
    Q_PROPERTY(bool isProbing READ isProbing NOTIFY changed FINAL)
    Q_PROPERTY(QString problem READ problem NOTIFY changed FINAL)
    Q_PROPERTY(QString remedy READ remedy NOTIFY changed FINAL)
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY changed FINAL)

public:
    struct Content {
        PhaseForViews::Phase phase = PhaseForViews::Starting;
        QString phaseTitle;        ///< Empty when ready, as the next.
        QString phaseText;         ///< What it means or what went wrong.
        bool needsClaude = false;  ///< What went wrong is that the executable was not found.
        QString text;              ///< "Updated 20:44 · status line"
        bool isProbing = false;
        QString problem;        ///< What does not work while there is something to show; else empty.
        QString remedy;         ///< What to do about it, or what happens next.
        bool canRetry = false;  ///< Asking again may help.
        bool operator==(const Content&) const = default;
    };

    /// `model` must outlive it.
    explicit FreshnessPresenter(UsageModel& model, QObject* parent = nullptr);

    [[nodiscard]] PhaseForViews::Phase phase() const { return m_content.phase; }
    [[nodiscard]] const QString& phaseTitle() const { return m_content.phaseTitle; }
    [[nodiscard]] const QString& phaseText() const { return m_content.phaseText; }
    [[nodiscard]] bool needsClaude() const { return m_content.needsClaude; }
    [[nodiscard]] const QString& text() const { return m_content.text; }
    [[nodiscard]] bool isProbing() const { return m_content.isProbing; }
    [[nodiscard]] const QString& problem() const { return m_content.problem; }
    [[nodiscard]] const QString& remedy() const { return m_content.remedy; }
    [[nodiscard]] bool canRetry() const { return m_content.canRetry; }

signals:
    void changed();

private:
    void update();

    UsageModel& m_model;
    Content m_content;
};

FreshnessPresenter::Content freshnessContent(const UsageModel& model);

}  // namespace vorn
