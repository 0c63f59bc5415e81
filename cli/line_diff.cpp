#include "cli/line_diff.hpp"

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>

namespace vorn::cli {
namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t kContext = 3;
/// Beyond this many cells all lines count as changed, rather than that anybody waits or memory runs out.
constexpr std::size_t kLargestTable = std::size_t{16} << 20U;

/// Every line with its line break, so that a last one without is a line of its own.
Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

struct Row {
    char mark;  ///< ' ', '-' or '+'
    std::string_view line;
};

/// The longest common subsequence of what lies between a common start and a common end.
class Comparison {
public:
    Comparison(Lines before, Lines after) : m_before(std::move(before)), m_after(std::move(after)) {}

    std::vector<Row> rows() {
        const auto [firstOld, firstNew] = std::ranges::mismatch(m_before, m_after);
        const auto same = static_cast<std::size_t>(firstOld - m_before.begin());
        std::size_t oldEnd = m_before.size();
        std::size_t newEnd = m_after.size();
        while (oldEnd > same && newEnd > same && m_before[oldEnd - 1] == m_after[newEnd - 1]) {
            --oldEnd;
            --newEnd;
        }
        add(' ', {m_before.begin(), firstOld});
        middle({m_before.begin() + static_cast<std::ptrdiff_t>(same),
                m_before.begin() + static_cast<std::ptrdiff_t>(oldEnd)},
               {firstNew, m_after.begin() + static_cast<std::ptrdiff_t>(newEnd)});
        add(' ', {m_before.begin() + static_cast<std::ptrdiff_t>(oldEnd), m_before.end()});
        return std::move(m_rows);
    }

private:
    void add(char mark, const Lines& lines) {
        for (const std::string_view line : lines) {
            m_rows.push_back({mark, line});
        }
    }

    void middle(const Lines& before, const Lines& after) {
        const std::size_t width = after.size() + 1;
        if (before.empty() || after.empty() || (before.size() + 1) * width > kLargestTable) {
            add('-', before);
            add('+', after);
            return;
        }
        // common[i * width + j]: how many lines the tails from i and from j have in common
        std::vector<std::uint32_t> common((before.size() + 1) * width, 0);
        for (std::size_t i = before.size(); i-- > 0;) {
            for (std::size_t j = after.size(); j-- > 0;) {
                common[i * width + j] = before[i] == after[j]
                                            ? common[(i + 1) * width + j + 1] + 1
                                            : std::max(common[(i + 1) * width + j], common[i * width + j + 1]);
            }
        }
        std::size_t i = 0;
        std::size_t j = 0;
        while (i < before.size() || j < after.size()) {
            if (i < before.size() && j < after.size() && before[i] == after[j]) {
                m_rows.push_back({' ', before[i++]});
                ++j;
            } else if (j == after.size() ||
                       (i < before.size() && common[(i + 1) * width + j] >= common[i * width + j + 1])) {
                m_rows.push_back({'-', before[i++]});
            } else {
                m_rows.push_back({'+', after[j++]});
            }
        }
    }

    Lines m_before;
    Lines m_after;
    std::vector<Row> m_rows;
};

/// Counted from 1; an empty stretch is named by the line before it.
std::string range(std::size_t start, std::size_t count) {
    return fmt::format("{},{}", count == 0 ? start : start + 1, count);
}

}  // namespace

std::vector<std::string> lineDiff(std::string_view before, std::string_view after) {
    const std::vector<Row> rows = Comparison(linesOf(before), linesOf(after)).rows();
    std::vector<std::string> result;
    std::size_t oldLine = 0;
    std::size_t newLine = 0;
    const auto isChange = [&](std::size_t i) {
        return rows[i].mark != ' ';
    };
    for (std::size_t i = 0; i < rows.size();) {
        // A stretch begins and ends with some unchanged lines, and ends where more than twice as many follow.
        std::size_t firstChange = i;
        while (firstChange < rows.size() && !isChange(firstChange)) {
            ++firstChange;
        }
        if (firstChange == rows.size()) {
            break;
        }
        const std::size_t start = std::max(i, firstChange - std::min(firstChange, kContext));
        std::size_t end = firstChange;
        for (std::size_t j = firstChange; j < rows.size() && j <= end + 2 * kContext; ++j) {
            end = isChange(j) ? j : end;
        }
        end = std::min(rows.size(), end + 1 + kContext);
        oldLine += start - i;
        newLine += start - i;
        std::vector<std::string> stretch;
        std::size_t oldCount = 0;
        std::size_t newCount = 0;
        for (std::size_t j = start; j < end; ++j) {
            const auto [mark, line] = rows[j];
            oldCount += mark == '+' ? 0 : 1;
            newCount += mark == '-' ? 0 : 1;
            const bool isEnded = line.ends_with('\n');
            stretch.push_back(mark + std::string(line.substr(0, line.size() - (isEnded ? 1 : 0))));
            if (!isEnded) {
                stretch.emplace_back("\\ No newline at end of file");
            }
        }
        result.push_back("@@ -" + range(oldLine, oldCount) + " +" + range(newLine, newCount) + " @@");
        result.insert(result.end(), stretch.begin(), stretch.end());
        oldLine += oldCount;
        newLine += newCount;
        i = end;
    }
    return result;
}

}  // namespace vorn::cli
