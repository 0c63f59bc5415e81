#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "cli/record_keeper.hpp"
#include "core/analysis/answer.hpp"
#include "core/support/process/process.hpp"
#include "core/transcripts/local_activity_scanner.hpp"

namespace vorn::cli {

/// Whether a run asks the client.
enum class Probing : std::uint8_t {
    whenStale,  ///< when the newest reading is old and a failed client has had its rest
    always,
    never,
};

struct EvidenceRequest {
    std::optional<std::string> claudePath;  ///< The executable to use whatever was chosen in the application.
    Probing probing = Probing::whenStale;
    /// Age of the newest reading from which the client is asked; empty: as often as the application asks it.
    std::optional<Seconds> staleAfter = Seconds{60};
    /// The breakdown is shown: where the client's best form does not tell it, the other one is asked for as well.
    bool wantsBreakdown = false;
    bool storesNothing = false;  ///< For a home in which nothing may be written.
    bool wholeWeek = false;      ///< Read a week of local activity, not just what the session's rate needs.
    bool withRatio = true;       ///< Learn what a session costs of the week, which walks the whole history.
    std::optional<Instant> now;  ///< Instead of the clock; nothing is then written.
};

/// Reads what an answer is formed from: the history, the record of probes, what the relay left, the user's choices and
/// plan, the transcripts, and where that is due the client. What was read is recorded. Of programs that would ask at
/// the same time one does, and the others wait for what it records. Whatever fails is in the result.
class EvidenceReader {
public:
    /// `cancellation` must outlive the reader.
    explicit EvidenceReader(const Cancellation& cancellation) : m_cancellation(cancellation) {}

    /// What the result points to holds until the next call. What was chosen in the application counts where the
    /// request leaves it open. Throws Cancelled.
    Evidence read(const EvidenceRequest& request);

private:
    const Cancellation& m_cancellation;
    RecordKeeper m_records;
    HistoryIndex m_history;
    std::unique_ptr<LocalActivityScanner> m_scanner;  ///< Knows what it has read already.
};

}  // namespace vorn::cli
