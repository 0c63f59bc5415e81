#include "core/transcripts/marker_search.hpp"

#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vorn {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// A text that ends where readable memory ends: to read one byte behind it is to crash.
class TextBeforeGuardPage {
public:
    explicit TextBeforeGuardPage(std::size_t capacity) {
        const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        m_length = (capacity / page + 2) * page;
        m_memory =
            static_cast<char*>(::mmap(nullptr, m_length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        m_end = m_memory + m_length - page;
        ::mprotect(m_end, page, PROT_NONE);
    }
    ~TextBeforeGuardPage() { ::munmap(m_memory, m_length); }
    TextBeforeGuardPage(const TextBeforeGuardPage&) = delete;
    TextBeforeGuardPage& operator=(const TextBeforeGuardPage&) = delete;

    std::string_view put(std::string_view text) {
        return {std::copy(text.begin(), text.end(), m_end - text.size()) - text.size(), text.size()};
    }

private:
    char* m_memory = nullptr;
    char* m_end = nullptr;
    std::size_t m_length = 0;
};

/// Whether every search of this machine finds the marker at `index`, and nothing is read behind the text.
testing::AssertionResult allFind(const Marker& marker, std::string_view text, std::size_t index) {
    static TextBeforeGuardPage memory(8192);
    static const std::vector<MarkerSearch> searches = markerSearches();
    const std::string_view guarded = memory.put(text);
    for (const MarkerSearch& search : searches) {
        if (const std::size_t found = search.find(marker, guarded); found != index) {
            return testing::AssertionFailure()
                   << search.name << " finds " << found << ", not " << index << " in " << text;
        }
    }
    return testing::AssertionSuccess();
}

TEST(MarkerSearch, findsTheMarkerAtEveryPlaceOfEveryLength) {
    for (const Marker& marker : {kAssistantMarker, kUsageMarker}) {
        const std::size_t width = marker.text.size();
        for (std::size_t length = 0; length <= 400; length += length < 300 ? 1 : 17) {
            std::string text(length, marker.text[marker.first]);  // every byte may be the start of one
            ASSERT_TRUE(allFind(marker, text, kNone));
            for (std::size_t at = 0; at + width <= length; ++at) {
                text.assign(length, ' ');
                text.replace(at, width, marker.text);
                ASSERT_TRUE(allFind(marker, text, at));
                text[at + width - 1] = '\'';
                ASSERT_TRUE(allFind(marker, text, kNone));
            }
        }
    }
}

TEST(MarkerSearch, agreesWithThePlainSearch) {
    std::mt19937 random(7);
    for (int round = 0; round < 4000; ++round) {
        // Pieces of the marker one after the other are full of near misses.
        const Marker& marker = round % 2 == 0 ? kAssistantMarker : kUsageMarker;
        std::string text;
        const std::size_t length = random() % 5000;
        while (text.size() < length) {
            const std::size_t from = random() % marker.text.size();
            const bool isWhole = random() % 60 == 0;
            text += isWhole ? marker.text : marker.text.substr(from, random() % (marker.text.size() - 1));
            text.append(random() % 3, static_cast<char>(random()));
        }
        ASSERT_TRUE(allFind(marker, text, text.find(marker.text)));
    }
}

}  // namespace
}  // namespace vorn
