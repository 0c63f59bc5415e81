#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "core/support/file.hpp"
#include "model/background_queue.hpp"

namespace vorn {

class Cancellation;

/// Finds out which `claude` is asked and which version it is. Works off the main thread, since the search path may lead
/// to a network drive and a client may hang. To be used on the main thread.
class ClaudeFinder : public QObject {
    Q_OBJECT

public:
    struct Finding {
        bool isSearching = false;
        QString path;     ///< Empty when there is none.
        QString version;  ///< "2.1.330"; empty while it is not known.
        QString problem;  ///< What is wrong, for people; else empty.
        bool operator==(const Finding&) const = default;
    };

    using QObject::QObject;
    /// A client that runs is given up.
    ~ClaudeFinder() override;

    /// Looks again. `overridePath`: the executable that the user chose; empty to look for one. What is asked later
    /// replaces what was asked before. A version is asked for once, until the executable changes.
    void find(const QString& overridePath);

    [[nodiscard]] const Finding& finding() const { return m_finding; }

signals:
    void changed();

private:
    /// A version and what it was asked of.
    struct Known {
        std::filesystem::path path{};
        std::optional<FileStamp> stamp{};
        QString version{};
    };
    struct Answer {
        Finding finding{};
        Known known{};
    };
    static Answer look(const QString& overridePath, Known known, const Cancellation& cancellation);
    void publish(const Finding& finding);
    void cancel();

    Finding m_finding;
    Known m_known;
    int m_search = 0;  ///< Number of the last search.
    std::shared_ptr<Cancellation> m_cancellation;
    BackgroundQueue m_queue;
};

}  // namespace vorn
