#include "core/data/activity/activity_event.hpp"

#include <algorithm>

namespace vorn {
namespace {

bool containsIgnoringCase(std::string_view text, std::string_view lowerCaseWord) {
    const auto matches = [](char c, char lower) {
        return c == lower || (c >= 'A' && c <= 'Z' && c + 32 == lower);
    };
    return std::search(text.begin(), text.end(), lowerCaseWord.begin(), lowerCaseWord.end(), matches) != text.end();
}

/// The family multiplier in thirds. A name with both words is a haiku.
int familyThirds(std::string_view model) {
    if (containsIgnoringCase(model, "haiku")) {
        return 1;
    }
    return containsIgnoringCase(model, "sonnet") ? 3 : 5;
}

}  // namespace

double familyMultiplier(std::string_view model) {
    return familyThirds(model) / 3.0;
}

double TokenCounts::weightSixtieths(std::string_view model) const {
    // 1, 5, 0.1, 1.25 and 2 in twentieths; with the thirds of the family that makes sixtieths.
    const double twentieths = 20.0 * static_cast<double>(input) + 100.0 * static_cast<double>(output) +
                              2.0 * static_cast<double>(cacheRead) + 25.0 * static_cast<double>(cacheWrite5m) +
                              40.0 * static_cast<double>(cacheWrite1h);
    return twentieths * familyThirds(model);
}

TokenCounts& TokenCounts::operator+=(const TokenCounts& other) {
    input += other.input;
    output += other.output;
    cacheRead += other.cacheRead;
    cacheWrite5m += other.cacheWrite5m;
    cacheWrite1h += other.cacheWrite1h;
    return *this;
}

std::string_view projectName(std::string_view cwd) {
    if (cwd.empty()) {
        return "Unknown";
    }
    const std::size_t last = cwd.find_last_not_of('/');
    if (last == std::string_view::npos) {
        return "/";
    }
    cwd = cwd.substr(0, last + 1);
    return cwd.substr(cwd.rfind('/') + 1);  // npos + 1 is 0: a path without a slash is its own last component
}

}  // namespace vorn
