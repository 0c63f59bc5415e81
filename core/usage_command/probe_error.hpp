#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "core/data/probe_failure.hpp"

namespace vorn {

/// The usage command gave no reading. `what()` is what people are told.
class ProbeError : public std::runtime_error {
public:
    using Kind = ProbeFailure::Kind;

    explicit ProbeError(ProbeFailure failure)
        : std::runtime_error(description(failure)), m_failure(std::move(failure)) {}
    explicit ProbeError(Kind kind, std::string payload = {})
        : ProbeError(ProbeFailure{.kind = kind, .detail = std::move(payload)}) {}

    [[nodiscard]] const ProbeFailure& failure() const noexcept { return m_failure; }
    [[nodiscard]] Kind kind() const noexcept { return m_failure.kind; }
    [[nodiscard]] const std::string& payload() const noexcept { return m_failure.detail; }

    /// Whatever is known of the cause.
    bool operator==(const ProbeError& other) const { return kind() == other.kind() && payload() == other.payload(); }

private:
    ProbeFailure m_failure;
};

}  // namespace vorn
