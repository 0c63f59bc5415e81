#include "core/usage_command/client_question.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "core/data/breakdown_file.hpp"
#include "core/data/claude_paths.hpp"
#include "core/data/limit_names.hpp"
#include "core/support/file.hpp"
#include "core/support/json.hpp"
#include "core/support/text.hpp"
#include "core/usage_command/claude_locator.hpp"
#include "core/usage_command/client_memory.hpp"
#include "core/usage_command/client_run.hpp"
#include "core/usage_command/client_state.hpp"
#include "core/usage_command/probe_error.hpp"
#include "core/usage_command/usage_command_probe.hpp"
#include "core/usage_command/usage_envelope.hpp"
#include "core/usage_command/usage_report.hpp"

namespace vorn {
namespace {

using namespace std::chrono_literals;
using Kind = ProbeFailure::Kind;

/// How long a client that does not know the report is asked for the text alone, and one of which that is not so sure.
constexpr Seconds kUnknownFor = std::chrono::days{7};
constexpr Seconds kUncertainFor = std::chrono::days{1};
constexpr Seconds kHangingFor = 1h;

/// What is older in the client's state is of another question.
constexpr Seconds kYoung = 1min;

/// The largest plan has seven. What is kept of an answer has to be read back by everybody.
constexpr std::size_t kMostWindows = 100;
constexpr std::size_t kLongestName = 1000;  // characters

bool tellsOf(const std::vector<UsageWindow>& windows, const WindowKind& kind) {
    return std::ranges::any_of(windows, [&](const UsageWindow& window) { return isSameLimit(window.kind, kind); });
}

/// Each limit once, under the name that all sources give it, and no more than there can be.
std::vector<UsageWindow> bounded(std::vector<UsageWindow> windows) {
    std::vector<UsageWindow> result;
    for (UsageWindow& window : windows) {
        const bool isOfModel = window.kind.which() == WindowKind::Case::weekModel;
        if (isOfModel) {
            window.kind = modelWeek(firstCodePoints(window.kind.modelName(), kLongestName));
        }
        if ((!isOfModel || result.size() < kMostWindows) && !tellsOf(result, window.kind)) {
            result.push_back(std::move(window));
        }
    }
    return result;
}

OtherLimits bounded(OtherLimits others) {
    for (OtherLimit& limit : others.limits) {
        limit.name = firstCodePoints(limit.name, kLongestName);
    }
    if (others.credits) {
        others.credits->currency = firstCodePoints(others.credits->currency, kLongestName);
    }
    return others;
}

ClientAnswer fromText(UsageCommandParser::Result result, Instant now) {
    auto windows = bounded(std::move(result.windows));
    const bool isComplete = tellsOf(windows, WindowKind::session()) && tellsOf(windows, WindowKind::week());
    return {.windows = std::move(windows),
            .insights = std::move(result.insights),
            .fetchedAt = now,
            .answeredAt = now,
            .isComplete = isComplete};
}

ClientAnswer fromReport(UsageReport report, Instant now) {
    return {.windows = bounded(std::move(report.limits.windows)),
            .others = bounded(std::move(report.limits.others)),
            .insights = std::move(report.insights),
            .fetchedAt = now,
            .answeredAt = now,
            .isComplete = report.limits.hasList && report.limits.isUnderstood,
            .plan = std::string(firstCodePoints(report.plan, kLongestName))};
}

ProbeFailure noFigures() {
    return {.kind = Kind::commandFailed,
            .detail = "Claude Code could not get the figures just now.",
            .cause = ProbeFailure::Cause::noFiguresNow};
}

/// Signed out, and with an API key, the client answers the same; its settings tell when they name a helper for keys.
ProbeFailure noPlan() {
    constexpr std::size_t kLargestSettings = std::size_t{1} << 20U;
    const auto content = readFile(ClaudePaths::configDirectory() / "settings.json", kLargestSettings);
    const auto settings = content ? parseJson(*content) : std::nullopt;
    const bool hasKey = settings && findMember(*settings, "apiKeyHelper") != nullptr;
    return {.kind = Kind::notSubscription,
            .cause = hasKey ? ProbeFailure::Cause::apiKey : ProbeFailure::Cause::notSignedIn};
}

/// The failure with its cause, where the text of the answer tells it.
ProbeFailure explained(ProbeFailure failure, std::string_view output) {
    if (failure.kind == Kind::notSubscription) {
        return noPlan();
    }
    const auto envelope = readUsageEnvelope(output);
    if (failure.kind != Kind::unrecognizedOutput || !envelope) {
        return failure;
    }
    const std::string_view text = envelope->result;
    if (text.starts_with("Total cost:") || text.starts_with("Estimated cost:")) {
        return noPlan();
    }
    const bool isLineAlone =
        text.starts_with("You are currently using your subscription") && text.find('%') == std::string_view::npos;
    return isLineAlone ? noFigures() : failure;
}

/// One question to one client.
class Conversation {
public:
    Conversation(const ClientQuestion& question, std::filesystem::path client, const std::function<Instant()>& now,
                 const Cancellation* cancellation)
        : m_question(question),
          m_client(std::move(client)),
          m_now(now),
          m_cancellation(cancellation),
          m_deadline(Clock::now() + std::chrono::duration_cast<Clock::duration>(question.timeout)),
          m_memory(m_client, question.storesNothing ? ClientMemory::Keeping::nothing : ClientMemory::Keeping::all) {}

    /// With the time at which its figures were true, as far as the client tells it.
    ClientAnswer datedAnswer() {
        ClientAnswer told = answer();
        if (const auto cached = readCachedUsage(clientStateFile())) {
            if (!cached->isIn(told) && told.answeredAt - cached->fetchedAt > kYoung) {
                m_memory.noteMissingNote();  // a fresh answer, and the one before it is still there
            }
            dateAnswer(told, *cached);
            told.isFetchedAtCertain = m_memory.notesEachAnswer();
        }
        return told;
    }

private:
    ClientAnswer answer() {
        if (!m_memory.mayAskForReport(m_now())) {
            return askForText();
        }
        if (auto told = askForReport()) {
            return *std::move(told);
        }
        if (m_isUnknown) {
            m_memory.askForText(m_now(), kUnknownFor);
            return askForText();
        }
        ClientAnswer told = askForText();
        m_memory.askForText(m_now(), kUncertainFor);
        return told;
    }

    using Clock = std::chrono::steady_clock;

    ProcessResult run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
        return runClient({.executable = m_client,
                          .arguments = arguments,
                          .environment = UsageCommandProbe::cleanEnvironment(),
                          .input = input,
                          .timeout = m_deadline - Clock::now()},
                         m_cancellation);
    }

    /// Empty where the client does not know it, or seems not to.
    std::optional<ClientAnswer> askForReport() {
        const ProcessResult result = runForReport();
        const Instant now = m_now();
        UsageReport report = UsageReport::read(result.standardOutput, now);
        switch (report.outcome) {
            case UsageReport::Outcome::figures:
                break;
            case UsageReport::Outcome::noFigures:
                throw ProbeError(noFigures());
            case UsageReport::Outcome::noPlan:
                throw ProbeError(noPlan());
            case UsageReport::Outcome::refused:
                m_isUnknown = true;
                return std::nullopt;
            case UsageReport::Outcome::unreadable:
                m_isUnknown = result.standardError.find("unknown option") != std::string::npos;
                return std::nullopt;
        }
        const bool hidesBreakdown = report.hidesBreakdown;
        ClientAnswer told = fromReport(std::move(report), now);
        if (hidesBreakdown && m_question.wantsBreakdown) {
            told.insights = m_memory.mayAskForBreakdown(now) ? askForBreakdown() : loadBreakdown(now);
        }
        return told;
    }

    ProcessResult runForReport() {
        try {
            return run(UsageReport::arguments(), UsageReport::request());
        } catch (const ProbeError& error) {
            if (error.kind() == Kind::timedOut) {
                m_memory.askForText(m_now(), kHangingFor);  // which has the whole time to itself then
            }
            throw;
        }
    }

    ClientAnswer askForText() {
        const std::string output = outputOf(run(UsageCommandProbe::arguments()));
        const Instant now = m_now();
        try {
            return fromText(UsageCommandProbe::interpret(output, now), now);
        } catch (const ProbeError& error) {
            throw ProbeError(explained(error.failure(), output));
        }
    }

    /// For other programs as well, which may not ask for it before an hour has passed. Whatever goes wrong, the figures
    /// are there.
    std::optional<UsageInsights> askForBreakdown() {
        m_memory.noteBreakdown(m_now());
        try {
            auto breakdown = askForText().insights;
            if (!m_question.storesNothing) {
                saveBreakdown(breakdown);
            }
            return breakdown;
        } catch (const ProbeError&) {
            return std::nullopt;
        }
    }

    const ClientQuestion& m_question;
    const std::filesystem::path m_client;
    const std::function<Instant()>& m_now;
    const Cancellation* const m_cancellation;
    const Clock::time_point m_deadline;
    ClientMemory m_memory;
    bool m_isUnknown = false;  ///< It said that it does not know the report.
};

}  // namespace

ClientAnswer ClientQuestion::ask(const std::function<Instant()>& now, const Cancellation* cancellation) const {
    auto client = ClaudeLocator::locate(claudePath);
    if (!client) {
        throw ProbeError(Kind::claudeNotFound);
    }
    return Conversation(*this, *std::move(client), now, cancellation).datedAnswer();
}

}  // namespace vorn
