#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorn {

/// A compiled pattern over UTF-8 text. `\s` is every white space of Unicode, `\d` every decimal digit: a group of
/// digits need not convert to a number. Compile each pattern once; matching is safe from several threads.
class RegularExpression {
public:
    /// The groups in order, [0] being the whole match; a group that took no part is absent.
    using Match = std::vector<std::optional<std::string>>;

    /// Throws std::invalid_argument when the pattern is wrong.
    explicit RegularExpression(std::string_view pattern);
    ~RegularExpression();
    RegularExpression(const RegularExpression&) = delete;
    RegularExpression& operator=(const RegularExpression&) = delete;

    /// The first match anywhere. Empty when there is none, or when the search is not done within a fixed number of
    /// steps (some tens of milliseconds), which ends what hostile text can make it do.
    [[nodiscard]] std::optional<Match> firstMatch(std::string_view text) const;

private:
    class Compiled;
    std::unique_ptr<const Compiled> m_compiled;
};

}  // namespace vorn
