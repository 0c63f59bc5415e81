#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "app/app_delegate.hpp"
#include "app/command_line.hpp"
#include "app/snapshot_run.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/support/process/interrupts.hpp"
#include "model/instance_server.hpp"
#include "model/preferences/choices_file.hpp"
#include "ui/window/view_engine.hpp"

namespace vorn {
namespace {

bool hasDesktop() {
#ifdef Q_OS_MACOS
    return true;
#else
    return environmentValue("QT_QPA_PLATFORM") || environmentValue("WAYLAND_DISPLAY") || environmentValue("DISPLAY");
#endif
}

void nameProgram() {
    QApplication::setApplicationName("vorn");
    QApplication::setApplicationDisplayName("Vorn");
    QApplication::setApplicationVersion(VORN_VERSION);
    QApplication::setDesktopFileName("vorn");
    // For X11: elsewhere the desktop entry tells the icon.
    QApplication::setWindowIcon(QIcon::fromTheme("vorn"));
    QApplication::setQuitOnLastWindowClosed(false);
    // Qt itself asks its own translations, which need not be installed.
    if (QLocale::system().textDirection() == Qt::RightToLeft) {
        QApplication::setLayoutDirection(Qt::RightToLeft);
    }
}

InstanceRequest handOver(const LaunchRequest& request) {
    using Kind = InstanceRequest::Kind;
    return {.kind = request.showDashboard ? Kind::showDashboard
                    : request.showPopover ? Kind::showPopover
                                          : Kind::activate};
}

/// What another start, or the terminal tool, asks of this one.
void serve(AppDelegate& delegate, const InstanceRequest& request) {
    switch (request.kind) {
        case InstanceRequest::Kind::activate:
        case InstanceRequest::Kind::showPopover:
            delegate.showPopover();
            break;
        case InstanceRequest::Kind::showDashboard:
            delegate.openDashboard();
            break;
        case InstanceRequest::Kind::redeemed:
            delegate.model().redeemedElsewhere(request.scope);
            break;
    }
}

int run(QApplication& application, const LaunchRequest& request) {
    // A demonstration stands beside the Vorn that is in use.
    std::optional<InstanceServer> instance;
    if (!request.demo) {
        instance.emplace(VornPaths::root());
        const auto start = instance->start(handOver(request));
        if (!start.problem.isEmpty()) {
            std::fprintf(stderr, "vorn: %s\n", qPrintable(start.problem));
        }
        if (start.kind != InstanceServer::Start::Kind::first) {
            return start.kind == InstanceServer::Start::Kind::handedOver ? EXIT_SUCCESS : EXIT_FAILURE;
        }
    }
    AppDelegate delegate(request.demo);
    if (instance) {
        instance->setHandler([&](const InstanceRequest& received) {
            serve(delegate, received);
            return QString();
        });
    }
    QSocketNotifier interrupted(catchInterrupts().descriptor(), QSocketNotifier::Read);
    QObject::connect(&interrupted, &QSocketNotifier::activated, &application, &QApplication::quit);

    delegate.finishLaunching();
    if (request.showPopover) {
        QMetaObject::invokeMethod(&delegate, &AppDelegate::showPopover, Qt::QueuedConnection);
    }
    if (request.showDashboard) {
        QMetaObject::invokeMethod(&delegate, &AppDelegate::openDashboard, Qt::QueuedConnection);
    }
    const int status = QApplication::exec();
    delegate.model().shutDown();
    return status;
}

int start(int argc, char** argv) {
    // Inherited as ignored it would take the exit status of every child away.
    std::signal(SIGCHLD, SIG_DFL);
    const auto parsed = parseCommandLine(argc, argv);
    if (const auto* answer = std::get_if<CommandLineAnswer>(&parsed)) {
        std::fputs(answer->output.c_str(), stdout);
        std::fputs(answer->error.c_str(), stderr);
        return answer->exitStatus;
    }
    const auto& request = std::get<LaunchRequest>(parsed);
    if (request.snapshot && !environmentValue("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (!hasDesktop()) {
        std::fputs(
            "vorn: there is no desktop here: neither WAYLAND_DISPLAY nor DISPLAY is set.\n"
            "In a terminal, vornctl status gives the same answers.\n",
            stderr);
        return EXIT_FAILURE;
    }
    ViewEngine::useSoftwareRendering();
    QApplication application(argc, argv);
    nameProgram();
    return request.snapshot ? runSnapshot(*request.snapshot, request.demo) : run(application, request);
}

}  // namespace
}  // namespace vorn

int main(int argc, char** argv) {
    const int status = vorn::start(argc, argv);
    std::fflush(stdout);
    // A thread that hangs in a read of a dead network mount was left behind; static objects must outlive it.
    std::_Exit(status);
}
