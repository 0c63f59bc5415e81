#pragma once

#include <string>
#include <string_view>

namespace vorn::test {

inline std::string repeated(std::size_t count, std::string_view piece) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

}  // namespace vorn::test
