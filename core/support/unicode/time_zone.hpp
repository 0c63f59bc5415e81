#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "core/support/time_zone.hpp"

/// Where the rules of zones come from: the system's zone files ($TZDIR, else /usr/share/zoneinfo), as the client and
/// every other program on the machine have them. ICU has its own, of the year in which it was built; they stand in for
/// a file that is missing or damaged.
namespace vorn {

/// The zone with that IANA name ("Europe/London", "UTC", "Etc/GMT+5"). Empty for anything else: neither abbreviations
/// ("PST") nor offsets ("GMT+1", "+02:00") are names, and case counts where it does in the names of files.
std::optional<TimeZone> timeZoneNamed(std::string_view name);

/// The system's zone at this moment: what `TZ` says (a name, a path, or a rule of its own), else what /etc/localtime
/// says, else UTC. Looked for anew on each call, so that it follows a traveller.
TimeZone currentTimeZone();

/// What a file in the place of /etc/localtime says, be it a zone file or a link to one. Where that cannot be read, the
/// link's target still has a name. UTC when nothing helps.
TimeZone timeZoneOfFile(const std::filesystem::path& file);

}  // namespace vorn
