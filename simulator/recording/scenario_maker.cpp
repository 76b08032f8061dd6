// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/recording/scenario_maker.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/commands/command.h"
#include "wire/packet.h"
#include "wire/words.h"

namespace quorvel::sim {

namespace {

using nlohmann::json;
using Mark = Recorded::Mark;

// What is expected of a command besides that it comes.
constexpr std::array<std::string_view, 8> kExpected{"SPE_AMOUNT", "SPE_CASHBACK", "SPE_TRNCURR",  "SPE_TRNTYPE",
                                                    "GCR_AMOUNT", "GOC_AMOUNT",   "GOC_CASHBACK", "DSP_MSG"};
constexpr std::string_view kOtherDigits = "12345678901234567890123456789012";

struct Told {
    std::string_view key;
    // Of a parameter, and where it stands among what GIN tells.
    std::string_view param;
    size_t at;
    size_t width;
};
constexpr std::array kTold{
    Told{"manufacturer", "PP_MNNAME", 0, 20},
    Told{"model", "PP_MODEL", 20, 19},
    Told{"os_version", "PP_SOVER", 40, 20},
    Told{"spec_version", "PP_SPECVER", 60, 4},
    Told{"manufacturer_version", "PP_MANVERS", 64, 16},
    Told{"serial_number", "PP_SERNUM", 80, 20},
    Told{"part_number", "PP_PARTNBR", 0, 0},
};
constexpr size_t kWholeGin = 100;

// As TOML has it between quotation marks, too.
std::string toml_text(std::string_view text) { return json(text).dump(-1, ' ', true, json::error_handler_t::replace); }

std::string text_of(ByteView bytes) {
    std::string text(bytes.begin(), bytes.end());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

const Item* item_of(const Packet& packet, std::string_view name) {
    const auto found = std::ranges::find(packet.items, name, &Item::name);
    return found != packet.items.end() ? &*found : nullptr;
}

std::string value_of(const Packet& packet, std::string_view name) {
    const Item* const item = item_of(packet, name);
    return item != nullptr ? text_of(item->value) : "";
}

// { fault = "delay", ms = 1500 } of the request that injects it.
std::string inline_table(const json& request) {
    std::string members = "fault = " + request.at("fault").dump();
    for (const auto& [key, value] : request.items()) {
        if (key != "fault") { members += fmt::format(", {} = {}", key, value.dump()); }
    }
    return members;
}

// What happened, one after the other, and what is to be written of it.
class Maker {
public:
    void take(const Recorded& recorded) {
        switch (recorded.mark) {
            case Mark::kHost:
                return hear(recorded);
            case Mark::kPinPad:
                return answer(recorded);
            case Mark::kFinding:
                findings_.insert(recorded.text);
                return;
            case Mark::kDeed:
                return act(recorded);
        }
    }

    void finish() { end_command(std::nullopt); }

    [[nodiscard]] std::string text(const Recording& recording, const std::string& title) const {
        std::string text = fmt::format("title = {}\n", toml_text(title));
        text += "description = \"Made of a recording: leave out what does not matter.\"\n";
        if (visits_ > 1) { text += "ends = \"done\"\n"; }
        text += "\nscript = [\n";
        for (const std::string& step : steps_) { text += fmt::format("    {{ {} }},\n", step); }
        return text + "]\n" + time(recording) + device() + tables() + expectations() + expected_findings();
    }

private:
    struct Command {
        Packet request;
        bool waited = false;
    };
    struct Expected {
        std::string keys;
        unsigned times;
    };

    void hear(const Recorded& recorded) {
        if (is_frame(recorded)) {
            end_command(std::nullopt);
            command_.emplace(Command{take_apart(Sender::kHost, recorded.bytes)});
            ++since_[command_->request.id];
            loaded_ |= command_->request.id == "TLI";
        }
        if (recorded.kind == "can") { end_command(std::nullopt); }
    }

    void answer(const Recorded& recorded) {
        if (!is_frame(recorded)) { return; }
        const Packet response = take_apart(Sender::kPinPad, recorded.bytes);
        if (response.id == "NTM") { return; }
        learn(response);
        end_command(std::exchange(struck_, std::nullopt).value_or(response.status.value_or(0)));
    }

    void end_command(std::optional<int> status) {
        const auto command = std::exchange(command_, std::nullopt);
        type(false);
        if (!command || find_command(command->request.id) == nullptr) { return; }
        const std::string_view name = status ? status_name(*status) : "none";
        std::string keys = fmt::format("command = {}\nstatus = {}\n", toml_text(command->request.id),
                                       name.empty() ? fmt::format("{}", *status) : toml_text(name));
        std::string with;
        for (const Item& item : command->request.items) {
            if (std::ranges::find(kExpected, item.name) == kExpected.end()) { continue; }
            with += fmt::format("{}{}", with.empty() ? "" : ", ", toml_text(words_for(item)));
        }
        if (!with.empty()) { keys += fmt::format("with = [{}]\n", with); }
        const bool again = !expected_.empty() && expected_.back().keys == keys;
        if (again) { ++expected_.back().times; }
        if (!again) { expected_.push_back({std::move(keys), 1}); }
    }

    void act(const Recorded& recorded) {
        if (recorded.kind == "left") {
            ++visits_;
        } else if (recorded.kind == "fault") {
            strike(recorded);
        } else {
            begin_wait();
            perform(recorded);
        }
    }

    void begin_wait() {
        if (!command_ || command_->waited) { return; }
        command_->waited = true;
        since_ = {{command_->request.id, 1}};
        add(fmt::format("wait = {}", toml_text(command_->request.id)));
    }

    void perform(const Recorded& recorded) {
        const bool press = recorded.kind == "press";
        if (press && (recorded.text == "digit" || recorded.text.size() == 1)) {
            digits_ += recorded.text == "digit" ? '?' : recorded.text.front();
            return;
        }
        const bool enter = press && recorded.text == "enter" && !digits_.empty();
        type(enter);
        if (enter) { return; }
        if (recorded.kind == "insert") { card_ = recorded.text; }
        add(fmt::format("{} = {}", recorded.kind, recorded.kind == "remove" ? "true" : toml_text(recorded.text)));
    }

    // The digits that were pressed up to now, with enter behind them or not.
    void type(bool entered) {
        const std::string digits = shown_digits(std::exchange(digits_, {}));
        if (entered) { return add(fmt::format("type = {}", toml_text(digits))); }
        for (const char digit : digits) { add(fmt::format("press = \"{}\"", digit)); }
    }

    // Withheld ones are the PIN of the card if it has as many.
    [[nodiscard]] std::string shown_digits(std::string digits) const {
        if (digits.find('?') == std::string::npos) { return digits; }
        const std::vector<std::string> known = Cards::standard().names();
        const bool has = std::ranges::find(known, card_) != known.end() && Cards::standard().at(card_).chip;
        const std::string pin = has ? Cards::standard().at(card_).chip->pin : "";
        return pin.size() == digits.size() ? pin : std::string(kOtherDigits.substr(0, digits.size()));
    }

    // One that has had a command refused before it was heard leaves no command behind.
    void strike(const Recorded& recorded) {
        json request = json::parse(recorded.text, nullptr, false);
        if (!request.is_object() || !request.contains("fault")) {
            throw std::runtime_error(fmt::format("line {}: this is no fault", recorded.line));
        }
        if (request["fault"] == "nak") { command_.reset(); }
        const bool told = request["fault"] == "status" && !request.value("before", false);
        if (told) { struck_ = request.value("status", 0); }
        const unsigned occasions = since_[request.value("command", "")];
        if (occasions > 1) { request["every"] = occasions; }
        add(inline_table(request));
    }

    void add(std::string step) { steps_.push_back(std::move(step)); }

    // What the PIN pad has told of itself and of its tables.
    void learn(const Packet& response) {
        if (response.status != 0 || !command_) { return; }
        for (const Told& told : kTold) {
            if (const std::string value = value_of(response, told.param); !value.empty()) { told_[told.key] = value; }
        }
        const std::string gin = value_of(response, "GIN_DATA");
        if (value_of(command_->request, "GIN_ACQIDX") == "00" && gin.size() > kWholeGin - kTold[5].width) {
            for (const Told& told : kTold) {
                if (told.width != 0) { told_[told.key] = text_of(to_bytes(gin.substr(told.at, told.width))); }
            }
        }
        if (const std::string version = value_of(response, "GTS_TABVER"); !version.empty() && !loaded_) {
            versions_.try_emplace(value_of(command_->request, "GTS_ACQIDX"), version);
        }
        learn_records(response);
    }

    void learn_records(const Packet& response) {
        static constexpr size_t kWidth = 6;
        const std::string info = value_of(response, "PP_AIDTABINFO");
        for (size_t at = 0; at + kWidth <= info.size(); at += kWidth) {
            records_.emplace(info.substr(at, 2), info.substr(at + 2, 2));
        }
        const std::string acquirer = value_of(response, "GCR_ACQIDX");
        if (!acquirer.empty() && acquirer != "00") { records_.emplace(acquirer, value_of(response, "GCR_RECIDX")); }
    }

    [[nodiscard]] static std::string time(const Recording& recording) {
        const auto second = recording.settings.find("second");
        const bool other = second != recording.settings.end() && second->second != "1000";
        return other ? fmt::format("\n[time]\nsecond = {}\n", second->second) : "";
    }

    [[nodiscard]] std::string device() const {
        std::string text = told_.empty() ? "" : "\n[device]\n";
        for (const auto& [key, value] : told_) { text += fmt::format("{} = {}\n", key, toml_text(value)); }
        return text;
    }

    // A till that loads tables brings the records itself.
    [[nodiscard]] std::string tables() const {
        std::string list;
        if (!loaded_) {
            for (const auto& [acquirer, index] : records_) {
                list += fmt::format("{}{{ acquirer = {}, index = {} }}", list.empty() ? "" : ", ",
                                    std::stoi("0" + acquirer), toml_text(index));
            }
        }
        std::map<std::string, std::string> versions = versions_;
        if (versions.empty() && !list.empty()) { versions["00"] = "RECORDED"; }
        std::string text;
        for (const auto& [acquirer, version] : versions) {
            text += fmt::format("\n[[tables]]\nacquirer = {}\nversion = {}\nrecords = [{}]\n",
                                std::stoi("0" + acquirer), toml_text(version), list);
            list.clear();
        }
        return text;
    }

    [[nodiscard]] std::string expectations() const {
        std::string text;
        for (const auto& [keys, times] : expected_) {
            text += "\n[[expect]]\n" + keys + (times > 1 ? fmt::format("times = {}\n", times) : "");
        }
        return text;
    }

    [[nodiscard]] std::string expected_findings() const {
        std::string text;
        for (const std::string& finding : findings_) {
            text += fmt::format("\n[[finding]]\ntext = {}\n", toml_text(finding));
        }
        return text;
    }

    std::optional<Command> command_;
    // What a fault has made of its status.
    std::optional<int> struck_;
    std::string digits_;
    std::string card_;
    // How often each command came since the script waited last.
    std::map<std::string, unsigned> since_;
    unsigned visits_ = 0;
    bool loaded_ = false;
    std::vector<std::string> steps_;
    std::vector<Expected> expected_;
    std::set<std::string> findings_;
    std::map<std::string_view, std::string> told_;
    // Of acquirers, and their records.
    std::map<std::string, std::string> versions_;
    std::set<std::pair<std::string, std::string>> records_;
};

}  // namespace

std::string scenario_from(const Recording& recording, const std::string& title) {
    Maker maker;
    for (const Recorded& each : recording.events) { maker.take(each); }
    maker.finish();
    return maker.text(recording, title);
}

}  // namespace quorvel::sim
