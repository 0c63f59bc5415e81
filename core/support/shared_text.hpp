#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace vorn {

/// An immutable text whose copies share one allocation: for records that repeat the same few texts by the thousand.
/// Reads like a `const std::string`.
class SharedText {
public:
    SharedText() = default;
    // Not explicit: a text goes wherever a shared one is asked for.
    SharedText(std::string text) {  // NOLINT(google-explicit-constructor)
        if (!text.empty()) {
            m_text = std::make_shared<const std::string>(std::move(text));
        }
    }
    SharedText(const char* text) : SharedText(std::string(text)) {}  // NOLINT(google-explicit-constructor)
    explicit SharedText(std::string_view text) : SharedText(std::string(text)) {}

    [[nodiscard]] const std::string& str() const {
        static const std::string kEmpty;
        return m_text ? *m_text : kEmpty;
    }
    operator const std::string&() const { return str(); }  // NOLINT(google-explicit-constructor)
    operator std::string_view() const { return str(); }    // NOLINT(google-explicit-constructor)
    [[nodiscard]] bool empty() const { return !m_text; }

    friend bool operator==(const SharedText& a, const SharedText& b) {
        return a.m_text == b.m_text || a.str() == b.str();
    }
    friend bool operator==(const SharedText& a, std::string_view b) { return a.str() == b; }
    friend bool operator==(const SharedText& a, const std::string& b) { return a.str() == b; }
    friend bool operator==(const SharedText& a, const char* b) { return a.str() == b; }
    friend std::ostream& operator<<(std::ostream& out, const SharedText& text) { return out << text.str(); }

private:
    std::shared_ptr<const std::string> m_text;  ///< Null for the empty text.
};

}  // namespace vorn
