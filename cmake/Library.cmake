# The library: one object library for each layer, so that a layer can only use what lies below it, and the shared
# library made of all of them.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBTOMCRYPT REQUIRED IMPORTED_TARGET libtomcrypt)
pkg_check_modules(LIBTOMMATH REQUIRED IMPORTED_TARGET libtommath)

include(CheckCCompilerFlag)
check_c_compiler_flag(-fcf-protection QUORVEL_HAS_CF_PROTECTION)
include(CheckCSourceCompiles)
check_c_compiler_flag("-Werror -fstack-clash-protection" QUORVEL_HAS_STACK_CLASH_PROTECTION)

# Relocations in a fiftieth of their size, where the C library can read them.
set(CMAKE_REQUIRED_LINK_OPTIONS -Wl,-z,pack-relative-relocs)
check_c_source_compiles("#include <features.h>
#if !__GLIBC_PREREQ(2, 36)
#error
#endif
int main(void) { return 0; }" QUORVEL_HAS_PACKED_RELOCATIONS)
unset(CMAKE_REQUIRED_LINK_OPTIONS)

# The C++ language without its runtime: errors leave by longjmp, so nothing here may throw or own a destructor.
add_library(quorvel_library_rules INTERFACE)
string(COMPARE NOTEQUAL "${QUORVEL_SANITIZE}" "" sanitized)
target_compile_options(quorvel_library_rules INTERFACE
  -fvisibility=hidden
  -fstack-protector-strong
  $<$<BOOL:${QUORVEL_HAS_STACK_CLASH_PROTECTION}>:-fstack-clash-protection>
  $<$<BOOL:${QUORVEL_HAS_CF_PROTECTION}>:-fcf-protection>
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fvisibility-inlines-hidden>
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:Clang>>:-Wglobal-constructors>
  # The sweeps under the sanitizers are nothing but calls of it.
  $<$<AND:$<CONFIG:Debug>,$<BOOL:${sanitized}>>:-O1>
  # Small, because nearly all the time goes to the line. With frame pointers the unwind tables are smaller, too.
  $<$<NOT:$<CONFIG:Debug>>:-Oz -fno-omit-frame-pointer -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
if(QUORVEL_COVERAGE)
  target_compile_options(quorvel_library_rules INTERFACE --coverage)
endif()
target_include_directories(quorvel_library_rules INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(quorvel_library_rules INTERFACE quorvel_warnings quorvel_sanitize)

# quorvel_layer(<name> [<layers below> ...]): the sources of folder <name>.
function(quorvel_layer name folder)
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(${name} OBJECT ${sources})
  target_link_libraries(${name} PRIVATE quorvel_library_rules)
  if(QUORVEL_FEWER_UNITS AND NOT name STREQUAL quorvel_core)
    target_precompile_headers(${name} REUSE_FROM quorvel_core)
  elseif(QUORVEL_FEWER_UNITS)
    target_precompile_headers(${name} PRIVATE <algorithm> <array> <chrono> <cstring> <optional> <span> <string_view>)
  endif()
endfunction()

# Making a key is nothing but this arithmetic.
set_source_files_properties(crypt/modulus_multiply.cpp PROPERTIES COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)

quorvel_layer(quorvel_core core)
quorvel_layer(quorvel_crypt crypt)
quorvel_layer(quorvel_data abecs/data)
quorvel_layer(quorvel_comm abecs/comm)
quorvel_layer(quorvel_cmd abecs/cmd)
set(QUORVEL_LAYERS quorvel_core quorvel_crypt quorvel_data quorvel_comm quorvel_cmd)

# quorvel_link_layers(<target> [<object libraries> ...]): those of them that there are, to reach private functions.
function(quorvel_link_layers target)
  foreach(layer IN LISTS ARGN)
    if(TARGET ${layer})
      target_link_libraries(${target} PRIVATE ${layer})
    endif()
  endforeach()
endfunction()

include(cmake/Version.cmake)

# The version script that exports the reviewed names and nothing else (hidden visibility alone would still export the
# weak symbols of header templates): those that stay as they are for ever, and those that came later.
set(QUORVEL_EXPORTS ${CMAKE_CURRENT_BINARY_DIR}/exports.txt)
set(names)
foreach(list IN ITEMS exports additions)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/${list}.txt)
  file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/${list}.txt more)
  list(APPEND names ${more})
endforeach()
list(SORT names)
list(JOIN names "\n" lines)
file(CONFIGURE OUTPUT exports.txt CONTENT "${lines}\n" @ONLY)
list(JOIN names ";\n    " names)
file(CONFIGURE OUTPUT quorvel.map CONTENT "QUORVEL_0 {\n  global:\n    ${names};\n  local:\n    *;\n};\n" @ONLY)

# Linked by the C driver, which does not add libstdc++.
set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")
add_library(quorvel SHARED)
add_library(quorvel::quorvel ALIAS quorvel)
foreach(layer IN LISTS QUORVEL_LAYERS)
  if(TARGET ${layer})
    target_sources(quorvel PRIVATE $<TARGET_OBJECTS:${layer}>)
  endif()
endforeach()
set_target_properties(quorvel PROPERTIES
  OUTPUT_NAME quorvel0
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE C
  LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/quorvel.map)
target_include_directories(quorvel INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(quorvel PRIVATE quorvel_sanitize PkgConfig::LIBTOMCRYPT PkgConfig::LIBTOMMATH)
target_link_options(quorvel PRIVATE
  $<$<BOOL:${QUORVEL_HAS_PACKED_RELOCATIONS}>:-Wl,-z,pack-relative-relocs>
  -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/quorvel.map
  -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack
  # What the library exports it calls itself too: directly, and nobody else's function of the same name.
  -Wl,-Bsymbolic-functions)
if(NOT QUORVEL_SANITIZE)
  target_link_options(quorvel PRIVATE -Wl,-z,defs)
endif()

# The C++ interface: headers alone, on top of the library.
add_library(quorvel_hpp INTERFACE)
add_library(quorvel::hpp ALIAS quorvel_hpp)
set_target_properties(quorvel_hpp PROPERTIES EXPORT_NAME hpp)
target_link_libraries(quorvel_hpp INTERFACE quorvel)
target_compile_features(quorvel_hpp INTERFACE cxx_std_20)
