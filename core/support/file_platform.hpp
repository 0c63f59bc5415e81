#pragma once

/// What replacing files takes beyond POSIX; one implementation per system.
namespace vorn::file_platform {

/// Lets two names of the same file system change places in one step. False when one is missing or the file system has
/// no such thing; both then stand as they were.
bool exchangeNames(const char* one, const char* other);

}  // namespace vorn::file_platform
