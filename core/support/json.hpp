#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "core/support/date_coding.hpp"
#include "core/support/time.hpp"

/// Reading and writing the small JSON records that Vorn owns. Keys are sorted (`nlohmann::json` keeps objects in key
/// order), absent optionals are left out.
namespace vorn {

/// A document or record does not have the form its type asks for.
class DecodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

nlohmann::json encodeDate(Instant instant, DateCoding coding);
/// Throws DecodingError.
Instant decodeDate(const nlohmann::json& value, DateCoding coding);

/// The member `key` of `object`; throws DecodingError when `object` is no object or has no such member.
const nlohmann::json& requireMember(const nlohmann::json& object, const char* key);
/// The member `key`, or null when it is absent or JSON null.
const nlohmann::json* findMember(const nlohmann::json& object, const char* key);

// A finite number, a text, a whole number: anything else throws DecodingError.
double decodeNumber(const nlohmann::json& value);
std::string decodeText(const nlohmann::json& value);
std::int64_t decodeInteger(const nlohmann::json& value);

/// Parses a whole document; empty when it is not JSON.
std::optional<nlohmann::json> parseJson(std::string_view text);
/// Serialises without failing: invalid UTF-8 is repaired.
std::string dumpJson(const nlohmann::json& value, bool pretty = false);

}  // namespace vorn
