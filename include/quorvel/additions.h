/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ADDITIONS_H
#define QUORVEL_ADDITIONS_H

/*
 * What quorvel/quorvel.h leaves out: functions beside the protocol's commands, in headers of their own.
 */

#include "quorvel/abecs/cmd/gcd_sized.h"
#include "quorvel/abecs/line.h"
#include "quorvel/abecs/observer.h"

#endif
