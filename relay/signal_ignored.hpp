#pragma once

#include <csignal>

namespace vorn::relay {

/// Ignores a signal for the life of the object. Afterwards none of the time in between is pending, and what the process
/// was given to do with it holds again.
class SignalIgnored {
public:
    explicit SignalIgnored(int signal) noexcept : m_signal(signal) { ignore(&m_before); }
    ~SignalIgnored() {
        ignore(nullptr);  // drops one that came while it was blocked
        ::sigaction(m_signal, &m_before, nullptr);
    }
    SignalIgnored(const SignalIgnored&) = delete;
    SignalIgnored& operator=(const SignalIgnored&) = delete;

private:
    void ignore(struct sigaction* before) const noexcept {
        struct sigaction ignored {};
        ignored.sa_handler = SIG_IGN;
        ::sigaction(m_signal, &ignored, before);
    }

    int m_signal;
    struct sigaction m_before {};
};

}  // namespace vorn::relay
