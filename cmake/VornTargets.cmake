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
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${VORN_CCACHE})
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
  vorn_reuse_precompiled(${name} vorn_standard_headers)
endfunction()

# vorn_qt_library(NAME SOURCES … LINKS …): the same for a layer that uses Qt's objects. Headers with signals that have no
# source file beside them are listed as sources.
function(vorn_qt_library name)
  cmake_parse_arguments(ARG "" "PRECOMPILED" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_PRECOMPILED)
    set(ARG_PRECOMPILED vorn_qt_headers)
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE vorn_options)
  vorn_reuse_precompiled(${name} ${ARG_PRECOMPILED})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
endfunction()

# vorn_ui_module(NAME URI … SOURCES … QML … LINKS …): the same for a folder of views, which is a QML module as well. QML
# files import what they use of other folders, so that an import shows the layer it reaches into, too.
function(vorn_ui_module name)
  cmake_parse_arguments(ARG "" "URI" "SOURCES;QML;LINKS" ${ARGN})
  vorn_qt_library(${name} PRECOMPILED vorn_view_headers SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} Qt6::Quick)
  # Loading is quick without parsing; bindings translated to C++ as well would take longest of all to build.
  set_target_properties(${name} PROPERTIES QT_QMLCACHEGEN_ARGUMENTS --only-bytecode)
  set(imports QtQuick)
  foreach(link IN LISTS ARG_LINKS)
    if(TARGET ${link}_qmllint)
      get_target_property(uri ${link} QT_QML_MODULE_URI)
      list(APPEND imports ${uri})
      list(APPEND linked_tooling ${link}_tooling)
    endif()
  endforeach()
  string(REPLACE "." "/" directory ${ARG_URI})
  qt_add_qml_module(${name}
    URI ${ARG_URI}
    VERSION 1.0
    RESOURCE_PREFIX /qt/qml
    OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/qml/${directory}
    NO_PLUGIN
    DEPENDENCIES ${imports}
    QML_FILES ${ARG_QML}
  )
  add_dependencies(${name}_qmllint ${name}_tooling ${linked_tooling})
  vorn_join_generated(${name})
endfunction()

# What Qt generates from QML files is compiled as one file: most of the time goes into the one header that each of them
# includes. It does not keep the project's rules for warnings.
function(vorn_join_generated name)
  get_target_property(generated ${name} SOURCES)
  list(FILTER generated INCLUDE REGEX "/\\.rcc/|qmltyperegistrations")
  set_source_files_properties(${generated} PROPERTIES UNITY_GROUP generated)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${name}.dir/Unity/unity_generated_cxx.cxx
    PROPERTIES COMPILE_OPTIONS -w)
endfunction()

function(vorn_executable name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} vorn_options)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endfunction()

# vorn_tests(NAME UNITS … LINKS …): tests/UNIT_test.cpp of each unit in one executable, each case known to CTest. One
# executable for a layer, since linking and asking for its cases take longer than most files.
function(vorn_tests name)
  cmake_parse_arguments(ARG "" "PRECOMPILED" "UNITS;LINKS" ${ARGN})
  if(NOT ARG_PRECOMPILED)
    set(ARG_PRECOMPILED vorn_test_headers)
  endif()
  list(TRANSFORM ARG_UNITS APPEND _test.cpp)
  add_executable(${name} ${ARG_UNITS})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} vorn_test_support vorn_options GTest::gmock_main)
  vorn_reuse_precompiled(${name} ${ARG_PRECOMPILED})
  gtest_discover_tests(${name} PROPERTIES TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endfunction()

# vorn_test_constants(UNIT NAME=VALUE …): what tests/UNIT_test.cpp is told of the build.
function(vorn_test_constants unit)
  set_source_files_properties(${unit}_test.cpp PROPERTIES COMPILE_DEFINITIONS "${ARGN}")
endfunction()

# vorn_test_abroad(EXECUTABLE SUITES ZONE LOCALE): tests once more as users elsewhere would run them. SUITES is a filter of
# GoogleTest's. The locale need not be installed.
function(vorn_test_abroad executable suites zone locale)
  add_test(NAME ${executable}@${zone},${locale} COMMAND ${executable} --gtest_filter=${suites})
  set_tests_properties(${executable}@${zone},${locale} PROPERTIES TIMEOUT 120 ENVIRONMENT "TZ=${zone};LC_ALL=${locale}")
endfunction()
