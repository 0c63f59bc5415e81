#pragma once

#include <string>
#include <string_view>

namespace vorn {

/// Whether the IANA database has exactly this name ("Europe/London", "UTC", "Etc/GMT+5"). Neither abbreviations ("PST")
/// nor offsets ("GMT+1", "+02:00") are names, and case counts.
bool isTimeZoneName(std::string_view name);

/// The system's zone at this moment: what `TZ` says, else what /etc/localtime says, else UTC. Read anew on each call,
/// so that it follows a traveller. An IANA name, or an offset ("GMT+05:30") where `TZ` holds a rule of its own.
std::string currentTimeZone();

}  // namespace vorn
