#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {
namespace {

constexpr std::size_t kLongestText = std::size_t{256} << 20U;

}  // namespace

icu::UnicodeString toIcuText(std::string_view utf8) {
    const std::string_view text = utf8.substr(0, kLongestText);
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

}  // namespace vorn
