#include "core/usage_command/usage_envelope.hpp"

#include <cstddef>
#include <cstdint>
#include <utility>

#include <nlohmann/json.hpp>

namespace vorn {
namespace {

/// Takes the two members out of the stream of tokens. A document tree of hostile input (5 MB of "[") would take
/// hundreds of megabytes before it is found not to be an object.
class EnvelopeReader : public nlohmann::json_sax<nlohmann::json> {
public:
    [[nodiscard]] UsageEnvelope take() { return std::move(m_envelope); }

    bool null() override { return scalar(); }
    bool boolean(bool value) override {
        const bool goesOn = scalar();
        if (m_member == Member::isError) {
            m_envelope.isError = value;
        }
        return goesOn;
    }
    bool number_integer(number_integer_t /*value*/) override { return scalar(); }
    bool number_unsigned(number_unsigned_t /*value*/) override { return scalar(); }
    bool number_float(number_float_t /*value*/, const string_t& /*digits*/) override { return scalar(); }
    bool binary(binary_t& /*value*/) override { return scalar(); }
    bool string(string_t& value) override {
        const bool goesOn = scalar();
        if (m_member == Member::result) {
            m_envelope.result = std::move(value);
        }
        return goesOn;
    }

    bool start_object(std::size_t /*size*/) override {
        clearMember();
        m_member = Member::other;
        ++m_depth;
        return true;
    }
    bool start_array(std::size_t /*size*/) override {
        clearMember();
        m_member = Member::other;
        return m_depth++ > 0;
    }
    bool key(string_t& name) override {
        m_member = Member::other;
        if (m_depth == 1 && name == "result") {
            m_member = Member::result;
        } else if (m_depth == 1 && name == "is_error") {
            m_member = Member::isError;
        }
        return true;
    }
    bool end_object() override {
        --m_depth;
        return true;
    }
    bool end_array() override {
        --m_depth;
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*reason*/) override {
        return false;
    }

private:
    enum class Member : std::uint8_t { other, result, isError };

    /// False ends the reading: the document is no object.
    bool scalar() {
        clearMember();
        return m_depth > 0;
    }

    /// A later member replaces an earlier one of its name, also by a value of the wrong type.
    void clearMember() {
        if (m_member == Member::result) {
            m_envelope.result.clear();
        } else if (m_member == Member::isError) {
            m_envelope.isError = false;
        }
    }

    UsageEnvelope m_envelope;
    Member m_member = Member::other;  ///< of the outermost object: whose value comes next
    std::size_t m_depth = 0;
};

}  // namespace

std::optional<UsageEnvelope> readUsageEnvelope(std::string_view output) {
    EnvelopeReader reader;
    if (!nlohmann::json::sax_parse(output, &reader)) {
        return std::nullopt;
    }
    return reader.take();
}

}  // namespace vorn
