# Warnings for every Tramline target; -Werror when TRAMLINE_WERROR is on (CI turns it on).
function(tramline_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4)
    if(TRAMLINE_WERROR)
      target_compile_options(${target} PRIVATE /WX)
    endif()
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                           -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
                           -Woverloaded-virtual -Wnull-dereference -Wformat=2 -Wno-format-nonliteral)
    if(TRAMLINE_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
    # GCC 12 warns about overlapping copies inside std::string at -O2 where
    # none can happen (GCC bug 105329); later releases do not.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
endfunction()

# Declares a core module: static library tramline_<name>, alias tramline::<name>.
function(tramline_module name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(tramline_${name} STATIC ${ARG_SOURCES})
  add_library(tramline::${name} ALIAS tramline_${name})
  target_include_directories(tramline_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(tramline_${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
  tramline_warnings(tramline_${name})
endfunction()
