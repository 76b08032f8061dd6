include_guard(GLOBAL)

add_library(quorvel_line_in_memory OBJECT EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/support/memory/line.cpp)
quorvel_ordinary(quorvel_line_in_memory)
# Half a million calls: here it is the running that counts.
target_compile_options(quorvel_line_in_memory PRIVATE -O1)
target_include_directories(quorvel_line_in_memory PRIVATE ${PROJECT_SOURCE_DIR})

# quorvel_memory_line(<target>): in the place of the system's terminals and clock for what the target links as objects.
function(quorvel_memory_line target)
  target_link_libraries(${target} PRIVATE quorvel_line_in_memory)
  foreach(call IN ITEMS open close read write poll tcdrain tcflush tcgetattr tcsetattr ioctl fcntl flock eventfd
      eventfd_read clock_gettime gettimeofday clock_nanosleep)
    target_link_options(${target} PRIVATE -Wl,--wrap=${call})
  endforeach()
  # What the C library calls them where files and times have 64 bits and the machine 32.
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    foreach(pair IN ITEMS open64=open __ioctl_time64=ioctl __fcntl_time64=fcntl __clock_gettime64=clock_gettime
        __gettimeofday64=gettimeofday __clock_nanosleep_time64=clock_nanosleep)
      string(REPLACE "=" ";" names ${pair})
      list(GET names 0 long)
      list(GET names 1 short)
      target_link_options(${target} PRIVATE -Wl,--wrap=${long} -Wl,--defsym=__wrap_${long}=__wrap_${short})
    endforeach()
  endif()
endfunction()
