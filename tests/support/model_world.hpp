#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "model/preferences/preferences.hpp"
#include "model/usage_model.hpp"
#include "tests/support/temporary_directory.hpp"
#include "tests/support/wait_until.hpp"

/// A usage model whose time and sources are in the test's hands.
namespace vorn::test {

using namespace std::chrono_literals;

/// The one application object of the process, made on the first call where there is none.
inline QCoreApplication& application() {
    if (auto* const other = QCoreApplication::instance()) {
        return *other;
    }
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication instance(count, arguments);
    return instance;
}

/// What the model's parts show and note down. The model owns the parts, the test this.
struct World {
    Instant now;
    std::function<void()> tick{};  ///< Null while the ticker is stopped.

    /// What the client answers, at once; null: nothing for now.
    std::function<ProbeSource::Answer()> client{};
    std::vector<Instant> probes{};
    std::string overridePath{};                                  ///< Of the last probe.
    std::function<void(ProbeSource::Answer)> unansweredProbe{};  ///< Of the last probe that got no answer.

    std::function<ActivitySource::Answer()> transcripts = [] {
        return std::nullopt;
    };
    std::vector<Instant> scans{};
    std::function<void(ActivitySource::Answer)> unansweredScan{};

    std::optional<StatusLineSnapshot> snapshot{};
    std::int64_t snapshotVersion = 0;  ///< 0: there is none.
    int snapshotReads = 0;
};

class FakeClock : public ModelClock {
public:
    explicit FakeClock(World& world) : m_world(world) {}
    [[nodiscard]] Instant now() const override { return m_world.now; }

private:
    World& m_world;
};

class FakeTicker : public Ticker {
public:
    explicit FakeTicker(World& world) : m_world(world) {}
    void start(Seconds interval, std::function<void()> onTick) override {
        EXPECT_EQ(interval, UsageModel::tickInterval);
        m_world.tick = std::move(onTick);
    }
    void stop() override { m_world.tick = nullptr; }

private:
    World& m_world;
};

class FakeProbe : public ProbeSource {
public:
    explicit FakeProbe(World& world) : m_world(world) {}
    void run(const ClientQuestion& question, std::function<void(Answer)> done) override {
        m_world.probes.push_back(m_world.now);
        m_world.overridePath = question.claudePath.value_or("");
        if (m_world.client) {
            done(m_world.client());
        } else {
            m_world.unansweredProbe = std::move(done);
        }
    }

private:
    World& m_world;
};

class FakeActivity : public ActivitySource {
public:
    explicit FakeActivity(World& world) : m_world(world) {}
    void scan(Instant now, std::function<void(Answer)> done) override {
        m_world.scans.push_back(now);
        if (m_world.transcripts) {
            done(m_world.transcripts());
        } else {
            m_world.unansweredScan = std::move(done);
        }
    }

private:
    World& m_world;
};

class FakeSnapshot : public SnapshotSource {
public:
    explicit FakeSnapshot(World& world) : m_world(world) {}
    [[nodiscard]] std::optional<FileStamp> stamp() const override {
        return m_world.snapshotVersion > 0 ? std::optional(FileStamp{.modified = m_world.snapshotVersion})
                                           : std::nullopt;
    }
    [[nodiscard]] std::optional<StatusLineSnapshot> read() const override {
        ++m_world.snapshotReads;
        return m_world.snapshot;
    }

private:
    World& m_world;
};

/// A model in such a world, with its files in a directory of its own.
class ModelWorld : public World {
public:
    explicit ModelWorld(Instant start) : World{.now = start} {
        application();
        revive();
    }

    ~ModelWorld() { end(); }
    ModelWorld(const ModelWorld&) = delete;
    ModelWorld& operator=(const ModelWorld&) = delete;

    /// Ends the model when its files are written.
    void end() {
        if (model) {
            model->shutDown();
        }
        model.reset();
    }
    /// Ends the model and makes another one over the same files.
    void revive() {
        end();
        tick = nullptr;
        model = std::make_unique<UsageModel>(preferences, parts());
    }
    /// Starts the model and waits for its history.
    void start() {
        model->start();
        bool isRead = false;
        const auto heard = QObject::connect(model.get(), &UsageModel::changed, [&] { isRead = true; });
        waitFor([&] { return isRead; });
        QObject::disconnect(heard);
    }
    /// Lets this much time pass, a tick every five seconds.
    void pass(Seconds time) {
        for (const Instant end = now + time; now < end;) {
            now += UsageModel::tickInterval;
            tick();
        }
    }

    ModelParts parts() {
        return {.clock = std::make_unique<FakeClock>(*this),
                .ticker = std::make_unique<FakeTicker>(*this),
                .probe = std::make_unique<FakeProbe>(*this),
                .activity = std::make_unique<FakeActivity>(*this),
                .snapshot = std::make_unique<FakeSnapshot>(*this),
                .history = std::make_unique<HistoryStore>(directory / "history.jsonl"),
                .resetPlan = plan,
                .probeRecord = record};
    }

    TemporaryDirectory directory;
    Preferences preferences{
        std::make_unique<QSettings>(QString::fromStdString(directory / "preferences.ini"), QSettings::IniFormat)};
    const ResetPlanStore plan{directory / "reset-plan.json"};
    const ProbeRecordStore record{directory / "probe.json"};
    std::unique_ptr<UsageModel> model;
};

}  // namespace vorn::test
