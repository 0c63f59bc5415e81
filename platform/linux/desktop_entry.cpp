#include "platform/linux/desktop_entry.hpp"

#include <algorithm>

namespace vorn {

namespace {

constexpr std::string_view kMainGroup = "[Desktop Entry]";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

bool isGroup(std::string_view line) {
    return trimmed(line).starts_with('[');
}

/// Empty for a line without one.
std::string_view keyOf(std::string_view line) {
    const auto text = trimmed(line);
    const auto equals = text.find('=');
    return text.starts_with('#') || equals == std::string_view::npos ? "" : trimmed(text.substr(0, equals));
}

std::string escaped(std::string_view value) {
    std::string text;
    for (const char c : value) {
        switch (c) {
            case '\\':
                text += "\\\\";
                break;
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            case '\t':
                text += "\\t";
                break;
            default:
                text += c;
        }
    }
    return text;
}

std::string unescaped(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            value += text[i];
            continue;
        }
        switch (const char c = text[++i]) {
            case 's':
                value += ' ';
                break;
            case 'n':
                value += '\n';
                break;
            case 'r':
                value += '\r';
                break;
            case 't':
                value += '\t';
                break;
            case '\\':
                value += '\\';
                break;
            default:
                value += '\\';
                value += c;
        }
    }
    return value;
}

}  // namespace

DesktopEntry::DesktopEntry(std::string_view text) : m_lines(split(text, '\n')) {}

std::optional<DesktopEntry::Lines> DesktopEntry::mainGroup() const {
    const auto isMain = [](const std::string& line) {
        return trimmed(line) == kMainGroup;
    };
    const auto head = std::find_if(m_lines.begin(), m_lines.end(), isMain);
    if (head == m_lines.end()) {
        return std::nullopt;
    }
    const auto end = std::find_if(head + 1, m_lines.end(), isGroup);
    return Lines{.begin = static_cast<std::size_t>(head + 1 - m_lines.begin()),
                 .end = static_cast<std::size_t>(end - m_lines.begin())};
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const {
    const auto group = mainGroup().value_or(Lines{});
    for (auto i = group.begin; i < group.end; ++i) {
        if (keyOf(m_lines[i]) == key) {
            return unescaped(trimmed(std::string_view(m_lines[i]).substr(m_lines[i].find('=') + 1)));
        }
    }
    return std::nullopt;
}

bool DesktopEntry::isTrue(std::string_view key) const {
    const auto text = value(key);
    return text == "true" || text == "1";
}

std::vector<std::string> DesktopEntry::list(std::string_view key) const {
    return split(value(key).value_or(""), ';');
}

bool DesktopEntry::hasOnly(std::span<const std::string_view> keys) const {
    return std::all_of(m_lines.begin(), m_lines.end(), [&](const std::string& line) {
        return trimmed(line).empty() || trimmed(line) == kMainGroup ||
               std::find(keys.begin(), keys.end(), keyOf(line)) != keys.end();
    });
}

void DesktopEntry::set(std::string_view key, std::string_view value) {
    remove(key);
    if (!mainGroup()) {
        m_lines.insert(m_lines.begin(), std::string(kMainGroup));
    }
    auto [begin, end] = *mainGroup();
    while (end > begin && trimmed(m_lines[end - 1]).empty()) {
        --end;
    }
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(end), std::string(key) + '=' + escaped(value));
}

void DesktopEntry::remove(std::string_view key) {
    const auto group = mainGroup().value_or(Lines{});
    const auto begin = m_lines.begin() + static_cast<std::ptrdiff_t>(group.begin);
    const auto end = m_lines.begin() + static_cast<std::ptrdiff_t>(group.end);
    m_lines.erase(std::remove_if(begin, end, [&](const std::string& line) { return keyOf(line) == key; }), end);
}

std::string DesktopEntry::text() const {
    std::string text;
    for (const std::string& line : m_lines) {
        text += line + '\n';
    }
    return text;
}

std::string execWord(std::string_view argument) {
    std::string word;
    bool needsQuotes = argument.empty();
    for (const char c : argument) {
        needsQuotes = needsQuotes || std::string_view(" \t\n\"'\\><~|&;$*?#()`").find(c) != std::string_view::npos;
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos) {
            word += '\\';
        }
        word += c;
        if (c == '%') {
            word += c;
        }
    }
    return needsQuotes ? '"' + word + '"' : word;
}

std::vector<std::string> execWords(std::string_view exec) {
    std::vector<std::string> words;
    bool isInWord = false;
    bool isQuoted = false;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (!isQuoted && (c == ' ' || c == '\t' || c == '\n')) {
            isInWord = false;
            continue;
        }
        if (!isInWord) {
            words.emplace_back();
            isInWord = true;
        }
        const bool isEscape = (isQuoted && c == '\\') || exec.substr(i, 2) == "%%";
        if (c == '"') {
            isQuoted = !isQuoted;
        } else if (isEscape && i + 1 < exec.size()) {
            words.back() += exec[++i];
        } else {
            words.back() += c;
        }
    }
    return isQuoted ? std::vector<std::string>() : words;
}

}  // namespace vorn
