# Stands in for the libraries when compiling for another system, where there are their headers only
# (VORN_CROSS_INCLUDE): enough to compile everything, and to link what needs nothing else.
macro(vorn_provide_headers method package)
  if(NOT "${package}" STREQUAL "Threads")
    set(${package}_FOUND TRUE)
    if(NOT TARGET vorn_cross_headers)
      add_library(vorn_cross_headers INTERFACE IMPORTED GLOBAL)
      target_include_directories(vorn_cross_headers SYSTEM INTERFACE ${VORN_CROSS_INCLUDE})
      target_compile_definitions(vorn_cross_headers INTERFACE FMT_HEADER_ONLY)
      foreach(library CLI11::CLI11 fmt::fmt fmt::fmt-header-only ICU::uc ICU::i18n nlohmann_json::nlohmann_json
              simdjson::simdjson)
        add_library(${library} ALIAS vorn_cross_headers)
      endforeach()
    endif()
  endif()
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER vorn_provide_headers SUPPORTED_METHODS FIND_PACKAGE)
