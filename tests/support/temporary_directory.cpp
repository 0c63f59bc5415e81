#include "tests/support/temporary_directory.hpp"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace vorn::test {
namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "vorn-test.XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary directory");
    }
    m_path = fs::canonical(pattern);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

fs::path TemporaryDirectory::write(std::string_view name, std::string_view content) const {
    const fs::path file = m_path / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

fs::path TemporaryDirectory::executable(std::string_view name, std::string_view script) const {
    const fs::path file = write(name, "#!/bin/sh\n" + std::string(script) + "\n");
    fs::permissions(file, fs::perms(0755));
    return file;
}

std::string readAll(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

ScopedEnvironment::ScopedEnvironment(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name); old != nullptr) {
        m_old = old;
        m_wasSet = true;
    }
    if (value == nullptr) {
        ::unsetenv(name);
    } else {
        ::setenv(name, value, 1);
    }
}

ScopedEnvironment::~ScopedEnvironment() {
    if (m_wasSet) {
        ::setenv(m_name.c_str(), m_old.c_str(), 1);
    } else {
        ::unsetenv(m_name.c_str());
    }
}

}  // namespace vorn::test
