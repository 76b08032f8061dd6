// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_COMMAND_H
#define QUORVEL_WIRE_COMMAND_H

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "wire/item.h"

namespace quorvel::wire {

enum class Sender { kHost, kPinPad };

inline constexpr size_t kIdWidth = 3;
inline constexpr size_t kStatusWidth = 3;

struct Command {
    // What its packets hold behind the id and the status: fields in a fixed order, or parameters.
    enum class Form { kFields, kParams };

    std::string_view id;
    std::string_view title;
    Form form = Form::kFields;
};

inline constexpr std::array kAllCommands{
    Command{"CEX", "wait for an event", Command::Form::kParams},
    Command{"CHP", "access to a chip"},
    Command{"CKE", "wait for an event"},
    Command{"CLO", "close the session"},
    Command{"CLX", "close the session", Command::Form::kParams},
    Command{"CNG", "change EMV data"},
    Command{"DEX", "show a long message"},
    Command{"DMF", "delete media files", Command::Form::kParams},
    Command{"DSI", "show a media file", Command::Form::kParams},
    Command{"DSP", "show a message"},
    Command{"DWK", "load a PAN working key"},
    Command{"EBX", "encipher data", Command::Form::kParams},
    Command{"ENB", "encipher a block"},
    // What answers a command that is refused as a whole.
    Command{"ERR", "error"},
    Command{"FCX", "finish with the chip", Command::Form::kParams},
    Command{"FNC", "finish with the chip"},
    Command{"GCD", "ask for a number", Command::Form::kParams},
    Command{"GCR", "read a card"},
    Command{"GCX", "read a card", Command::Form::kParams},
    Command{"GDU", "serial number of a DUKPT key"},
    Command{"GED", "EMV data", Command::Form::kParams},
    Command{"GEN", "generic command"},
    Command{"GIN", "device information"},
    Command{"GIX", "device information", Command::Form::kParams},
    Command{"GKY", "wait for a key"},
    Command{"GOC", "go on with the chip"},
    Command{"GOX", "go on with the chip", Command::Form::kParams},
    Command{"GPN", "ask for a PIN"},
    Command{"GTK", "tracks of the last card", Command::Form::kParams},
    Command{"GTS", "version of the tables"},
    Command{"LMF", "list media files", Command::Form::kParams},
    Command{"MLE", "end the load of a media file", Command::Form::kParams},
    Command{"MLI", "begin the load of a media file", Command::Form::kParams},
    Command{"MLR", "a media file's next bytes", Command::Form::kParams},
    Command{"MNU", "show a menu", Command::Form::kParams},
    // What the PIN pad tells while a command waits.
    Command{"NTM", "notification"},
    Command{"OPN", "open a session"},
    Command{"RMC", "wait until the card is removed"},
    Command{"TLE", "end the load of tables"},
    Command{"TLI", "begin the load of tables"},
    Command{"TLR", "records of tables"},
};
static_assert(std::ranges::adjacent_find(kAllCommands, std::ranges::greater_equal{}, &Command::id)
                  == kAllCommands.end(),
              "sorted and unique");

[[nodiscard]] constexpr const Command* find_command(std::string_view id) noexcept {
    const auto* found = std::ranges::lower_bound(kAllCommands, id, {}, &Command::id);
    return found != kAllCommands.end() && found->id == id ? found : nullptr;
}

// Whether it may be the id of a command that is not known. Anything else may be the middle of anything.
[[nodiscard]] constexpr bool looks_like_id(std::string_view id) noexcept {
    return id.size() == kIdWidth && std::ranges::all_of(id, [](char c) { return c >= 'A' && c <= 'Z'; });
}

// A field of a command's, in a request or a response.
struct Field {
    enum class Size {
        kFixed,     // so many bytes as the content's width says
        kOptional,  // the same, or the packet ends before it
        kCounted,   // so many for each one that the field before counts
        kRest,      // all that is left, and at least so many
        kLength,    // three digits that count a block's bytes: no field, but what they claim must be there
    };

    std::string_view name;
    Content content;
    Size size = Size::kFixed;
};

// In their order. What stands behind the last of them is in no table.
[[nodiscard]] std::span<const Field> fields_of(std::string_view id, Sender sender) noexcept;

}  // namespace quorvel::wire

#endif
