#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "core/data/client_answer.hpp"
#include "core/data/outcome.hpp"
#include "core/data/probe_record.hpp"
#include "core/data/refused_turn.hpp"
#include "core/data/usage_state.hpp"

namespace vorn {

/// What is believed of the limits. Readings go in as the sources gave them; what is held of them, and what of that is
/// to be recorded, comes out. It knows no clock and no files: programs that use it differ only in when they call it.
///
/// A reading's time is when its figures were true. One that is not newer than what is held is no second reading: it
/// confirms nothing and is not recorded. A large fall is believed when it was announced, when a reading a minute later
/// still shows it, or when the other source shows it as well. A limit that two complete answers a minute apart do not
/// list is gone. One window of a model has one name, whatever a source calls it.
///
/// Until `begin` has told what was known before, readings are held as they come, so that they can be shown; they are
/// judged then, in the order in which they came.
class Ledger {
public:
    /// What came of taking readings in.
    struct Taken {
        std::vector<UsageWindow> toRecord{};  ///< What is now held of each limit that something new was told of.
        std::vector<Outcome> moved{};         ///< Reset times that changed within an instance.
        bool isRecordedElsewhere = false;     ///< Another program has written them to the history already.
        bool isMemoryChanged = false;         ///< What `remember` adds to the record is no longer what it was.
        bool operator==(const Taken&) const = default;
    };

    /// `known`: what the history still tells, by kind. Returns what came of each time that readings came early. Once.
    std::vector<Taken> begin(std::span<const UsageWindow> known, Instant now);
    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }

    /// An answer of the client to this program.
    Taken takeAnswer(ClientAnswer answer, Instant now);
    /// Limits that are no windows, as another source told of them: what is newer of each counts.
    void takeOthers(const OtherLimits& others);
    /// What the relay left.
    Taken takeSnapshot(std::vector<UsageWindow> readings, Instant now);
    /// An answer that another program was given, and the falls it saw. `announced`: those of the record's resets that
    /// this ledger does not know of; they were announced after that answer was judged, so the next one is meant.
    Taken takeRecord(const ProbeRecord& record, std::set<WindowKind> announced, Instant now);

    /// What the transcripts tell of refused turns, all that are known. True when that changed anything.
    bool takeRefusals(std::span<const RefusedTurn> refusals, Instant now);

    /// The user announced early resets: the next large fall of these limits is believed at once.
    void announce(const std::set<WindowKind>& kinds);
    void setInsights(std::optional<UsageInsights> insights) { m_state.setInsights(std::move(insights)); }
    /// After the clock was set back, see `UsageState::noticeTime`.
    void noticeTime(Instant now) { m_state.noticeTime(now); }

    [[nodiscard]] const UsageState& state() const { return m_state; }
    /// Every limit as it stands at `now`, ordered by kind: those that are gone are left out, and one for which a turn
    /// was refused is at its limit.
    [[nodiscard]] std::vector<UsageWindow> windows(Instant now) const;
    /// Those of windows that answers told of last.
    [[nodiscard]] const OtherLimits& others() const { return m_others; }
    /// A large fall was seen that nothing has confirmed yet: the next answer of the client will tell.
    [[nodiscard]] bool doubts() const { return !m_state.pendingDrops().empty(); }
    /// When the latest of those falls was seen first.
    [[nodiscard]] std::optional<Instant> doubtsSince() const;

    /// Fills in what the record keeps of the ledger for other programs and the next start: the client's last answer
    /// before any judgement, announced resets that were not seen yet, and falls that were seen once; of several looks
    /// at one fall the record keeps the first.
    void remember(ProbeRecord& record) const;

private:
    /// What came before there was anything to judge it by.
    struct Early {
        std::vector<UsageWindow> readings{};
        std::vector<UsageWindow> drops{};
        std::set<WindowKind> announced{};  ///< After the readings.
        bool isRecordedElsewhere = false;
    };

    Taken take(Early news, Instant now);
    Taken judge(const Early& news, Instant now);
    void judgeOne(const UsageWindow& reading, Taken& taken);
    [[nodiscard]] bool isConfirmed(const UsageWindow& reading, const UsageWindow& held) const;
    [[nodiscard]] WindowKind nameHeld(WindowKind kind) const;
    void giveNamesHeld(std::vector<UsageWindow>& readings) const;
    void noteListed(const ClientAnswer& answer);
    void noteFalls(std::span<const UsageWindow> seenElsewhere);
    [[nodiscard]] bool isGone(const UsageWindow& held) const;
    void raise(UsageWindow& window, Instant now) const;

    UsageState m_state;
    std::map<WindowKind, UsageWindow> m_falls;  ///< Of each fall that is not believed yet, the first look.
    std::map<WindowKind, ProbeRecord::Missing> m_missing;
    std::map<WindowKind, RefusedTurn> m_refusals;  ///< The last of each limit.
    OtherLimits m_others;
    std::string m_account;                  ///< Whose answers those are.
    std::vector<UsageWindow> m_lastAnswer;  ///< Of the client, before any judgement.
    std::vector<Early> m_early;
    bool m_hasBegun = false;
};

}  // namespace vorn
