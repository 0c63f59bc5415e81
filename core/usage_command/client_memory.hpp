#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/support/time.hpp"

namespace vorn {

/// What is remembered of asking one executable, so that nobody tries again what it does not know. It is kept in a file,
/// for all programs of this user, and where that cannot be written, for the life of this process.
class ClientMemory {
public:
    enum class Keeping : bool { nothing, all };
    /// Another file in its place, or other content, is another executable. With `nothing`, what is told below is
    /// forgotten with the object.
    ClientMemory(const std::filesystem::path& executable, Keeping keeping);

    /// Whether it is worth asking for the structured form: not while it is known that it does not know it.
    [[nodiscard]] bool mayAskForReport(Instant now) const;
    /// For how long it is asked for the text alone. Not for ever: a script in front of the client stays the same when
    /// the client changes.
    void askForText(Instant now, Seconds span);

    /// The text is asked for the sake of its breakdown at most once an hour.
    [[nodiscard]] bool mayAskForBreakdown(Instant now) const;
    void noteBreakdown(Instant now);

    /// Whether it notes the time of each answer that it fetches, as far as is known: some versions do so now and then.
    [[nodiscard]] bool notesEachAnswer() const { return m_notesEachAnswer; }
    void noteMissingNote();

private:
    void load();
    void save() const;

    std::string m_executable;  ///< Its identity; empty when nothing can be told of it.
    Keeping m_keeping;
    std::optional<Instant> m_textUntil;
    std::optional<Instant> m_breakdownAt;
    bool m_notesEachAnswer = true;
};

}  // namespace vorn
