// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/command.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/link.h"
#include "cli/secret.h"
#include "cli/text.h"
#include "cli/words.h"
#include "wire/command.h"
#include "wire/hex.h"
#include "wire/param_id.h"

namespace quorvel::cli::setup {

namespace {

using wire::Content;
using wire::Privacy;
using wire::Type;

struct CommandOptions {
    std::string id;
    std::vector<std::string> values;
    uint8_t timeout = 60;
};

// NAME=VALUE.
struct Given {
    std::string name;
    std::string value;
    bool used = false;
};

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

Given split(const std::string& pair) {
    const size_t sign = pair.find('=');
    if (sign == std::string::npos || sign == 0) {
        throw Error(Exit::kUsage, "A value is given as NAME=VALUE.", "SPE_TIMEOUT=60, for instance.");
    }
    return {upper(pair.substr(0, sign)), pair.substr(sign + 1)};
}

[[noreturn]] void refuse(const std::string& name, std::string_view rule) {
    throw Error(Exit::kUsage, fmt::format("{} takes {}.", name, rule));
}

wire::Bytes bytes_of(const std::string& name, const std::string& digits) {
    try {
        return wire::from_hex(digits);
    } catch (const std::invalid_argument&) { refuse(name, "hexadecimal digits, two a byte"); }
}

// The most significant byte first.
wire::Bytes number_of(const std::string& name, const std::string& digits, size_t width) {
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    if (!whole || (width < sizeof number && number >> (8 * width) != 0)) {
        refuse(name, fmt::format("a number of {} bytes", width));
    }
    wire::Bytes bytes;
    for (size_t i = width; i-- > 0;) { bytes.push_back(static_cast<uint8_t>(number >> (8 * i))); }
    return bytes;
}

// A value as it travels. What may be a secret is read from where the argument says, as it must not be one itself.
wire::Bytes encoded(const std::string& name, const std::string& given, const Content& content) {
    if (content.privacy != Privacy::kShown && !is_source(given)) {
        throw Error(Exit::kUsage, fmt::format("{} may be a secret, and other programs can see it here.", name),
                    fmt::format("Give {0}=- for standard input, or {0}=@FILE.", name));
    }
    const std::string value = content.privacy != Privacy::kShown ? read_secret(given, name) : given;
    switch (content.type) {
        case Type::kNumber:
            return number_of(name, value, content.width);
        case Type::kDigits: {
            if (!std::ranges::all_of(value, [](unsigned char c) { return std::isdigit(c) != 0; })) {
                refuse(name, "decimal digits");
            }
            const size_t missing = content.width > value.size() ? content.width - value.size() : 0;
            return wire::to_bytes(std::string(missing, '0') + value);
        }
        case Type::kBytes:
        case Type::kObjects:
            return bytes_of(name, value);
        default:
            return wire::to_bytes(lines_to_pin_pad(value));
    }
}

// Parameters in the order in which they are given.
struct Params {
    std::vector<wire::Bytes> values;
    std::vector<Raw::Parameter> all;
};

Params params_of(const std::vector<Given>& given) {
    Params params;
    std::vector<uint16_t> ids;
    for (const Given& each : given) {
        const auto id = wire::find_param(each.name.starts_with("SPE_") ? each.name : "SPE_" + each.name);
        if (!id) { throw Error(Exit::kUsage, fmt::format("There is no parameter {}.", each.name)); }
        ids.push_back(*id);
        params.values.push_back(encoded(each.name, each.value, wire::param_content(*id)));
    }
    for (size_t i = 0; i < ids.size(); ++i) { params.all.push_back({ids[i], params.values[i]}); }
    return params;
}

// The fields of a command in their order, in its blocks; a field that counts the next one counts it here.
class Fields {
public:
    Fields(std::string_view id, std::vector<Given>& given) : id_(id), given_(given) {}

    std::vector<wire::Bytes> blocks() {
        const auto fields = wire::fields_of(id_, wire::Sender::kHost);
        for (size_t i = 0; i < fields.size(); ++i) {
            const bool counts = i + 1 < fields.size() && fields[i + 1].size == wire::Field::Size::kCounted;
            take(fields[i], counts ? &fields[i + 1] : nullptr);
        }
        take_rest();
        if (id_ == "GEN") { nest(); }
        return std::move(blocks_);
    }

private:
    Given* find(std::string_view name) {
        const auto found = std::ranges::find_if(
            given_, [&](const Given& each) { return each.name == name || std::string(id_) + "_" + each.name == name; });
        if (found == given_.end()) { return nullptr; }
        found->used = true;
        return &*found;
    }

    void take(const wire::Field& field, const wire::Field* counted) {
        using Size = wire::Field::Size;
        if (field.size == Size::kLength) {
            blocks_.emplace_back();
            return;
        }
        const std::string name(field.name);
        wire::Bytes value;
        if (const Given* given = find(field.name)) {
            value = encoded(name, given->value, field.content);
        } else if (counted != nullptr) {
            const Given* next = find(counted->name);
            const size_t size = next != nullptr ? encoded(name, next->value, counted->content).size() : 0;
            value = wire::to_bytes(fmt::format("{:0{}}", size / counted->content.width, field.content.width));
        } else if (field.size == Size::kFixed) {
            throw Error(Exit::kUsage, fmt::format("{} is missing.", name), fmt::format("Give {}=VALUE.", name));
        }
        if (field.size == Size::kFixed && value.size() < field.content.width) {
            value.resize(field.content.width, uint8_t{' '});
        }
        wire::append(blocks_.back(), value);
    }

    // The generic command's second block stands in its first.
    void nest() {
        wire::append(blocks_[0], wire::to_bytes(fmt::format("{:03}", blocks_[1].size())));
        wire::append(blocks_[0], blocks_[1]);
        blocks_.pop_back();
    }

    // What has no names, like the fields of most generic commands, and may be anything.
    void take_rest() {
        const Given* rest = find("REST");
        if (rest == nullptr) { return; }
        if (blocks_.empty()) { blocks_.emplace_back(); }
        wire::append(blocks_.back(), encoded("REST", rest->value, {Type::kText}));
    }

    std::string_view id_;
    std::vector<Given>& given_;
    std::vector<wire::Bytes> blocks_;
};

Group words_for(std::string_view id, const Answer<RawAnswer>& answer) {
    wire::Bytes packet = wire::to_bytes(fmt::format("{}{:03}", id, answer.status().code()));
    if (answer.ok()) { wire::append(packet, answer->data.bytes()); }
    Group report;
    for (Field& field : packet_words(wire::Sender::kPinPad, packet)) {
        if (field.label != "What") { report.push_back(std::move(field)); }
    }
    return report;
}

// A command with its values, made ready before anything is sent.
class Request {
public:
    Request(const std::string& name, const std::vector<std::string>& values) : id_(upper(name)) {
        constexpr std::array<std::string_view, 5> kNotAlone{"CLO", "CLX", "ERR", "NTM", "OPN"};
        const wire::Command* command = wire::find_command(id_);
        if (command == nullptr) { throw Error(Exit::kUsage, fmt::format("There is no command {}.", id_)); }
        if (std::ranges::find(kNotAlone, id_) != kNotAlone.end()) {
            throw Error(Exit::kUsage, fmt::format("{} belongs to the session, which is opened and closed here.", id_));
        }
        std::vector<Given> given;
        given.reserve(values.size());
        for (const std::string& pair : values) { given.push_back(split(pair)); }
        if (command->form == wire::Command::Form::kParams) {
            params_ = params_of(given);
            return;
        }
        blocks_ = Fields(id_, given).blocks();
        const auto unused = std::ranges::find(given, false, &Given::used);
        if (unused != given.end()) { throw Error(Exit::kUsage, fmt::format("{} has no field {}.", id_, unused->name)); }
    }

    [[nodiscard]] const std::string& id() const noexcept { return id_; }

    [[nodiscard]] Answer<RawAnswer> send(Link& link, std::chrono::seconds timeout) const {
        const std::vector<Bytes> blocks(blocks_.begin(), blocks_.end());
        return link.wait(Raw{.command = id_, .parameters = params_.all, .blocks = blocks, .waits = true},
                         timeout + kMargin, id_);
    }

private:
    std::string id_;
    Params params_;
    std::vector<wire::Bytes> blocks_;
};

// One a line, of standard input, for what belongs into one session; "#" begins a remark.
std::vector<Request> requests_of_input() {
    std::vector<Request> requests;
    for (std::string line; std::getline(std::cin, line);) {
        std::vector<std::string> words = split_words(line);
        if (words.empty() || words.front().starts_with('#')) { continue; }
        const std::string id = words.front();
        words.erase(words.begin());
        requests.emplace_back(id, words);
    }
    interrupt::check();
    return requests;
}

// Those behind one that is refused are not sent.
Outcome run_all(Context& context, const CommandOptions& options) {
    const std::vector<Request> requests = requests_of_input();
    Link link(context.settings, context.output);
    Table table{{"Command", "Status", "Contents"}};
    Exit exit = Exit::kOk;
    for (const Request& request : requests) {
        const auto answer = request.send(link, std::chrono::seconds(options.timeout));
        std::vector<Value> row{request.id(), "", ""};
        for (Field& field : words_for(request.id(), answer)) {
            row[field.label == "Status" ? 1 : 2] = std::move(field.value);
        }
        table.rows.push_back(std::move(row));
        exit = answer.ok() ? Exit::kOk : Exit::kRefused;
        if (!answer.ok()) { break; }
    }
    link.close();
    return {.report = {{"Answers", table}}, .exit = exit};
}

Outcome run_command(Context& context, const CommandOptions& options) {
    if (options.id == "-") { return run_all(context, options); }
    const Request request(options.id, options.values);
    Link link(context.settings, context.output);
    const auto answer = request.send(link, std::chrono::seconds(options.timeout));
    link.close();
    return {.report = words_for(request.id(), answer), .exit = answer.ok() ? Exit::kOk : Exit::kRefused};
}

}  // namespace

Run command(CommandLine& line) {
    const auto options = std::make_shared<CommandOptions>();
    line.text("id", options->id, "ID", "The command's three letters, or - for lines of commands on standard input")
        .required();
    line.text("value", options->values, "NAME=VALUE",
              "Its parameters or fields by their names: SPE_TIMEOUT=60, MSG=HELLO; what is no text or number in "
              "hexadecimal, what may be a secret from - or @FILE");
    line.number("--timeout", options->timeout, "Seconds to wait for the answer", "SECONDS", 1);
    return [options](Context& context) { return run_command(context, *options); };
}

}  // namespace quorvel::cli::setup
