# Shared target setup: the house warnings and the include root for our own code.
function(harbex_target_defaults target)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    return()
  endif()
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # libstdc++ 12's std::stable_sort calls its own deprecated get_temporary_buffer, which clang
    # reports at our call site; g++ builds still catch our own use of deprecated names.
    target_compile_options(${target} PRIVATE -Wno-deprecated-declarations)
  endif()
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# A static library made of every .cpp below `dir`, minus the sub-folders named after EXCLUDE.
function(harbex_add_library name dir)
  cmake_parse_arguments(ARG "" "" "EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${dir}/*.cpp")
  foreach(excluded IN LISTS ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "/${dir}/${excluded}/")
  endforeach()
  if(NOT sources)
    # A folder whose code has not landed yet still gives a target others can link.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  harbex_target_defaults(${name})
endfunction()
