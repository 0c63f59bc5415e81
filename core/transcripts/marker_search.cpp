#include "core/transcripts/marker_search.hpp"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace vorn {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool isAt(const Marker& marker, const char* place) {
    return std::memcmp(place, marker.text.data(), marker.text.size()) == 0;
}

/// From index `from` on: hops from one first rare byte to the next.
std::size_t findFrom(const Marker& marker, std::string_view text, std::size_t from) {
    const char* const end = text.data() + text.size();
    while (text.size() - from >= marker.text.size()) {
        const char* const start = text.data() + from + marker.first;
        const auto span = static_cast<std::size_t>(end - start) - (marker.text.size() - 1 - marker.first);
        const void* const hit = std::memchr(start, marker.text[marker.first], span);
        if (hit == nullptr) {
            return kNone;
        }
        const char* const place = static_cast<const char*>(hit) - marker.first;
        if (isAt(marker, place)) {
            return static_cast<std::size_t>(place - text.data());
        }
        from = static_cast<std::size_t>(place - text.data()) + 1;
    }
    return kNone;
}

std::size_t findPortably(const Marker& marker, std::string_view text) {
    return findFrom(marker, text, 0);
}

// The vector variants look at `kStep` places at a time, for as long as the whole marker fits behind the last of them,
// and leave the rest to findFrom. A step that holds no candidate, as nearly all do, costs one branch.

#if defined(__x86_64__)

std::size_t findSse2(const Marker& marker, std::string_view text) {
    constexpr std::size_t kStep = 64;
    const __m128i first = _mm_set1_epi8(marker.text[marker.first]);
    const __m128i second = _mm_set1_epi8(marker.text[marker.second]);
    std::size_t at = 0;
    for (; text.size() - at >= kStep + marker.text.size(); at += kStep) {
        const char* const place = text.data() + at;
        const auto candidates = [&](std::size_t offset) {
            const auto load = [&](std::size_t index) {
                return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place + offset + index));
            };
            return _mm_and_si128(_mm_cmpeq_epi8(load(marker.first), first),
                                 _mm_cmpeq_epi8(load(marker.second), second));
        };
        const __m128i a = candidates(0);
        const __m128i b = candidates(16);
        const __m128i c = candidates(32);
        const __m128i d = candidates(48);
        if (_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) == 0) {
            continue;
        }
        const auto bits = [](__m128i v) {
            return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(v)));
        };
        for (std::uint64_t m = bits(a) | bits(b) << 16U | bits(c) << 32U | bits(d) << 48U; m != 0; m &= m - 1) {
            const auto offset = static_cast<std::size_t>(std::countr_zero(m));
            if (isAt(marker, place + offset)) {
                return at + offset;
            }
        }
    }
    return findFrom(marker, text, at);
}

[[gnu::target("avx2")]] __m256i candidatesAvx2(const char* place, const Marker& marker, __m256i first, __m256i second) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place + marker.first));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place + marker.second));
    return _mm256_and_si256(_mm256_cmpeq_epi8(a, first), _mm256_cmpeq_epi8(b, second));
}

[[gnu::target("avx2,bmi")]] std::size_t findAvx2(const Marker& marker, std::string_view text) {
    constexpr std::size_t kStep = 128;
    const __m256i first = _mm256_set1_epi8(marker.text[marker.first]);
    const __m256i second = _mm256_set1_epi8(marker.text[marker.second]);
    std::size_t at = 0;
    for (; text.size() - at >= kStep + marker.text.size(); at += kStep) {
        const char* const place = text.data() + at;
        const __m256i quarters[] = {
            candidatesAvx2(place, marker, first, second), candidatesAvx2(place + 32, marker, first, second),
            candidatesAvx2(place + 64, marker, first, second), candidatesAvx2(place + 96, marker, first, second)};
        const __m256i any =
            _mm256_or_si256(_mm256_or_si256(quarters[0], quarters[1]), _mm256_or_si256(quarters[2], quarters[3]));
        if (_mm256_testz_si256(any, any) != 0) {
            continue;
        }
        for (std::size_t q = 0; q < 4; ++q) {
            for (auto m = static_cast<std::uint32_t>(_mm256_movemask_epi8(quarters[q])); m != 0; m &= m - 1) {
                const std::size_t offset = 32 * q + static_cast<std::size_t>(std::countr_zero(m));
                if (isAt(marker, place + offset)) {
                    return at + offset;
                }
            }
        }
    }
    return findFrom(marker, text, at);
}

#elif defined(__aarch64__)

std::size_t findNeon(const Marker& marker, std::string_view text) {
    constexpr std::size_t kStep = 64;
    const uint8x16_t first = vdupq_n_u8(static_cast<std::uint8_t>(marker.text[marker.first]));
    const uint8x16_t second = vdupq_n_u8(static_cast<std::uint8_t>(marker.text[marker.second]));
    std::size_t at = 0;
    for (; text.size() - at >= kStep + marker.text.size(); at += kStep) {
        const auto* const place = reinterpret_cast<const std::uint8_t*>(text.data()) + at;
        const auto candidates = [&](std::size_t offset) {
            return vandq_u8(vceqq_u8(vld1q_u8(place + offset + marker.first), first),
                            vceqq_u8(vld1q_u8(place + offset + marker.second), second));
        };
        const uint8x16_t quarters[] = {candidates(0), candidates(16), candidates(32), candidates(48)};
        if (vmaxvq_u8(vorrq_u8(vorrq_u8(quarters[0], quarters[1]), vorrq_u8(quarters[2], quarters[3]))) == 0) {
            continue;
        }
        for (std::size_t q = 0; q < 4; ++q) {
            // Four bits for each byte: there is no movemask here.
            const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(quarters[q]), 4);
            std::uint64_t m = vget_lane_u64(vreinterpret_u64_u8(nibbles), 0) & 0x8888888888888888U;
            for (; m != 0; m &= m - 1) {
                const std::size_t offset = 16 * q + static_cast<std::size_t>(std::countr_zero(m)) / 4;
                if (isAt(marker, text.data() + at + offset)) {
                    return at + offset;
                }
            }
        }
    }
    return findFrom(marker, text, at);
}

#endif

}  // namespace

std::vector<MarkerSearch> markerSearches() {
    std::vector<MarkerSearch> searches;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0) {
        searches.push_back({"AVX2", findAvx2});
    }
    searches.push_back({"SSE2", findSse2});
#elif defined(__aarch64__)
    searches.push_back({"NEON", findNeon});
#endif
    searches.push_back({"portable", findPortably});
    return searches;
}

std::size_t findMarker(const Marker& marker, std::string_view text) {
    static const auto kFind = markerSearches().front().find;
    return kFind(marker, text);
}

}  // namespace vorn
