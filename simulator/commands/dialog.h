// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_DIALOG_H
#define QUORVEL_SIMULATOR_COMMANDS_DIALOG_H

#include <memory>
#include <utility>

#include "simulator/commands/command.h"

namespace quorvel::sim::commands {

// What a command works on that may have to wait for the cardholder. A class made of it has begin(), which answers at
// once if it can; on(event), which answers when it can; and wait(), what the host is told as the wait begins.
template <typename Request, typename MakeAnswer>
class Dialog {
public:
    Dialog(Call& call, Request request, MakeAnswer answer)
        : device_(call.device),
          screen_(call.screen),
          notify_(call.notify),
          journal_(call.journal),
          request_(std::move(request)),
          answer_(std::move(answer)) {}

protected:
    Device& device_;
    Screen& screen_;
    const std::function<void(std::string_view)>& notify_;
    Journal& journal_;
    Request request_;
    MakeAnswer answer_;
};

template <typename Talk, typename... Arguments>
[[nodiscard]] Outcome hold(std::optional<std::chrono::seconds> limit, Arguments&&... arguments) {
    const auto talk = std::make_shared<Talk>(std::forward<Arguments>(arguments)...);
    if (const auto atOnce = talk->begin()) { return *atOnce; }
    return Wait{[talk](const Event& event) { return talk->on(event); }, limit, talk->wait()};
}

}  // namespace quorvel::sim::commands

#endif
