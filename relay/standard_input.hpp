#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "core/support/descriptor.hpp"

namespace vorn::relay {

/// Finds the end of a JSON object that comes in pieces. Knows brackets and texts, and leaves it to the reader to say
/// whether what is between them is JSON.
class ObjectEnd {
public:
    /// Takes the next piece. True once the object's last bracket was in one.
    bool isPassed(std::string_view piece) noexcept;

private:
    void take(char c) noexcept;

    std::size_t m_depth = 0;
    bool m_hasBegun = false;
    bool m_isOther = false;  ///< Something else came first, so there will be no object.
    bool m_isInText = false;
    bool m_isEscaped = false;
    bool m_isPassed = false;
};

/// Standard input: read here, and handed to a command as if nobody had read it. Never throws; whatever cannot be read
/// and given back is left as it came.
class StandardInput {
public:
    /// Reads to the end, or until there is more than anything Claude Code sends, and waits for the end at most 100 ms
    /// once a whole JSON object has come. A file keeps its position; terminals, devices and everything else that cannot
    /// be given back are not read at all.
    StandardInput() noexcept;

    /// All of it, or all that came until the waiting was over; empty when it was not read or is too long.
    [[nodiscard]] std::optional<std::string_view> whole() const;

    /// Makes descriptor 0 deliver everything from the start: a pipe again where a pipe was, a socket for a socket, the
    /// file at its old position. What does not fit into the kernel's buffer is fed by a process of its own, which is
    /// nobody's child and ends with the last reader.
    void handOn() noexcept;

    /// Has what is left read, so that whoever writes it does not get an error: by such a process, when the waiting was
    /// over before the end had come.
    void drain() noexcept;

private:
    enum class Kind : std::uint8_t { untouched, file, pipe, socket };

    [[nodiscard]] static Kind kindOfInput() noexcept;
    [[nodiscard]] bool openReplacement() noexcept;
    void readFile() noexcept;
    void readStream() noexcept;
    [[nodiscard]] std::string_view fillReplacement() noexcept;
    /// Has a process of its own write `rest` and what is still to come to `output`.
    [[nodiscard]] bool startFeeder(int output, std::string_view rest) const noexcept;
    [[noreturn]] void feed(int output, std::string_view rest) const noexcept;
    /// Where no further process can be had: the right bytes from a file are better than half of them from a pipe.
    void spill() noexcept;

    Kind m_kind = Kind::untouched;
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    bool m_ended = false;
    bool m_isWhole = false;  ///< A whole object has come; its end may not.
    Descriptor m_readEnd;    ///< what becomes descriptor 0; made before anything is read that could not be given back
    Descriptor m_writeEnd;
};

}  // namespace vorn::relay
