#include <array>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "core/data/activity/activity_summary.hpp"
#include "core/support/text.hpp"
#include "core/transcripts/export_text.hpp"
#include "core/transcripts/local_activity_scanner.hpp"
#include "core/transcripts/marker_search.hpp"
#include "fuzz/fuzz_target.hpp"

/// Transcripts: what is found in one must not depend on how it grew, nor on where the reader's buffer happens to end.
namespace vorn::fuzz {
namespace {

/// The bytes are cut at these shares of their length.
constexpr std::array kCuts{0.3, 0.5, 0.9};
/// Everything that a timestamp can say lies within.
constexpr Seconds kAlways = std::chrono::years{20000};
/// So many bytes at the end of the long transcript are written anew for every input.
constexpr std::size_t kMaximumTail = std::size_t{16} << 10U;

/// The complete lines that hold the marker, found without any buffer.
std::vector<std::string> markedLines(std::string_view text) {
    std::vector<std::string> lines;
    for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        if (const auto line = text.substr(0, end); line.find(kAssistantMarker.text) != std::string_view::npos) {
            lines.emplace_back(line);
        }
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::vector<std::string> readOn(const std::filesystem::path& path, ReadPosition& position) {
    static TranscriptReader reader;
    std::vector<std::string> lines;
    reader.read(
        TranscriptFile(path), position, [&](std::string_view line) { lines.emplace_back(line); }, [](std::size_t) {});
    return lines;
}

/// A transcript in which the buffer ends `split` bytes into `text`. The file stays, and is only changed at its end:
/// writing a megabyte for every input would be slow.
void requireIndependentOfBuffer(std::string_view text, std::size_t split) {
    static const std::filesystem::path path = [] {
        auto file = scratch("long.jsonl");
        writeFile(file, std::string(TranscriptReader::kBufferSize, 'x'));
        return file;
    }();
    const std::size_t fillerEnd = TranscriptReader::kBufferSize - split - 1;
    const std::size_t restored = std::min(fillerEnd, kMaximumTail);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(fillerEnd - restored));
    file << std::string(restored, 'x') << '\n' << text;
    file.close();
    std::filesystem::resize_file(path, fillerEnd + 1 + text.size());
    ReadPosition position;
    require(readOn(path, position) == markedLines(text), "where the buffer ends is no matter");
}

void requireSound(const std::vector<ActivityEvent>& events) {
    for (const ActivityEvent& event : events) {
        requireUtf8(event.model);
        requireUtf8(event.cwd);
        requireUtf8(event.project());
        require(event.tokens.total() > 0, "a reply used tokens");
        require(std::isfinite(event.weight()) && event.weight() > 0, "a reply has a weight");
    }
    requireUtf8(exportActivity(events, ExportFormat::csv));
    requireUtf8(exportActivity(events, ExportFormat::json));
}

}  // namespace

void checkInput(std::string_view input) {
    const auto path = scratch("projects/whole/whole.jsonl");
    const auto grown = scratch("projects-grown/grown.jsonl");
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::create_directories(grown.parent_path());
    writeFile(path, input);
    writeFile(grown, "");
    LocalActivityScanner whole(scratch("projects"), kAlways);
    const auto events = whole.scan(kNow);
    requireSound(events);

    LocalActivityScanner scanner(grown.parent_path(), kAlways);
    ReadPosition position;
    std::vector<std::string> lines;
    std::size_t written = 0;
    const auto growTo = [&](std::size_t size) {
        std::ofstream(grown, std::ios::app | std::ios::binary) << input.substr(written, size - written);
        written = size;
        scanner.update(kNow);
        const auto more = readOn(grown, position);
        lines.insert(lines.end(), more.begin(), more.end());
    };
    for (const double cut : kCuts) {
        growTo(static_cast<std::size_t>(cut * static_cast<double>(input.size())));
    }
    growTo(input.size());
    require(lines == markedLines(input), "every marked line is found once");
    require(scanner.events() == events, "how a transcript grew is no matter");
    require(scanner.refusals() == whole.refusals(), "nor is it for refusals");
    const auto beginning = kAssistantMarker.text.substr(0, kAssistantMarker.first);
    if (input.size() < kMaximumTail / 2 && input.find(beginning) != std::string_view::npos) {
        requireIndependentOfBuffer(input, input.size() / 2);
    }
}

}  // namespace vorn::fuzz
