#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorn {

/// A desktop entry file, seen through its main group. Every line that is not set or removed stays as it is.
class DesktopEntry {
public:
    explicit DesktopEntry(std::string_view text);

    /// The value of a key, without the file's escapes; empty when the key is absent.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    [[nodiscard]] bool isTrue(std::string_view key) const;
    /// The value of a key as a list, whose parts are separated by semicolons.
    [[nodiscard]] std::vector<std::string> list(std::string_view key) const;
    /// Whether there is nothing besides these keys: no comment, no other group.
    [[nodiscard]] bool hasOnly(std::span<const std::string_view> keys) const;

    void set(std::string_view key, std::string_view value);
    void remove(std::string_view key);
    [[nodiscard]] std::string text() const;

private:
    struct Lines {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    [[nodiscard]] std::optional<Lines> mainGroup() const;

    std::vector<std::string> m_lines;
};

/// One word of a command line as the key Exec wants it.
std::string execWord(std::string_view argument);
/// The words of an Exec value; empty when a quote is left open. Field codes ("%U") stay.
std::vector<std::string> execWords(std::string_view exec);

}  // namespace vorn
