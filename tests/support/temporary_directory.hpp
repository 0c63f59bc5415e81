#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorn::test {

/// A fresh directory that is removed with all it holds.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

    /// Creates missing parents; returns the file's path.
    std::filesystem::path write(std::string_view name, std::string_view content) const;
    /// A shell script with the mode 0755.
    std::filesystem::path executable(std::string_view name, std::string_view script) const;

private:
    std::filesystem::path m_path;
};

/// The whole file as it is; fails the test when it cannot be read.
std::string readAll(const std::filesystem::path& path);

/// Sets an environment variable for the life of the object, or unsets it when `value` is null.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string m_name;
    std::string m_old;
    bool m_wasSet = false;
};

}  // namespace vorn::test
