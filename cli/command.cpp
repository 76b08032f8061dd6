// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/command.h"

#include <array>

namespace quorvel::cli {

namespace {

constexpr std::array kTable{
    Command{"ports", "List the serial ports", setup::ports},
    Command{"doctor", "Find out why the PIN pad does not answer", setup::doctor},
    Command{"info", "Tell what the PIN pad is", setup::info},
    Command{"gix", "Ask for single items of information", setup::gix},
    Command{"display", "Show a message", setup::display},
    Command{"menu", "Show a menu and tell the choice", setup::menu},
    Command{"key", "Wait for a key", setup::key},
    Command{"event", "Wait for the first of several events", setup::event},
    Command{"watch", "Tell of keys and cards as they come", setup::watch},
    Command{"number", "Have a number typed", setup::number},
    Command{"card", "Read a card", setup::card},
    Command{"tracks", "Tell the tracks of the card that was read last", setup::tracks},
    Command{"emv", "Tell data objects of the chip card that was read last", setup::emv},
    Command{"remove", "Have the card removed", setup::remove},
    Command{"sale", "Run a complete sale, playing the acquirer", setup::sale},
    Command{"pin", "Have a PIN entered and enciphered", setup::pin},
    Command{"encipher", "Have data enciphered", setup::encipher},
    Command{"tables load", "Load acquirer tables from a file", setup::tables_load},
    Command{"tables version", "Tell the version of the acquirer tables", setup::tables_version},
    Command{"media put", "Load a media file", setup::media_put},
    Command{"media list", "List the media files", setup::media_list},
    Command{"media show", "Show a media file on the display", setup::media_show},
    Command{"media delete", "Delete media files", setup::media_delete},
    Command{"keys", "List the keys in the PIN pad", setup::keys},
    Command{"command", "Send any command by its name", setup::command},
    Command{"decode", "Put frames and packets into words", setup::decode},
    Command{"completion", "Print the completion script of a shell", setup::completion},
};

}  // namespace

std::span<const Command> commands() noexcept { return kTable; }

std::string_view group_summary(std::string_view group) noexcept {
    return group == "tables" ? "Acquirer tables" : "Media files of the display";
}

}  // namespace quorvel::cli
