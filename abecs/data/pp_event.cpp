// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/pp_event.h"

#include "abecs/data/enum_table.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr auto kEvents = enum_table<Named<AbecsPpEvent_E>>({
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_ARROW_UP)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_ARROW_DOWN)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_F1)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_F2)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_F3)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_F4)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_CLEAR)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_PRESSED_KEY_CANCEL)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_MAGNETIC_CARD)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_ICC_REMOVED)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_ICC_INSERTED)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_CTLS_NOT_DETECTED)},
    {QUORVEL_NAMED(ABECS_PP_EVENT_CTLS_DETECTED)},
});

}  // namespace

bool abecs::is_pp_event(int32_t event) { return find_row(kEvents, event) != nullptr; }

const char* abecs_pp_event_to_string(AbecsPpEvent_E event) {
    const auto* row = find_row(kEvents, event);
    if (row == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled event: %d\n", event), ""; }
    return row->name;
}
