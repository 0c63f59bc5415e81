# What every target of the project shares: the language, the warnings, the sanitizers.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Sources that exist once for each system end in its name.
if(APPLE)
  set(VORN_PLATFORM macos)
else()
  set(VORN_PLATFORM linux)
endif()

find_program(VORN_CCACHE ccache)
if(VORN_CCACHE)
  # What one clone has compiled serves every other.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${VORN_CCACHE})
endif()

add_library(vorn_options INTERFACE)
target_compile_options(vorn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wcast-align -Wnull-dereference
  # Records are made with designated initialisers; what is left out is meant to be absent.
  -Wno-missing-field-initializers
  # GCC 12 reports overlaps inside std::string's own operator+ that cannot happen (its bug 105651), and
  # null dereferences inside inlined library code once sanitizers are on.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-null-dereference>)
if(VORN_WERROR)
  target_compile_options(vorn_options INTERFACE -Werror)
endif()
if(VORN_SANITIZE)
  target_compile_options(vorn_options INTERFACE
    -fsanitize=${VORN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vorn_options INTERFACE -fsanitize=${VORN_SANITIZE})
endif()

# vorn_library(NAME SOURCES … LINKS …): one layer. Headers are included from the project's root
# ("core/data/usage_window.hpp"), so that an include line shows the layer it reaches into.
function(vorn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE vorn_options)
endfunction()

# vorn_qt_library(NAME SOURCES … LINKS …): the same for a layer that uses Qt's objects. Headers with signals that have no
# source file beside them are listed as sources.
function(vorn_qt_library name)
  vorn_library(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
endfunction()

function(vorn_executable name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} vorn_options)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endfunction()

# vorn_test(UNIT LINKS …): tests/UNIT_test.cpp as an executable of its own, each case known to CTest.
function(vorn_test unit)
  cmake_parse_arguments(ARG "" "" "LINKS;SOURCES" ${ARGN})
  add_executable(${unit}_test ${unit}_test.cpp ${ARG_SOURCES})
  target_link_libraries(${unit}_test PRIVATE ${ARG_LINKS} vorn_test_support vorn_options GTest::gmock_main)
  gtest_discover_tests(${unit}_test PROPERTIES TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endfunction()

# vorn_test_abroad(UNIT ZONE LOCALE): the unit's test once more as a whole, as users elsewhere would run it. The locale
# need not be installed.
function(vorn_test_abroad unit zone locale)
  add_test(NAME ${unit}@${zone},${locale} COMMAND ${unit}_test)
  set_tests_properties(${unit}@${zone},${locale} PROPERTIES TIMEOUT 120 ENVIRONMENT "TZ=${zone};LC_ALL=${locale}")
endfunction()
