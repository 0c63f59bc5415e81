#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "core/support/file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

/// Runs a target once on every file in the directories named: for a build without libFuzzer.
int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : fs::directory_iterator(argv[i])) {
            const std::string content = vorn::requireFile(entry.path());
            // A copy of exactly that size, so that reading behind its end is noticed.
            const std::vector<std::uint8_t> bytes(content.begin(), content.end());
            std::fprintf(stderr, "%s\n", entry.path().c_str());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++count;
        }
    }
    return count > 0 ? 0 : 1;
}
