#include "core/support/unicode/regular_expression.hpp"

#include <stdexcept>

#include <unicode/regex.h>

#include "core/support/unicode/icu_conversion.hpp"

namespace vorn {
namespace {

/// In ICU's unit of ten thousand steps, each of which takes about half a millisecond.
constexpr std::int32_t kStepLimit = 100;

std::optional<std::string> groupText(const icu::RegexMatcher& matcher, std::int32_t group) {
    UErrorCode status = U_ZERO_ERROR;
    if (matcher.start(group, status) < 0) {
        return std::nullopt;
    }
    std::string text;
    matcher.group(group, status).toUTF8String(text);
    return text;
}

}  // namespace

class RegularExpression::Compiled {
public:
    std::unique_ptr<const icu::RegexPattern> pattern;
};

RegularExpression::RegularExpression(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError where{};
    auto compiled = std::make_unique<Compiled>();
    compiled->pattern.reset(icu::RegexPattern::compile(toIcuText(pattern), where, status));
    if (U_FAILURE(status) != 0) {
        throw std::invalid_argument("Invalid regular expression: " + std::string(pattern));
    }
    m_compiled = std::move(compiled);
}

RegularExpression::~RegularExpression() = default;

std::optional<RegularExpression::Match> RegularExpression::firstMatch(std::string_view text) const {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString input = toIcuText(text);
    const std::unique_ptr<icu::RegexMatcher> matcher(m_compiled->pattern->matcher(input, status));
    if (U_FAILURE(status) != 0) {
        return std::nullopt;
    }
    matcher->setTimeLimit(kStepLimit, status);
    if (matcher->find(status) == 0 || U_FAILURE(status) != 0) {
        return std::nullopt;
    }
    Match match;
    for (std::int32_t group = 0; group <= matcher->groupCount(); ++group) {
        match.push_back(groupText(*matcher, group));
    }
    return match;
}

}  // namespace vorn
