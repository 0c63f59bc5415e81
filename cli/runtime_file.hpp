#pragma once

#include <filesystem>
#include <optional>

/// Files for as long as the user is logged in, where Vorn's own folder cannot be written: in the folder of the local
/// socket, which belongs to the user alone and is no link.
namespace vorn::cli {

/// The file with that ending (".probe.json") for Vorn's folder of now; its folder is there, or empty is returned.
std::optional<std::filesystem::path> findRuntimeFile(const char* ending);
/// The same after making the folder. Empty where there is no private place.
std::optional<std::filesystem::path> makeRuntimeFile(const char* ending);

}  // namespace vorn::cli
