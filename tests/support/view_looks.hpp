#pragma once

#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QString>
#include <cstdlib>
#include <string>

namespace vorn::test {

/// For people to look at: saved in the directory that VORN_VIEW_PICTURES names; without it, not at all.
inline void keepPicture(const QImage& image, const std::string& name) {
    if (const char* const directory = std::getenv("VORN_VIEW_PICTURES")) {
        image.save(QDir(directory).filePath(QString::fromStdString(name + ".png")));
    }
}

/// The direction and the size of type that windows are laid out for, for as long as it lives.
class ScopedType {
public:
    ScopedType(Qt::LayoutDirection direction, int points) : m_font(QGuiApplication::font()) {
        QGuiApplication::setLayoutDirection(direction);
        QFont sized = m_font;
        sized.setPointSize(points);
        QGuiApplication::setFont(sized);
    }
    ~ScopedType() {
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        QGuiApplication::setFont(m_font);
    }
    ScopedType(const ScopedType&) = delete;
    ScopedType& operator=(const ScopedType&) = delete;

private:
    QFont m_font;
};

}  // namespace vorn::test
