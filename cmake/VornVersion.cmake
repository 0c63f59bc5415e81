# The version, and the day of its release, are what the newest heading of CHANGELOG.md says: "## 1.2.3 (2026-11-23)".
# Everything that shows a version has it from here.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/CHANGELOG.md)
set(release_heading "^## ([0-9]+\\.[0-9]+\\.[0-9]+) \\((20[0-9][0-9]-[01][0-9]-[0-3][0-9])\\)$")
file(STRINGS CHANGELOG.md release_headings REGEX ${release_heading})
if(NOT release_headings)
  message(FATAL_ERROR "CHANGELOG.md has no heading like \"## 1.2.3 (2026-11-23)\", so the version is not known")
endif()
list(GET release_headings 0 newest_release)
string(REGEX REPLACE ${release_heading} "\\1" VORN_RELEASE_VERSION ${newest_release})
string(REGEX REPLACE ${release_heading} "\\2" VORN_RELEASE_DATE ${newest_release})
