// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SECRETS_TABLE_H
#define QUORVEL_TESTS_SECRETS_TABLE_H

#include <cstring>
#include <memory>
#include <ostream>
#include <tomcrypt.h>
#include <tuple>

#include "tests/secrets/watch.h"
#include "tests/support/raised.h"

namespace secrets {

// One way out of one call that has a secret in its hands. What is wiped there is spelled; a new wipe shows in the rows
// of all that run through it.
struct Row {
    using Call = std::function<void()>;
    using Texts = std::vector<std::string>;

    std::string name;
    std::vector<Secret> secrets;
    // Makes what the call needs anew, and the call. What it owns lives until all has been looked at.
    std::function<Call()> prepare;
    Texts wiped;
    support::Raised raised;
    // What is meant to stay.
    Texts left;
};

inline Row row(const std::string& name, const std::vector<Secret>& secrets, const std::function<Row::Call()>& prepare,
               const Row::Texts& wiped, const support::Raised& raised = {}, const Row::Texts& left = {}) {
    return {name, secrets, prepare, wiped, raised, left};
}

inline void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

void expect(const Row& row);

using Table = std::vector<Row>;

class Secrets : public testing::TestWithParam<Row> {};

inline std::string name_of(const testing::TestParamInfo<Row>& test) { return test.param.name; }

inline constexpr std::string_view kNumber = "5412751234567894";
inline constexpr std::string_view kKey = "0F1E2D3C4B5A69788796A5B4C3D2E1F0";

const Secret& number();
const Secret& key();

// What the digits name. Not for the program's variables: a short text stands inside of its std::string.
std::string from_digits(std::string_view digits);

template <size_t Size>
void copy_digits(std::string_view digits, uint8_t (&to)[Size]) {
    std::memcpy(to, from_digits(digits).data(), Size);
}

inline ltc_cipher_descriptor& descriptor(const char* cipher) { return cipher_descriptor[find_cipher(cipher)]; }

// Stands between the library and a cipher as long as it lives, to make a step fail once it has done its work. One at a
// time.
class FailingCipher {
public:
    FailingCipher(const char* cipher, int setup, int block);
    ~FailingCipher() { descriptor_ = saved_; }
    FailingCipher(FailingCipher&&) = delete;

private:
    ltc_cipher_descriptor& descriptor_;
    ltc_cipher_descriptor saved_;
};

inline const support::Raised kFailed = support::error(KOR_RESULT_CRYPT_ERROR, "Invalid key size.");

// A call on a subject of its own, to which something may have been done before; keys are no good for the failing
// cipher, where one is named.
template <typename Subject>
struct On {
    using Step = void (*)(Subject&);

    Row::Call operator()() const {
        const auto subject = std::make_shared<Subject>();
        if (before) { before(*subject); }
        const auto broken =
            failing != nullptr ? std::make_shared<FailingCipher>(failing, CRYPT_INVALID_KEYSIZE, CRYPT_OK) : nullptr;
        return [=, last = call] { last(*subject), static_cast<void>(broken); };
    }

    Step call;
    std::function<void(Subject&)> before = {};
    const char* failing = nullptr;
};

}  // namespace secrets

#endif
