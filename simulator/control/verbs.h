// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_VERBS_H
#define QUORVEL_SIMULATOR_CONTROL_VERBS_H

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "simulator/cardholder/event.h"
#include "simulator/cards/cards.h"
#include "simulator/control/arguments.h"
#include "simulator/control/control.h"
#include "simulator/faults/fault.h"

namespace quorvel::sim {

// One kind of request. What it does throws RequestError and changes nothing when a member is wrong.
struct Verb {
    // Something that the cardholder does, now or as part of a plan. The only kind that does not end the arguments.
    using Gesture = void (*)(Gestures& gestures, Arguments& arguments, const Cards& cards);
    // Something else to do, once all is known of it.
    using Deed = std::function<void(PinPad& pinPad)>;
    using Plan = Deed (*)(Arguments& arguments);
    // Something to answer; the answer's members besides "ok".
    using Action = nlohmann::json (*)(Control& control, Arguments& arguments);
    using Wait = Control::Await (*)(Control& control, Arguments& arguments);

    std::string_view name;
    std::variant<Gesture, Plan, Action, Wait> run;
    // The member whose value stands beside the name where there is room for no more; empty when there is none.
    std::string_view member = {};
};

// What "press" calls the key.
[[nodiscard]] std::string name_of(Key key);
// The request that injects it, and the fault that a request injects, which may be none that can be; throws
// RequestError.
[[nodiscard]] nlohmann::json to_json(const Fault& fault);
[[nodiscard]] Fault fault_of(Arguments& arguments);
// As "traffic" and "findings" list them.
[[nodiscard]] nlohmann::json to_json(const Traffic& traffic);
[[nodiscard]] nlohmann::json to_json(const Finding& finding);

[[nodiscard]] std::span<const Verb> all_verbs() noexcept;
// Throws RequestError.
[[nodiscard]] const Verb& find_verb(std::string_view name);

}  // namespace quorvel::sim

#endif
