# Headers that most files of a kind include, compiled once for all of them: half of the time of a build from nothing is
# spent in headers. Off, every file has to include what it uses; .ci/full and the compile for macOS build it that way.

option(VORN_PRECOMPILE "Compile headers that most files include once for all of them" ON)

set(VORN_STANDARD_HEADERS
  <algorithm> <array> <chrono> <cmath> <cstdint> <filesystem> <functional> <map> <memory> <optional> <set> <span>
  <string> <string_view> <system_error> <utility> <vector>)
set(VORN_QT_HEADERS
  <QColor> <QGuiApplication> <QList> <QObject> <QPainter> <QPointer> <QString> <QStringList> <QTimer> <QVariantMap>)
set(VORN_VIEW_HEADERS <QQmlEngine> <QQuickItem>)
set(VORN_TEST_HEADERS <gmock/gmock.h> <gtest/gtest.h> <fstream>)

# vorn_precompiled(NAME [FOR_EXECUTABLES] HEADERS … LINKS …): a target that only makes them. What serves libraries does not
# serve executables, whose position-independent code is of another kind, unless they link Qt, which wants one for all.
function(vorn_precompiled name)
  cmake_parse_arguments(ARG "FOR_EXECUTABLES" "" "HEADERS;LINKS" ${ARGN})
  if(VORN_PRECOMPILE)
    add_library(${name} OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
    if(ARG_FOR_EXECUTABLES)
      set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
      target_compile_options(${name} PRIVATE ${CMAKE_CXX_COMPILE_OPTIONS_PIE})
    endif()
    target_link_libraries(${name} PRIVATE vorn_options ${ARG_LINKS})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  endif()
endfunction()

# vorn_reuse_precompiled(TARGET NAME)
function(vorn_reuse_precompiled target name)
  if(TARGET ${name})
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()
