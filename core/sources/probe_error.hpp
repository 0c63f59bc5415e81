#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

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
    /// One more line for a terminal where the cause is known and there is something to do; else empty.
    [[nodiscard]] std::string advice() const;

    bool operator==(const ProbeError& other) const { return m_kind == other.m_kind && m_payload == other.m_payload; }

private:
    Kind m_kind;
    std::string m_payload;
};

}  // namespace vorn
