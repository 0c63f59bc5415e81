#pragma once

#include <cstddef>
#include <filesystem>

namespace vorn::test {

/// Fails the test when running child processes leaves anything behind.
class ChildWatch {
public:
    /// Scripts append the ids of processes that have to be gone to the file `pids`, one a line.
    explicit ChildWatch(std::filesystem::path pids);
    /// Checks once more.
    ~ChildWatch();
    ChildWatch(const ChildWatch&) = delete;
    ChildWatch& operator=(const ChildWatch&) = delete;

    /// No descriptor more than at the start, no child (zombies included), and none of the named processes.
    void expectNothingLeft() const;

private:
    std::filesystem::path m_pids;
    std::ptrdiff_t m_descriptors;
};

}  // namespace vorn::test
