// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/secret.h"
#include "wire/hex.h"

namespace quorvel::cli::setup {

namespace {

constexpr auto kMethods = [] {
    using enum DataMethod;
    return std::array{wire::Named{"mk-des-ecb", mk_wk_des_ecb},      wire::Named{"mk-des-cbc", mk_wk_des_cbc},
                      wire::Named{"mk-tdes-ecb", mk_wk_tdes_ecb},    wire::Named{"mk-tdes-cbc", mk_wk_tdes_cbc},
                      wire::Named{"dukpt-tdes-ecb", dukpt_dat3_ecb}, wire::Named{"dukpt-tdes-cbc", dukpt_dat3_cbc}};
}();

struct EncipherOptions {
    std::string data = "-";
    DataMethod method = DataMethod::dukpt_dat3_ecb;
    uint8_t key = 0;
    std::string workingKey;
    std::string iv;
};

wire::Bytes bytes_of(const std::string& digits, const char* what) {
    try {
        return wire::from_hex(digits);
    } catch (const std::invalid_argument&) {
        throw Error(Exit::kUsage, std::string("The ") + what + " is made of hexadecimal digits, two a byte.");
    }
}

Outcome run_encipher(Context& context, const EncipherOptions& options) {
    const wire::Bytes workingKey = bytes_of(read_secret(options.workingKey, "working key"), "working key");
    const wire::Bytes data = bytes_of(read_secret(options.data, "data"), "data");
    const wire::Bytes iv = bytes_of(options.iv, "initial vector");
    Ebx request{.data = data, .method = options.method, .key_index = options.key};
    if (!workingKey.empty()) { request.working_key = workingKey; }
    if (!iv.empty()) {
        auto& block = request.iv.emplace();
        if (iv.size() != block.size()) { throw Error(Exit::kUsage, "The initial vector has 8 bytes."); }
        std::ranges::copy(iv, block.begin());
    }
    Link link(context.settings, context.output);
    const EbxAnswer answer = link.ask(request);
    link.close();
    Group report;
    if (answer.data) { report.push_back({"Enciphered", wire::to_hex(answer.data->bytes())}); }
    if (answer.ksn) { report.push_back({"Key serial number", wire::to_hex(answer.ksn->bytes())}); }
    return {report};
}

}  // namespace

Run encipher(CommandLine& line) {
    const auto options = std::make_shared<EncipherOptions>();
    line.secret("--data", options->data, "Where the data are, in hexadecimal: a multiple of 8 bytes");
    line.choice<DataMethod>("--method", options->method, kMethods, "How they are enciphered");
    line.number("--key", options->key, "Index of the key in the PIN pad", "INDEX", 0, 99);
    line.secret("--working-key", options->workingKey,
                "With a master key: where the enciphered working key is, in hexadecimal");
    line.text("--iv", options->iv, "HEX", "Initial vector of the cbc methods, 8 bytes in hexadecimal");
    return [options](Context& context) { return run_encipher(context, *options); };
}

}  // namespace quorvel::cli::setup
