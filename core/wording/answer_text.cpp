#include "core/wording/answer_text.hpp"

#include <cmath>

#include "core/wording/failure_text.hpp"
#include "core/wording/format.hpp"
#include "core/wording/head.hpp"
#include "core/wording/window_text.hpp"

namespace vorn::Format {
namespace {

using Stage = Answer::Stage;

constexpr const char* kDemonstration = "Demonstration, invented figures";
constexpr const char* kNoNewerOnes = "; Claude Code could not get newer ones";

Placeholder failedPlaceholder(const ProbeFailure& failure) {
    const std::string whatToDo = advice(failure);
    Placeholder shown{.title = "No reading yet", .text = sentence(failure)};
    if (whatToDo.empty()) {
        shown.quoted = quoted(failure);
    } else {
        shown.text += "\n\n" + whatToDo;  // worth more than the rest of the client's own output
    }
    return shown;
}

}  // namespace

std::string sourceName(DataSource source) {
    return source == DataSource::statusLine ? "status line" : "claude /usage";
}

Placeholder placeholder(const Answer& answer) {
    switch (answer.stage) {
        case Stage::ready:
            break;
        case Stage::failed:
            return failedPlaceholder(answer.asking.failure.value_or(ProbeFailure()));
        case Stage::noLimits:
            return {.title = "Connected, no limits yet",
                    .text = "Claude Code reports them after the first reply of a session.",
                    .quoted = {}};
        case Stage::starting:
            return answer.asking.isRunning ? Placeholder{.title = "Reading your usage…",
                                                         .text = "The first answer takes a few seconds.",
                                                         .quoted = {}}
                                           : Placeholder{.title = "No reading yet", .text = {}, .quoted = {}};
    }
    return {};
}

std::string headline(const Answer& answer) {
    if (const auto top = head(answer)) {
        return top->headline;
    }
    if (answer.stage == Stage::failed && answer.asking.failure) {
        return sentence(*answer.asking.failure);
    }
    return answer.stage == Stage::ready ? "Reading your usage…" : placeholder(answer).title;
}

bool areFiguresOld(const Answer& answer) {
    return answer.asking.figuresOf && answer.observedAt && *answer.observedAt <= *answer.asking.figuresOf;
}

std::string age(const Answer& answer) {
    if (!answer.observedAt || !answer.source) {
        return {};
    }
    if (areFiguresOld(answer)) {
        return "Figures of " + clock(*answer.observedAt, answer.now) + kNoNewerOnes;
    }
    const Seconds old = answer.now - *answer.observedAt;
    const std::string when = old < Seconds{60} ? "just now" : duration(old) + " ago";
    return "Read " + when + " from " + (*answer.source == DataSource::statusLine ? "the " : "") +
           sourceName(*answer.source);
}

Phrase freshness(const Answer& answer) {
    if (answer.asking.isRunning) {
        return words("Asking " + sourceName(DataSource::usageCommand) + "…");
    }
    if (answer.isDemo) {
        return words(kDemonstration);
    }
    if (answer.stage == Stage::ready && areFiguresOld(answer)) {
        return words("Figures of ") + figure(clock(*answer.observedAt, answer.now)) + kNoNewerOnes;
    }
    if (answer.stage == Stage::ready && answer.observedAt && answer.source) {
        return joined(
            {words("Updated ") + figure(clock(*answer.observedAt, answer.now)), words(sourceName(*answer.source))});
    }
    const auto& failure = answer.asking.failure;
    if (!answer.asking.lastAt || (failure && wasNobodyAsked(*failure))) {
        return {};
    }
    return joined({words("Checked ") + figure(clock(*answer.asking.lastAt, answer.now)),
                   words(sourceName(DataSource::usageCommand))});
}

std::string remedy(const Answer& answer) {
    const auto& failure = answer.asking.failure;
    if (!failure) {
        return {};
    }
    if (std::string whatToDo = advice(*failure); !whatToDo.empty()) {
        return whatToDo;
    }
    // Whether the status line has told more since.
    if (const auto line = answer.lastObserved(DataSource::statusLine); line && line >= answer.asking.lastAt) {
        return "Claude Code's status line keeps the figures current.";
    }
    return answer.cards.empty() ? "Vorn asks again by itself." : "The last figures stay. Vorn asks again by itself.";
}

Phrase retryText(const Answer& answer) {
    const auto& retryAt = answer.asking.retryAt;
    return retryAt ? words("Not asked again before ") + figure(clock(*retryAt, answer.now)) : Phrase();
}

std::vector<std::string> storageProblems(const Unsaved& unsaved) {
    std::vector<std::string> problems;
    if (unsaved.history) {
        problems.emplace_back("The history cannot be saved.");
    }
    if (!unsaved.plan.empty()) {
        problems.push_back("The reset plan cannot be saved: " + unsaved.plan);
    }
    return problems;
}

Phrase sessionCost(const SessionWeekRatio& ratio) {
    const double cost = ratio.weekPercentPerSession();
    // As fine as the number of sessions that follows from it.
    return figure((std::isfinite(cost) ? sessions(cost) : "—") + "%") + " of the week";
}

Phrase sessionsLeftText(const Answer& answer) {
    return answer.sessionsLeft ? figure(sessionsLeft(*answer.sessionsLeft)) + " left this week" : Phrase();
}

Phrase weekSessions(const Answer& answer) {
    return answer.ratio
               ? joined({words("A full 5-hour session ≈ ") + sessionCost(*answer.ratio), sessionsLeftText(answer)})
               : Phrase();
}

std::string learntFrom(const SessionWeekRatio& ratio) {
    return "Measured on " + count(ratio.sessions, "session") + " (" +
           count(std::llround(std::isfinite(ratio.sessionPoints) ? ratio.sessionPoints : 0), "session point") +
           ") over the last 8 days.";
}

std::string whyNoRatio(const Answer& answer) {
    return answer.isJudged ? "Vorn compares how your session and week climb together. It needs about 20 points of "
                             "session use with week readings alongside; keep Vorn running."
                           : "Reading your usage…";
}

std::vector<std::string> tooltipLines(const Answer& answer) {
    std::vector<std::string> lines;
    const auto add = [&lines](std::string line) {
        if (!line.empty()) {
            lines.push_back(std::move(line));
        }
    };
    const auto top = head(answer);
    add(headline(answer));
    add(top ? top->reason : "");
    for (const Answer::Card& card : answer.cards) {
        add(windowLine(card.assessment, answer.now, answer.isJudged));
    }
    add(sessionsLeftText(answer).text());
    if (answer.asking.failure && answer.stage != Stage::failed) {
        add(sentence(*answer.asking.failure));
    }
    for (std::string& problem : storageProblems(answer.unsaved)) {
        add(std::move(problem));
    }
    add(answer.isDemo ? kDemonstration : "");
    return lines;
}

}  // namespace vorn::Format
