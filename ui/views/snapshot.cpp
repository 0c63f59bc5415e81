#include "ui/views/snapshot.hpp"

#include <QQmlEngine>
#include <QSaveFile>
#include <array>
#include <cstdio>
#include <system_error>

#include <fmt/format.h>

#include "app/model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "ui/views/dashboard_content.hpp"
#include "ui/views/popover_content.hpp"
#include "ui/views/settings_picture.hpp"
#include "ui/views/view_engine.hpp"
#include "ui/views/view_picture.hpp"

namespace vorn {
namespace {

constexpr std::array kPixelRatios{1, 2};

int fail(const std::string& what) {
    fmt::print(stderr, "vorn: {}\n", what);
    return 1;
}

std::string fileName(const char* view, bool isDark, int pixelRatio) {
    const std::string density = pixelRatio == 1 ? "" : fmt::format("@{}x", pixelRatio);
    return fmt::format("{}-{}{}.png", view, isDark ? "dark" : "light", density);
}

QImage popoverPicture(QQmlEngine& engine, const SnapshotRequest& request, int pixelRatio) {
    PopoverContent content(request.model);
    QVariantMap properties = content.properties();
    properties.insert("hasDashboard", request.hasDashboard);
    properties.insert("hasSettings", request.hasSettings);
    return pictureOf(engine, ViewPicture{.view = QUrl("qrc:/qt/qml/Vorn/PopoverView.qml"),
                                         .properties = properties,
                                         .pixelRatio = static_cast<double>(pixelRatio)});
}

QImage dashboardPicture(QQmlEngine& engine, const SnapshotRequest& request, int pixelRatio) {
    DashboardContent content(request.model);
    QVariantMap properties = content.properties();
    properties.insert("hasSettings", request.hasSettings);
    properties.insert("pixelRatio", pixelRatio);
    return pictureOf(engine, {.view = QUrl("qrc:/qt/qml/Vorn/DashboardView.qml"),
                              .properties = properties,
                              .pixelRatio = static_cast<double>(pixelRatio)});
}

struct SnapshotView {
    const char* name;
    QImage (*picture)(QQmlEngine& engine, const SnapshotRequest& request, int pixelRatio);
};
constexpr std::array kViews{SnapshotView{"popover", popoverPicture}, SnapshotView{"dashboard", dashboardPicture}};

/// Empty, or what went wrong.
std::string save(const QImage& image, const std::filesystem::path& path) {
    if (image.isNull()) {
        return "cannot draw " + path.filename().string();
    }
    QSaveFile file(QString::fromStdString(path.string()));
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") || !file.commit()) {
        return fmt::format("cannot write {}: {}", path.string(), file.errorString().toStdString());
    }
    return {};
}

std::string saveSettings(QQmlEngine& engine, const SnapshotRequest& request, DesktopAppearance& appearance,
                         int pixelRatio) {
    for (const auto page : SettingsWindow::kPages) {
        const QImage image = pictureOf(engine, SettingsPicture{.model = request.model,
                                                               .appearance = appearance,
                                                               .page = page,
                                                               .pixelRatio = static_cast<double>(pixelRatio)});
        const auto file = fileName(pictureName(page), appearance.isDark(), pixelRatio);
        if (auto problem = save(image, request.directory / file); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

}  // namespace

int renderSnapshots(const SnapshotRequest& request) {
    std::error_code error;
    std::filesystem::create_directories(request.directory, error);
    if (error) {
        return fail(fmt::format("cannot make {}: {}", request.directory.string(), error.message()));
    }
    for (const bool isDark : {false, true}) {
        DesktopAppearance appearance;
        appearance.setLook({.isDark = isDark, .reducedMotion = true});
        ViewEngine engine(appearance);
        const auto hold = engine.hold();
        for (const int pixelRatio : kPixelRatios) {
            for (const auto& [name, picture] : kViews) {
                const auto path = request.directory / fileName(name, isDark, pixelRatio);
                if (const auto problem = save(picture(*hold, request, pixelRatio), path); !problem.empty()) {
                    return fail(problem);
                }
            }
            if (const auto problem = saveSettings(*hold, request, appearance, pixelRatio); !problem.empty()) {
                return fail(problem);
            }
        }
    }
    return 0;
}

}  // namespace vorn
