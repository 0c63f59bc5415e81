#include "core/transcripts/local_activity_scanner.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

#include "core/data/claude_paths.hpp"
#include "core/transcripts/marker_search.hpp"
#include "core/transcripts/transcript_line.hpp"

namespace vorn {
namespace {

/// For fewer bytes a further thread costs more than it saves.
constexpr std::uint64_t kBytesPerThread = std::uint64_t{4} << 20U;
/// The work is mostly copying out of the page cache: a few threads saturate that, and more would only disturb the user.
constexpr unsigned kMostThreads = 4;

}  // namespace

/// A file with bytes to read. The path and the cursor are the entry of `m_cursors`.
struct LocalActivityScanner::Job {
    const std::string* path;
    Cursor* cursor;
    std::uint64_t bytes;     ///< About how many.
    std::uint32_t file = 0;  ///< Number of the file as an origin.
};

std::filesystem::path LocalActivityScanner::defaultRoot() {
    return ClaudePaths::configDirectory() / "projects";
}

LocalActivityScanner::LocalActivityScanner(std::filesystem::path root, Seconds lookback)
    : m_root(std::move(root)), m_lookback(lookback) {}

/// The files to read, in the order of their paths.
std::vector<LocalActivityScanner::Job> LocalActivityScanner::findJobs(Instant cutoff) {
    std::vector<Job> jobs;
    visitTranscripts(m_root, cutoff, [&](const std::string& path, const FileStatus& status) {
        auto& [key, cursor] = *m_cursors.try_emplace(path, Cursor{status.identity}).first;
        ReadPosition& position = cursor.position;
        if (cursor.identity != status.identity || status.size < position.lineStart) {
            cursor = Cursor{status.identity};  // replaced or truncated
        } else if (status.size < position.searched ||
                   (status.size == position.searched && status.modified != cursor.modified)) {
            // The unfinished rest is not what it was.
            position = {.lineStart = position.lineStart, .searched = position.lineStart};
        }
        cursor.modified = status.modified;
        if (status.size > position.searched) {
            jobs.push_back({.path = &key, .cursor = &cursor, .bytes = status.size - position.searched});
        }
    });
    std::ranges::sort(jobs, {}, [](const Job& job) -> const std::string& { return *job.path; });
    for (Job& job : jobs) {
        job.file = m_filesRead++;
    }
    return jobs;
}

/// Threads taking files from one list until none is left.
class LocalActivityScanner::Reading {
public:
    Reading(std::vector<Job> jobs, Instant cutoff, EventStore& store, std::vector<RefusedTurn>& refusals)
        : m_jobs(std::move(jobs)), m_cutoff(cutoff), m_store(store), m_refusals(refusals) {
        // A large file that is begun last would keep one thread busy while the others have nothing left.
        std::ranges::stable_sort(m_jobs, std::ranges::greater{}, &Job::bytes);
        for (const Job& job : m_jobs) {
            m_bytesTotal += job.bytes;
        }
    }

    void run(const Progress& progress) {
        const auto wanted = std::min<std::uint64_t>(
            {kMostThreads, std::max(1U, std::thread::hardware_concurrency()), 1 + m_bytesTotal / kBytesPerThread});
        std::vector<std::thread> others;
        for (std::uint64_t i = 1; i < wanted; ++i) {
            try {
                others.emplace_back([this] { work({}); });
            } catch (const std::system_error&) {
                break;  // Too many threads already: the calling one does the work.
            }
        }
        work(progress);
        for (std::thread& other : others) {
            other.join();
        }
        if (m_failure) {
            std::rethrow_exception(m_failure);
        }
        // The other threads may have left nothing to do, and so to tell, for the calling one.
        report(0, progress);
    }

private:
    void work(const Progress& progress) {
        try {
            TranscriptReader reader;
            TranscriptLineParser parser;
            const auto advance = [&](std::size_t bytes) {
                report(bytes, progress);
            };
            for (std::size_t i = m_next++; i < m_jobs.size(); i = m_next++) {
                readFile(m_jobs[i], reader, parser, advance);
            }
        } catch (...) {
            const std::lock_guard lock(m_lock);
            m_failure = std::current_exception();
            m_next = m_jobs.size();
        }
    }

    void report(std::size_t bytes, const Progress& progress) {
        const std::uint64_t done = m_bytesDone += bytes;
        if (progress) {
            progress(std::min(done, m_bytesTotal), m_bytesTotal);
        }
    }

    void readFile(const Job& job, TranscriptReader& reader, TranscriptLineParser& parser,
                  const TranscriptReader::Progress& advance) {
        const TranscriptFile file(*job.path);
        if (!file.isOpen()) {
            return;
        }
        if (file.status().identity != job.cursor->identity) {
            *job.cursor = Cursor{file.status().identity};  // replaced since it was listed
        }
        EventStore::Origin origin{.file = job.file};
        const auto handle = [&](std::string_view line) {
            if (findMarker(kUsageMarker, line) == std::string_view::npos &&
                findMarker(kQuotaMarker, line) == std::string_view::npos) {
                return;
            }
            if (line.size() <= TranscriptReader::kBufferSize) {
                add(parser.parse(line), origin);
            } else {
                add(TranscriptLineParser().parse(line), origin);  // gives its memory back at once
            }
            ++origin.line;
        };
        reader.read(file, job.cursor->position, handle, advance);
    }

    void add(const TranscriptLine& line, EventStore::Origin origin) {
        const auto* const reply = std::get_if<TranscriptReply>(&line);
        const auto* const refusal = std::get_if<RefusedTurn>(&line);
        if (reply != nullptr && reply->timestamp >= m_cutoff) {
            const std::lock_guard lock(m_lock);
            m_store.add(*reply, origin);
        } else if (refusal != nullptr && refusal->at >= m_cutoff) {
            const std::lock_guard lock(m_lock);
            m_refusals.push_back(*refusal);
        }
    }

    std::vector<Job> m_jobs;
    std::uint64_t m_bytesTotal = 0;
    const Instant m_cutoff;
    std::atomic<std::size_t> m_next{0};
    std::atomic<std::uint64_t> m_bytesDone{0};
    std::mutex m_lock;  ///< Guards what follows.
    EventStore& m_store;
    std::vector<RefusedTurn>& m_refusals;
    std::exception_ptr m_failure;
};

bool LocalActivityScanner::update(Instant now, const Progress& progress) {
    const std::lock_guard lock(m_lock);
    const Instant cutoff = now - m_lookback;
    const std::vector<RefusedTurn> before = m_refusals;
    if (auto jobs = findJobs(cutoff); !jobs.empty()) {
        Reading(std::move(jobs), cutoff, m_store, m_refusals).run(progress);
    }
    m_store.dropBefore(cutoff);
    std::erase_if(m_refusals, [&](const RefusedTurn& refusal) { return refusal.at < cutoff; });
    // Resumed sessions have copies of a line.
    std::ranges::sort(m_refusals);
    m_refusals.erase(std::unique(m_refusals.begin(), m_refusals.end()), m_refusals.end());
    return m_store.takeChanged() || m_refusals != before;
}

std::vector<RefusedTurn> LocalActivityScanner::refusals() {
    const std::lock_guard lock(m_lock);
    return m_refusals;
}

std::vector<ActivityEvent> LocalActivityScanner::events() {
    const std::lock_guard lock(m_lock);
    return m_store.events();
}

std::vector<ActivityEvent> LocalActivityScanner::scan(Instant now, const Progress& progress) {
    update(now, progress);
    return events();
}

}  // namespace vorn
