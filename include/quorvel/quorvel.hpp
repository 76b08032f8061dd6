// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_QUORVEL_HPP
#define QUORVEL_QUORVEL_HPP

/// @file
/// The C++ interface of libquorvel0: header-only, C++20, on top of the C interface (quorvel/quorvel.h).
///
/// 1. What the library raises is thrown as quorvel::Error. No raise jumps over an object that has a destructor, and no
///    exception passes through C. The PIN pad's statuses are values, quorvel::Status.
/// 2. Link, Session and Wait are handles that end what they stand for: the port, the session, the command that waits.
///    They may be moved and not copied.
/// 3. Requests are structures, one for each command, with the protocol's name: Session::run sends one that is answered
///    at once, Session::start one that waits for the cardholder. Their texts and bytes are only looked at during the
///    call.
/// 4. After an error in the middle of an exchange, the next command begins with CAN.
/// 5. One thread at a time, for all links of a process; Link::cancel and Wait::cancel may be called by any.

/// @namespace quorvel
/// The C++ interface; quorvel.hpp says what holds everywhere.

#include "quorvel/hpp/answer.hpp"
#include "quorvel/hpp/cardholder.hpp"
#include "quorvel/hpp/device.hpp"
#include "quorvel/hpp/error.hpp"
#include "quorvel/hpp/line.hpp"
#include "quorvel/hpp/pan.hpp"
#include "quorvel/hpp/payment.hpp"
#include "quorvel/hpp/ports.hpp"
#include "quorvel/hpp/raw.hpp"
#include "quorvel/hpp/repeat.hpp"
#include "quorvel/hpp/session.hpp"
#include "quorvel/hpp/tables.hpp"
#include "quorvel/hpp/values.hpp"
#include "quorvel/hpp/wait.hpp"

#endif
