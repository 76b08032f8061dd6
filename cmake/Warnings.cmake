# What every target here is compiled with. The protocol's years have two digits, so formats may, too.
add_library(quorvel_warnings INTERFACE)
target_compile_options(quorvel_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wformat=2 -Wno-format-y2k -Wconversion -Wsign-conversion -Wshadow -Wcast-qual
  # libstdc++ 12 marks as deprecated what its own stable_sort calls, and clang since 17 says so of whoever sorts.
  $<$<AND:$<COMPILE_LANG_AND_ID:CXX,Clang>,$<VERSION_GREATER_EQUAL:$<CXX_COMPILER_VERSION>,17>>:-Wno-deprecated-declarations>
  $<$<BOOL:${QUORVEL_WERROR}>:-Werror>)

add_library(quorvel_sanitize INTERFACE)
if(QUORVEL_SANITIZE)
  target_compile_options(quorvel_sanitize INTERFACE
    -fsanitize=${QUORVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quorvel_sanitize INTERFACE -fsanitize=${QUORVEL_SANITIZE})
  # These need the C++ runtime, which the library does not have. The tests call functions of C with other integers in
  # place of a bool or an enumeration on purpose.
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    target_compile_options(quorvel_sanitize INTERFACE -fno-sanitize=function,vptr)
  endif()
endif()
if(QUORVEL_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "QUORVEL_FUZZ needs clang, as the preset fuzz has it")
  endif()
  # Behind what each target says of itself: fast enough, and no checks that keep the sanitizers from seeing what is wrong.
  target_compile_options(quorvel_sanitize INTERFACE -fsanitize=fuzzer-no-link -O1 -U_FORTIFY_SOURCE)
endif()

set(QUORVEL_PROGRAMS_LEVEL 1 CACHE STRING "How far the programs beside the library are optimised, other than in Debug")

option(QUORVEL_FEWER_UNITS
  "Compile the sources of a folder of the programs together, and read common headers once: the same, in less time" OFF)

# quorvel_join(<target> [<name> ...]): so it is for this target's sources, eight at a time, but for those named, whose
# own names others of their folder have, too. A build without it shows that each source includes what it needs.
function(quorvel_join target)
  if(NOT QUORVEL_FEWER_UNITS)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source FILENAME name)
    cmake_path(GET source PARENT_PATH folder)
    if(NOT name MATCHES "[.]cpp$" OR name IN_LIST ARGN)
      continue()
    endif()
    string(MAKE_C_IDENTIFIER "${folder}" folder)
    math(EXPR count_${folder} "0${count_${folder}} + 1")
    math(EXPR number "(${count_${folder}} - 1) / 8")
    set_property(SOURCE ${source} PROPERTY UNITY_GROUP "${folder}_${number}")
  endforeach()
endfunction()

# Ordinary programs and libraries beside the library: tools, simulator, tests, examples.
function(quorvel_ordinary target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:quorvel_warnings> $<BUILD_INTERFACE:quorvel_sanitize>)
  # Nothing here waits for the processor, but building waits for the compiler.
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:CXX>:-g1> $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<NOT:$<CONFIG:Debug>>>:-O${QUORVEL_PROGRAMS_LEVEL}>)
endfunction()
