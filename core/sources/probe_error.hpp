#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vorn {

/// Why the usage command gave no reading. `what()` is the fixed text that people see.
class ProbeError : public std::runtime_error {
public:
    enum class Kind : std::uint8_t {
        launchFailed,        ///< payload: the system's reason
        commandFailed,       ///< payload: what the command printed
        unrecognizedOutput,  ///< payload: a snippet of the output
        claudeNotFound,
        timedOut,
        notSubscription,
    };

    explicit ProbeError(Kind kind, std::string payload = {});

    [[nodiscard]] Kind kind() const noexcept { return m_kind; }
    [[nodiscard]] const std::string& payload() const noexcept { return m_payload; }
    /// One more line for a terminal where there is something to do; else empty. `message`: what `what()` gives, which
    /// is all that is kept of an error between runs.
    static std::string adviceFor(std::string_view message);
    [[nodiscard]] std::string advice() const { return adviceFor(what()); }

    bool operator==(const ProbeError& other) const { return m_kind == other.m_kind && m_payload == other.m_payload; }

private:
    Kind m_kind;
    std::string m_payload;
};

}  // namespace vorn
