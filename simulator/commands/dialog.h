// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_DIALOG_H
#define QUORVEL_SIMULATOR_COMMANDS_DIALOG_H

#include <memory>
#include <utility>

#include "simulator/cards/emv.h"
#include "simulator/commands/command.h"
#include "simulator/device/texts.h"
#include "wire/tag.h"

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
          request_(std::move(request)),
          answer_(std::move(answer)) {}

    // With what the cardholder is told of it.
    [[nodiscard]] Answer shown(Answer answer) const {
        const auto text = text_for(answer.status);
        if (text && !answer.shows) { answer.shows = device_.text(*text); }
        return answer;
    }
    [[nodiscard]] std::string overdue() const { return device_.text(Text::kTimeOut); }

protected:
    [[nodiscard]] Answer showing(Answer answer, Text text) const {
        if (answer.status == Status::kOk) { answer.shows = device_.text(text); }
        return answer;
    }

    // In front of what the PIN pad asks for, when there is an amount.
    [[nodiscard]] std::string amount_line(const DataObjects& objects) const {
        const auto number = [&](Tag tag) {
            const auto found = objects.find(tag);
            return found != objects.end() ? from_bcd(found->second) : 0;
        };
        const uint64_t amount = number(tag::kAmount);
        const auto currency = static_cast<unsigned>(number(tag::kCurrency));
        return amount == 0 ? "" : amount_text(amount, currency, device_.language) + "\r";
    }

    Device& device_;
    Screen& screen_;
    const std::function<void(std::string_view)>& notify_;
    Request request_;
    MakeAnswer answer_;
};

template <typename Talk, typename... Arguments>
[[nodiscard]] Outcome hold(std::optional<std::chrono::seconds> limit, Arguments&&... arguments) {
    const auto talk = std::make_shared<Talk>(std::forward<Arguments>(arguments)...);
    if (const auto atOnce = talk->begin()) { return talk->shown(*atOnce); }
    return Wait{[talk](const Event& event) {
                    auto answer = talk->on(event);
                    return answer ? std::optional(talk->shown(*std::move(answer))) : std::nullopt;
                },
                limit, talk->wait(), talk->overdue()};
}

}  // namespace quorvel::sim::commands

#endif
