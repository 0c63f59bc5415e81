#pragma once

#include <filesystem>
#include <optional>

/// Files for as long as the user is logged in, where Vorn's own folder cannot be written: in the folder of the local
/// socket, which belongs to the user alone and is no link.
namespace vorn::cli {

/// The file with that ending (".probe.json") that belongs to the present folder of Vorn. Empty where the folder that it
/// lies in does not exist.
std::optional<std::filesystem::path> findRuntimeFile(const char* ending);
/// `findRuntimeFile` that makes the folder where it is missing. Empty where there is no private place.
std::optional<std::filesystem::path> makeRuntimeFile(const char* ending);

}  // namespace vorn::cli
