# The version texts, taken from the source tree at every build. This file is both halves: included, it sets up the
# target; run with cmake -P, it is the target's command.
#
# The header is only rewritten when a text changes, and no text depends on when the build runs: the time stamp is
# SOURCE_DATE_EPOCH, or else the date of the commit, or else, outside git, the time when the build was configured.

if(NOT CMAKE_SCRIPT_MODE_FILE)
  find_package(Git QUIET)
  # Only the time stamp of a tree without git looks at the clock, and that once.
  if(NOT DEFINED QUORVEL_CONFIGURED_AT)
    string(TIMESTAMP configured_at "%s" UTC)
    set(QUORVEL_CONFIGURED_AT ${configured_at} CACHE INTERNAL "Seconds since 1970")
  endif()
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/generated)
  set(stamp_header ${generated}/version_stamp.h)
  set(stamp_command ${CMAKE_COMMAND}
    -DGIT=${GIT_EXECUTABLE}
    -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
    -DPROJECT_VERSION=${PROJECT_VERSION}
    -DCONFIGURED_AT=${QUORVEL_CONFIGURED_AT}
    -DOUTPUT=${stamp_header}
    -P ${CMAKE_CURRENT_LIST_FILE})
  # Once now, for tools that read the sources before the first build.
  execute_process(COMMAND ${stamp_command} COMMAND_ERROR_IS_FATAL ANY)
  add_custom_target(quorvel_version_stamp COMMAND ${stamp_command} BYPRODUCTS ${stamp_header} VERBATIM)
  add_dependencies(quorvel_core quorvel_version_stamp)
  set_source_files_properties(core/version.cpp PROPERTIES INCLUDE_DIRECTORIES ${generated})
  if(QUORVEL_BUILD_TESTS AND GIT_EXECUTABLE)
    add_test(NAME version_stamp COMMAND ${CMAKE_COMMAND}
      -DGIT=${GIT_EXECUTABLE}
      -DSCRIPT=${CMAKE_CURRENT_LIST_FILE}
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/version_stamp_test
      -P ${PROJECT_SOURCE_DIR}/tests/core/version_stamp_test.cmake)
  endif()
  return()
endif()

# git(<result variable> <arguments>): what git says about the source tree, or an empty text and <result variable>_FAILED.
function(git result)
  execute_process(COMMAND ${GIT} --no-optional-locks -C ${SOURCE_DIR} ${ARGN}
    OUTPUT_VARIABLE output ERROR_QUIET RESULT_VARIABLE code OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(code)
    set(output "")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
  set(${result}_FAILED "${code}" PARENT_SCOPE)
endfunction()

set(commit 0000000000000000000000000000000000000000)
set(tag release-official-sprint-16)
set(status -1)
set(date ${CONFIGURED_AT})

# A tree unpacked inside another one's checkout has no commit of its own.
set(prefix_FAILED 1)
if(GIT)
  git(prefix rev-parse --show-prefix)
endif()
if(NOT prefix_FAILED AND prefix STREQUAL "")
  git(head rev-parse --verify HEAD)
  git(head_date log -1 --no-show-signature --format=%ct HEAD)
  git(changes status --porcelain --untracked-files=no)
  if(NOT head_FAILED)
    set(commit ${head})
    set(date ${head_date})
  endif()
  if(NOT changes_FAILED)
    string(COMPARE NOTEQUAL "${changes}" "" status)
  endif()
endif()

if(NOT DEFINED ENV{SOURCE_DATE_EPOCH} OR "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  set(ENV{SOURCE_DATE_EPOCH} ${date})
endif()
string(TIMESTAMP timestamp "%Y-%m-%d %H:%M:%S UTC" UTC)

file(CONFIGURE OUTPUT ${OUTPUT} CONTENT [[
#define QUORVEL_BUILD_TIMESTAMP "@timestamp@"
#define QUORVEL_GIT_COMMIT "@commit@"
#define QUORVEL_GIT_TAG "@tag@"
#define QUORVEL_PROJECT_VERSION "@PROJECT_VERSION@"
#define QUORVEL_GIT_STATUS @status@
]] @ONLY)
