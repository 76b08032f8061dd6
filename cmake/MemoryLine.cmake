# quorvel_memory_line(<target>): in the place of the system's terminals and clock for what the target links as objects.
function(quorvel_memory_line target)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/memory/line.cpp)
  foreach(call IN ITEMS open close read write poll tcdrain tcflush tcgetattr tcsetattr ioctl fcntl flock eventfd
      eventfd_read clock_gettime gettimeofday clock_nanosleep)
    target_link_options(${target} PRIVATE -Wl,--wrap=${call})
  endforeach()
endfunction()
