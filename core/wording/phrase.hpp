#pragma once

#include <string>
#include <vector>

namespace vorn::Format {

/// A text in pieces. Figures ("1h 10m", "35%/h", "20:44") read from left to right in every language: a window that is
/// laid out from right to left has to mark them, a terminal shows the text as it is.
struct Phrase {
    struct Piece {
        std::string text;
        bool isFigure = false;
        bool operator==(const Piece&) const = default;
    };
    std::vector<Piece> pieces;

    [[nodiscard]] bool isEmpty() const { return pieces.empty(); }
    [[nodiscard]] std::string text() const;  ///< All pieces, one after the other.
    bool operator==(const Phrase&) const = default;
};

/// A phrase of one piece; of none where the text is empty.
Phrase words(std::string text);
Phrase figure(std::string text);
Phrase operator+(Phrase left, const Phrase& right);
Phrase operator+(Phrase left, std::string right);

/// What is not empty, with " · " between.
Phrase joined(const std::vector<Phrase>& phrases);
std::string joined(const std::vector<std::string>& texts);

}  // namespace vorn::Format
