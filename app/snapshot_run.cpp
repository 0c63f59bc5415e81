#include "app/snapshot_run.hpp"

#include <QEventLoop>
#include <QSettings>
#include <QTimer>
#include <array>
#include <chrono>
#include <cstdio>

#include "app/snapshot.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/file.hpp"
#include "core/support/uuid.hpp"
#include "model/model_parts.hpp"
#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"

namespace vorn {
namespace {

/// A client takes up to 30 seconds to fail.
constexpr std::chrono::seconds kReadingPatience{35};

/// A copy of what Vorn knows, in a folder of its own, so that live reading has something to write to. Removed at the
/// end.
class ScratchHome {
public:
    /// Throws std::filesystem::filesystem_error.
    explicit ScratchHome(const std::filesystem::path& directory) : m_root(directory / (".vorn-" + randomUuid())) {
        const std::array files{VornPaths::history(), VornPaths::resetPlan(), VornPaths::statusLineSnapshot(),
                               VornPaths::probeRecord()};
        createPrivateDirectories(m_root);
        for (const auto& file : files) {
            std::error_code ignored;  // one that is missing is an empty one
            std::filesystem::copy_file(file, m_root / file.filename(), ignored);
        }
        VornPaths::setRootOverride(m_root);
    }
    ~ScratchHome() {
        VornPaths::setRootOverride({});
        std::error_code ignored;
        std::filesystem::remove_all(m_root, ignored);
    }
    ScratchHome(const ScratchHome&) = delete;
    ScratchHome& operator=(const ScratchHome&) = delete;

private:
    std::filesystem::path m_root;
};

bool isRead(const UsageModel& model) {
    const Answer& answer = model.answer();
    return answer.isJudged && answer.asking.lastAt && !answer.asking.isRunning && answer.activity;
}

void waitForReading(const UsageModel& model) {
    QEventLoop loop;
    QObject::connect(&model, &UsageModel::changed, &loop, [&] {
        if (isRead(model)) {
            loop.quit();
        }
    });
    QTimer::singleShot(kReadingPatience, &loop, &QEventLoop::quit);
    loop.exec();
}

int renderLive(const std::filesystem::path& directory) {
    Preferences preferences(Preferences::standardStore());
    const ScratchHome scratch(directory);
    QTimer ticker;
    UsageModel model(preferences, makeModelParts(ticker));
    model.start();
    waitForReading(model);
    const int status = renderSnapshots({.model = model, .preferences = preferences, .directory = directory});
    model.shutDown();
    return status;
}

int renderDemo(const std::filesystem::path& directory, demo::Scenario scenario) {
    Preferences preferences(Preferences::standardStore());
    preferences.detachFromStore();
    QTimer ticker;
    UsageModel model(preferences, makeModelParts(ticker));
    model.startDemo(demo::makeDemo(scenario, systemNow()));
    return renderSnapshots({.model = model, .preferences = preferences, .directory = directory});
}

}  // namespace

int runSnapshot(const std::filesystem::path& directory, std::optional<demo::Scenario> demo) {
    try {
        return demo ? renderDemo(directory, *demo) : renderLive(directory);
    } catch (const std::filesystem::filesystem_error& error) {
        std::fprintf(stderr, "vorn: pictures cannot be written to %s: %s\n", directory.c_str(),
                     error.code().message().c_str());
        return 1;
    }
}

}  // namespace vorn
