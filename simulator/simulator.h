// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SIMULATOR_H
#define QUORVEL_SIMULATOR_SIMULATOR_H

// The virtual PIN pad inside a test in C++, from find_package(quorvel COMPONENTS simulator); docs/in-process.md tells
// how. These names of quorvel::sim are meant for it, and keep their meaning from version to version:
//
//     PinPad, PinPad::Options, Device::standard      the PIN pad, on a device that a till opens
//     Cards, Card                                    cards, by name or made up
//     Gestures, Key                                  what the cardholder does
//     Fault                                          what goes wrong on the line
//     Finding, Traffic                               what the host did wrong, what crossed the line
//     Scenario, Performance                          scenario files
//
// Everything else in the headers that come with them may change with each version.
#include "simulator/cards/cards.h"
#include "simulator/faults/fault.h"
#include "simulator/pin_pad.h"
#include "simulator/scenario/performance.h"
#include "simulator/scenario/scenario.h"

#endif
