// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <string>

#include "cli/command.h"
#include "cli/link.h"

namespace quorvel::cli::setup {

namespace {

const std::map<std::string, AbecsCmdGpnMethod_E> kMethods{
    {"mk-des", ABECS_CMD_GPN_METHOD_MK_WK_DES},
    {"mk-tdes", ABECS_CMD_GPN_METHOD_MK_WK_TDES},
    {"dukpt-des", ABECS_CMD_GPN_METHOD_DUKPT_DES},
    {"dukpt-tdes", ABECS_CMD_GPN_METHOD_DUKPT_TDES},
};

struct PinOptions {
    AbecsCmdGpnMethod_E method = ABECS_CMD_GPN_METHOD_DUKPT_TDES;
    uint8_t key = 0;
    std::string workingKey;
    std::string pan;
    std::string message = "ENTER YOUR PIN";
    uint8_t fewest = 4;
    uint8_t most = 12;
};

// What is wrong is said without repeating it: it may be a key or a card number.
template <size_t size>
void copy(char (&to)[size], const std::string& from, const char* what) {
    if (from.size() >= size) {
        throw Error(Exit::kUsage, fmt::format("The {} is too long: at most {} characters.", what, size - 1));
    }
    std::memcpy(to, from.c_str(), from.size() + 1);
}

void require(bool holds, const char* text) {
    if (!holds) { throw Error(Exit::kUsage, text); }
}

AbecsCmdGpnCmdData request(const PinOptions& options) {
    const bool master = options.method <= ABECS_CMD_GPN_METHOD_MK_WK_TDES;
    const size_t keyDigits = options.method == ABECS_CMD_GPN_METHOD_MK_WK_DES ? 16 : 32;
    require(
        !master || options.workingKey.size() == keyDigits,
        "With a master key, --working-key gives the enciphered working key: 16 hexadecimal digits for mk-des, 32 for "
        "mk-tdes.");
    require(std::ranges::all_of(options.workingKey, [](unsigned char c) { return std::isxdigit(c) != 0; }),
            "The working key is made of hexadecimal digits.");
    require(std::ranges::all_of(options.pan, [](unsigned char c) { return std::isdigit(c) != 0; }),
            "The card number is made of digits.");
    AbecsCmdGpnCmdData data{};
    data.method = options.method;
    data.keyIdx = options.key;
    copy(data.wkEnc, options.workingKey, "working key");
    copy(data.pan, options.pan, "card number");
    data.entryCount = 1;
    data.entries[0].min = options.fewest;
    data.entries[0].max = options.most;
    copy(data.entries[0].msg, options.message, "message");
    return data;
}

Outcome run_pin(Context& context, const PinOptions& options) {
    const AbecsCmdGpnCmdData data = request(options);
    Link link(context.settings, context.output);
    context.output.notice("Enter the PIN on the PIN pad.");
    AbecsCmdGpnRspData answer{};
    const int32_t status =
        link.wait([&] { abecs_cmd_gpn(link.get(), &data); },
                  [&](char* notification) { return abecs_cmd_gpn_response(link.get(), &answer, notification); });
    if (status != ABECS_RSP_STAT_ST_OK) { throw StatusError("GPN", status); }
    link.close();
    Group report{{"PIN block", Secret{answer.pinBlk}}};
    if (options.method >= ABECS_CMD_GPN_METHOD_DUKPT_DES) { report.push_back({"Key serial number", answer.ksn}); }
    explicit_bzero(&answer, sizeof answer);
    return {report};
}

}  // namespace

Run pin(CLI::App& app) {
    const auto options = std::make_shared<PinOptions>();
    app.add_option("--method", options->method, "How it is enciphered: mk-des, mk-tdes, dukpt-des or dukpt-tdes")
        ->transform(CLI::CheckedTransformer(kMethods).description(""))
        ->type_name("METHOD")
        ->default_str("dukpt-tdes");
    add_number(app, "--key", options->key, "Index of the key in the PIN pad", "INDEX", 0, 99);
    app.add_option("--working-key", options->workingKey, "With a master key: the enciphered working key")
        ->type_name("HEX");
    app.add_option("--pan", options->pan, "The card number that goes into the PIN block")->type_name("DIGITS");
    app.add_option("--message", options->message, "What is shown meanwhile")->type_name("TEXT")->capture_default_str();
    add_number(app, "--min", options->fewest, "Fewest digits", "DIGITS", 4, 99);
    add_number(app, "--max", options->most, "Most digits", "DIGITS", 4, 99);
    return [options](Context& context) { return run_pin(context, *options); };
}

}  // namespace quorvel::cli::setup
