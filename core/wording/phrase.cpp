#include "core/wording/phrase.hpp"

#include <utility>

namespace vorn::Format {
namespace {

constexpr const char* kJoint = " · ";

}  // namespace

std::string Phrase::text() const {
    std::string all;
    for (const Piece& piece : pieces) {
        all += piece.text;
    }
    return all;
}

Phrase words(std::string text) {
    return text.empty() ? Phrase() : Phrase{{{.text = std::move(text)}}};
}

Phrase figure(std::string text) {
    return text.empty() ? Phrase() : Phrase{{{.text = std::move(text), .isFigure = true}}};
}

Phrase operator+(Phrase left, const Phrase& right) {
    left.pieces.insert(left.pieces.end(), right.pieces.begin(), right.pieces.end());
    return left;
}

Phrase operator+(Phrase left, std::string right) {
    return std::move(left) + words(std::move(right));
}

Phrase joined(const std::vector<Phrase>& phrases) {
    Phrase all;
    for (const Phrase& phrase : phrases) {
        if (!phrase.isEmpty()) {
            all = (all.isEmpty() ? Phrase() : std::move(all) + kJoint) + phrase;
        }
    }
    return all;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        if (!text.empty()) {
            all += (all.empty() ? "" : kJoint) + text;
        }
    }
    return all;
}

}  // namespace vorn::Format
