#include "tests/support/child_watch.hpp"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace vorn::test {
namespace fs = std::filesystem;
namespace {

std::ptrdiff_t countDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// A killed orphan may stay a zombie for as long as init takes, which is not ours to care for.
bool isRunning(const std::string& pid) {
    std::ifstream stat("/proc/" + pid + "/stat");
    std::ostringstream line;
    line << stat.rdbuf();
    const std::size_t nameEnd = line.str().rfind(") ");
    return nameEnd != std::string::npos && line.str()[nameEnd + 2] != 'Z';
}

}  // namespace

ChildWatch::ChildWatch(fs::path pids) : m_pids(std::move(pids)), m_descriptors(countDescriptors()) {}

ChildWatch::~ChildWatch() {
    expectNothingLeft();
}

void ChildWatch::expectNothingLeft() const {
    EXPECT_EQ(countDescriptors(), m_descriptors);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD) << "a child is left";
    std::ifstream pids(m_pids);
    for (std::string pid; std::getline(pids, pid);) {
        EXPECT_FALSE(isRunning(pid)) << "process " << pid;
    }
}

}  // namespace vorn::test
