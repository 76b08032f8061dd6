# The version texts that a build takes from its source tree, with a small repository of its own as the tree.
cmake_minimum_required(VERSION 3.25)

string(RANDOM LENGTH 12 name)
set(tree ${WORK_DIR}/${name})
set(header ${WORK_DIR}/${name}.h)
file(MAKE_DIRECTORY ${tree})

function(git)
  execute_process(COMMAND ${GIT} -C ${tree} -c user.name=Test -c user.email=test@example.org -c commit.gpgsign=false
    -c tag.gpgsign=false -c init.defaultBranch=main -c core.hooksPath=/dev/null ${ARGN}
    OUTPUT_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(output "${output}" PARENT_SCOPE)
endfunction()

# expect_stamp(<situation> <macro> <value> ...): stamps the tree and compares the lines of the header.
function(expect_stamp situation)
  execute_process(COMMAND ${CMAKE_COMMAND} -DGIT=${GIT} -DSOURCE_DIR=${tree} -DPROJECT_VERSION=0.1.0
    -DCONFIGURED_AT=86399 -DOUTPUT=${header} -P ${SCRIPT} COMMAND_ERROR_IS_FATAL ANY)
  file(STRINGS ${header} lines)
  while(ARGN)
    list(POP_FRONT ARGN macro value)
    list(FIND lines "#define QUORVEL_${macro} ${value}" at)
    if(at EQUAL -1)
      message(SEND_ERROR "${situation}: no ${macro} ${value} in\n${lines}")
    endif()
  endwhile()
endfunction()

unset(ENV{SOURCE_DATE_EPOCH})
set(ENV{GIT_CEILING_DIRECTORIES} ${WORK_DIR})
expect_stamp("no version control"
  BUILD_TIMESTAMP "\"1970-01-01 23:59:59 UTC\""
  GIT_COMMIT "\"0000000000000000000000000000000000000000\""
  GIT_TAG "\"release-official-sprint-16\""
  PROJECT_VERSION "\"0.1.0\""
  GIT_STATUS -1)

git(init --quiet)
file(WRITE ${tree}/file "one")
set(ENV{GIT_AUTHOR_DATE} "2001-01-01T00:00:00Z")
set(ENV{GIT_COMMITTER_DATE} "2026-02-03T04:05:06+01:00")
git(add file)
git(commit --quiet -m "First")
git(rev-parse HEAD)
file(WRITE ${tree}/untracked "")
expect_stamp("clean commit"
  BUILD_TIMESTAMP "\"2026-02-03 03:05:06 UTC\""
  GIT_COMMIT "\"${output}\""
  GIT_TAG "\"release-official-sprint-16\""
  GIT_STATUS 0)

# A header that is written anew without need would have everything that includes it compiled at every build.
file(TIMESTAMP ${header} before "%s%f")
expect_stamp("stamped again")
file(TIMESTAMP ${header} after "%s%f")
if(NOT before STREQUAL after)
  message(SEND_ERROR "the header was written again without a change")
endif()

git(tag -m "Release" v9)
file(WRITE ${tree}/file "two")
set(ENV{SOURCE_DATE_EPOCH} 0)
expect_stamp("tagged otherwise, changed, with a date from outside"
  BUILD_TIMESTAMP "\"1970-01-01 00:00:00 UTC\""
  GIT_TAG "\"release-official-sprint-16\""
  GIT_STATUS 1)
unset(ENV{SOURCE_DATE_EPOCH})

set(outer ${tree})
set(tree ${outer}/inner)
file(MAKE_DIRECTORY ${tree})
expect_stamp("unpacked inside another checkout"
  GIT_COMMIT "\"0000000000000000000000000000000000000000\""
  GIT_STATUS -1)

file(REMOVE_RECURSE ${outer} ${header})
