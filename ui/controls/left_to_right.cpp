#include "ui/controls/left_to_right.hpp"

#include <QGuiApplication>

namespace vorn {

QString leftToRight(const std::string& utf8) {
    constexpr QChar kIsolate(0x2066);
    constexpr QChar kEnd(0x2069);
    const QString text = QString::fromStdString(utf8);
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? kIsolate + text + kEnd : text;
}

QString shownPhrase(const Format::Phrase& phrase) {
    QString text;
    for (const auto& piece : phrase.pieces) {
        text += piece.isFigure ? leftToRight(piece.text) : QString::fromStdString(piece.text);
    }
    return text;
}

}  // namespace vorn
