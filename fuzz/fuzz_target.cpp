#include "fuzz/fuzz_target.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "core/support/text.hpp"

namespace vorn::fuzz {
namespace fs = std::filesystem;
namespace {

class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = (fs::temp_directory_path() / "vorn-fuzz.XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot create a temporary directory");
        }
        m_path = pattern;
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    [[nodiscard]] const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

/// The same zone on every machine, and one that changes its clocks.
[[maybe_unused]] const int kZone = ::setenv("TZ", "Europe/Berlin", 1);

}  // namespace

void require(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

void requireUtf8(std::string_view text) {
    require(repairUtf8(text) == text, "text is valid UTF-8");
}

fs::path scratch(std::string_view name) {
    static const ScratchDirectory directory;
    return directory.path() / name;
}

void writeFile(const fs::path& file, std::string_view content) {
    std::ofstream(file, std::ios::binary) << content;
}

}  // namespace vorn::fuzz

// The name is libFuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    vorn::fuzz::checkInput({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
