#include "app/snapshot.hpp"

#include <QQmlEngine>
#include <QSaveFile>
#include <array>
#include <cstdio>
#include <system_error>

#include <fmt/format.h>

#include "model/usage_model.hpp"
#include "platform/desktop_appearance.hpp"
#include "ui/dashboard/dashboard_presenter.hpp"
#include "ui/dashboard/qml_types.hpp"
#include "ui/popover/popover_presenter.hpp"
#include "ui/popover/qml_types.hpp"
#include "ui/settings/settings_picture.hpp"
#include "ui/window/app_requests.hpp"
#include "ui/window/view_engine.hpp"
#include "ui/window/view_picture.hpp"

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

/// Where and how it is drawn.
struct Canvas {
    QQmlEngine& engine;
    DesktopAppearance& appearance;
    AppRequests& requests;
    int pixelRatio = 1;
};

QImage popoverPicture(const SnapshotRequest& request, const Canvas& canvas) {
    registerPopoverTypes();
    PopoverPresenter presenter(request.model);
    return pictureOf(canvas.engine, ViewPicture{.view = QUrl("qrc:/qt/qml/Vorn/Popover/PopoverView.qml"),
                                                .properties = {{"presenter", QVariant::fromValue(&presenter)},
                                                               {"requests", QVariant::fromValue(&canvas.requests)}},
                                                .pixelRatio = static_cast<double>(canvas.pixelRatio)});
}

QImage dashboardPicture(const SnapshotRequest& request, const Canvas& canvas) {
    registerDashboardTypes();
    DashboardPresenter presenter(request.model);
    return pictureOf(canvas.engine, ViewPicture{.view = QUrl("qrc:/qt/qml/Vorn/Dashboard/DashboardView.qml"),
                                                .properties = {{"presenter", QVariant::fromValue(&presenter)},
                                                               {"requests", QVariant::fromValue(&canvas.requests)},
                                                               {"pixelRatio", canvas.pixelRatio}},
                                                .pixelRatio = static_cast<double>(canvas.pixelRatio)});
}

QImage settingsPicture(SettingsWindow::Page page, const SnapshotRequest& request, const Canvas& canvas) {
    return pictureOf(canvas.engine, SettingsPicture{.model = request.model,
                                                    .preferences = request.preferences,
                                                    .requests = canvas.requests,
                                                    .appearance = canvas.appearance,
                                                    .page = page,
                                                    .pixelRatio = static_cast<double>(canvas.pixelRatio)});
}

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

/// All views; empty, or what went wrong.
std::string saveAll(const SnapshotRequest& request, const Canvas& canvas) {
    const auto saveAs = [&](const char* view, const QImage& image) {
        return save(image, request.directory / fileName(view, canvas.appearance.isDark(), canvas.pixelRatio));
    };
    std::string problem = saveAs("popover", popoverPicture(request, canvas));
    if (problem.empty()) {
        problem = saveAs("dashboard", dashboardPicture(request, canvas));
    }
    for (const auto page : SettingsWindow::kPages) {
        if (problem.empty()) {
            problem = saveAs(pictureName(page), settingsPicture(page, request, canvas));
        }
    }
    return problem;
}

}  // namespace

int renderSnapshots(const SnapshotRequest& request) {
    std::error_code error;
    std::filesystem::create_directories(request.directory, error);
    if (error) {
        return fail(fmt::format("cannot make {}: {}", request.directory.string(), error.message()));
    }
    AppRequests requests;
    for (const bool isDark : {false, true}) {
        DesktopAppearance appearance;
        appearance.setLook({.isDark = isDark, .reducedMotion = true});
        ViewEngine engine(appearance);
        const auto hold = engine.hold();
        for (const int pixelRatio : kPixelRatios) {
            const auto problem = saveAll(request, {*hold, appearance, requests, pixelRatio});
            if (!problem.empty()) {
                return fail(problem);
            }
        }
    }
    return 0;
}

}  // namespace vorn
