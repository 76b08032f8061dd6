/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Looks for a PIN pad on the given ports, and says of each before it why it is none:
 *
 *     find_pin_pad /dev/ttyACM0 /dev/ttyUSB0
 */

#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>

#include "quorvel/quorvel.h"

/* Null when nobody answers at the port. What is no matter of this port, such as memory, goes on to main. */
static AbecsComm* try_port(const char* port) {
    AbecsComm* volatile pinpad = NULL;
    KOR_TRY { pinpad = abecs_comm_open(port); }
    KOR_CATCH(KOR_RESULT_FILE_NOT_FOUND) { printf("%s: nothing is plugged in\n", port); }
    KOR_CATCH(KOR_RESULT_PERMISSION_DENIED) { printf("%s: this user may not use it\n", port); }
    KOR_CATCH(KOR_RESULT_DEVICE_BUSY) { printf("%s: another program has it\n", port); }
    KOR_CATCH(KOR_RESULT_IO_ERROR) { printf("%s: no PIN pad: %s\n", port, kor_exception_get_message()); }
    KOR_END_TRY;
    return pinpad;
}

static bool find(char** ports) {
    for (char** port = ports; *port != NULL; ++port) {
        AbecsComm* pinpad = try_port(*port);
        if (pinpad == NULL) { continue; }
        printf("%s: here it is\n", *port);
        abecs_comm_close(&pinpad);
        return true;
    }
    return false;
}

int main(int argc, char** argv) {
    volatile bool found = false;
    if (argc < 2) {
        fprintf(stderr, "usage: %s PORT...\n", argv[0]);
        return EXIT_FAILURE;
    }
    KOR_TRY { found = find(argv + 1); }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return found ? EXIT_SUCCESS : EXIT_FAILURE;
}
