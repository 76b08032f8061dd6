// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_COMMANDS_H
#define QUORVEL_TESTS_ABECS_CMD_COMMANDS_H

#include <algorithm>
#include <concepts>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "quorvel/quorvel.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

// What the tests of commands share. A case is one call, on a link of its own:
//
//     exchanges("TLI01299V1        ", "TLI020", ABECS_RSP_STAT_ST_TABVERDIF, abecs_cmd_tli, 99, "V1");
//     refuses("'tabVer' is NULL", abecs_cmd_tli, 99, nullptr);
//     sends("CKE003100", abecs_cmd_cke, true, false, icc, ctls);
//     polls("GCD000004" + "804D 0000"_hex, kOk, abecs_cmd_gcd_response, out, nullptr);
namespace support {

inline namespace literals {

// "040|99|00"_wire: a request or an answer, spelled field by field; the bars are left out.
inline std::string operator""_wire(const char* text, size_t length) {
    std::string all(text, length);
    all.erase(std::remove(all.begin(), all.end(), '|'), all.end());
    return all;
}

}  // namespace literals

inline std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) { all += text; }
    return all;
}

// Two halves that are keys of their own.
constexpr uint8_t kTestKey[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                  0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};

inline AbecsWkPan test_key(int32_t type) {
    AbecsWkPan key{static_cast<AbecsWkPanType_E>(type), {}};
    std::copy(std::begin(kTestKey), std::end(kTestKey), key.key);
    return key;
}

// A status, and codes, as tables write them.
constexpr int32_t kOk = ABECS_RSP_STAT_ST_OK;
constexpr int16_t kIndex = KOR_RESULT_INDEX_OUT_OF_BOUNDS;
constexpr int16_t kRuntime = KOR_RESULT_RUNTIME_ERROR;

// A field of a row, and the line where the row stands.
struct Text {
    template <std::convertible_to<std::string> Given>
    Text(Given given, Peer::Where at = {}) : text(std::move(given)), where(at) {}

    std::string text;
    Peer::Where where;
};

// What is refused: an argument, when there is no more than a text.
struct Refusal {
    template <std::convertible_to<std::string> Given>
    Refusal(const Given& detail, Peer::Where at = {}) : raised(error(kArgument, detail)), where(at) {}
    Refusal(Raised other, Peer::Where at = {}) : raised(std::move(other)), where(at) {}

    Raised raised;
    Peer::Where where;
};

// A status, or the error in its place.
struct Outcome {
    Outcome(int32_t given) : status(given) {}
    Outcome(Raised error) : raised(std::move(error)) {}
    bool operator==(const Outcome&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
        return out << "status " << outcome.status << ", " << outcome.raised;
    }

    int32_t status = kOk;
    Raised raised;
};

template <typename Call>
Outcome outcome_of(Call&& call) {
    int32_t status = kOk;
    const Raised raised = raised_by([&] { status = call(); });
    return raised == Raised{} ? Outcome(status) : Outcome(raised);
}

// Raises `refusal`, whether the raise returns or not, and sends nothing.
template <typename Result, typename... Parameters>
void refuses(const Refusal& refusal, Result (*function)(AbecsComm*, Parameters...),
             std::type_identity_t<Parameters>... arguments) {
    const testing::ScopedTrace trace(refusal.where.file, refusal.where.line, refusal.raised);
    Link link;
    expect_refused(refusal.raised, [&] { return function(link.comm, arguments...); });
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

// Sends just `request` and reads `response`.
template <typename... Parameters>
void exchanges(const Text& request, const std::string& response, const Outcome& expected,
               int32_t (*function)(AbecsComm*, Parameters...), std::type_identity_t<Parameters>... arguments) {
    const testing::ScopedTrace trace(request.where.file, request.where.line, response);
    Link link;
    link.peer.request(request.text, request.where).response(response, request.where);
    EXPECT_EQ(outcome_of([&] { return function(link.comm, arguments...); }), expected);
}

// Sends just `request` and leaves the link blocked.
template <typename Result, typename... Parameters>
void sends(const Text& request, Result (*function)(AbecsComm*, Parameters...),
           std::type_identity_t<Parameters>... arguments) {
    const testing::ScopedTrace trace(request.where.file, request.where.line, request.text);
    Link link;
    link.peer.request(request.text, request.where);
    EXPECT_NO_RAISE(function(link.comm, arguments...));
    EXPECT_EQ(std::string(abecs_comm_get_blk_wait_id(link.comm)).substr(0, 3), request.text.substr(0, 3));
}

// Gets the answer of the command that `link` is blocked for; after an error it is still blocked.
template <typename... Parameters>
void polls_on(Link& link, const Text& response, const Outcome& expected, int32_t (*function)(AbecsComm*, Parameters...),
              std::type_identity_t<Parameters>... arguments) {
    const testing::ScopedTrace trace(response.where.file, response.where.line, response.text);
    link.peer.response(response.text, response.where);
    EXPECT_EQ(outcome_of([&] { return function(link.comm, arguments...); }), expected);
    const std::string id = abecs_comm_get_blk_wait_id(link.comm);
    EXPECT_EQ(id.empty(), expected.raised == Raised{}) << id;
}

// The same of a link that is blocked for the command that `response` answers.
template <typename... Parameters>
void polls(const Text& response, const Outcome& expected, int32_t (*function)(AbecsComm*, Parameters...),
           std::type_identity_t<Parameters>... arguments) {
    Link link;
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, response.text.substr(0, 3).c_str()));
    polls_on(link, response, expected, function, arguments...);
}

// A command's answer in parameters, as long as this lives.
class ParamMap {
public:
    using Items = std::map<int, std::string>;

    ParamMap() = default;
    ~ParamMap() { kor_map_delete(&map_); }
    ParamMap(const ParamMap&) = delete;
    ParamMap& operator=(const ParamMap&) = delete;

    [[nodiscard]] AbecsRspParamMap* get() const { return map_; }

    void put(int id) const {
        const AbecsRspParamValue none{};
        abecs_rsp_param_map_put(map_, static_cast<uint16_t>(id), &none, false);
    }

    [[nodiscard]] Items items() const {
        Items all;
        AbecsRspParamMapIt it{};
        for (auto* at = abecs_rsp_param_map_begin(map_, &it); at != nullptr; at = abecs_rsp_param_map_next(at)) {
            all[at->id] = std::string(at->value.data, at->value.data + at->value.size);
        }
        return all;
    }

private:
    AbecsRspParamMap* map_ = abecs_rsp_param_map_new();
};

// A command whose request is put together in a builder. It is answered into the map, or polled.
template <typename Builder, void (*kDelete)(Builder**), auto kSend>
class Built : public testing::Test {
protected:
    ~Built() override { kDelete(&builder_); }

    template <typename... Parameters>
    void refused(const Refusal& refusal, void (*setter)(Builder*, Parameters...),
                 std::type_identity_t<Parameters>... arguments) {
        const testing::ScopedTrace trace(refusal.where.file, refusal.where.line, refusal.raised);
        expect_refused(refusal.raised, [&] { setter(builder_, arguments...); });
    }

    template <typename... Parameters>
    void set(void (*setter)(Builder*, Parameters...), std::type_identity_t<Parameters>... arguments) {
        EXPECT_NO_RAISE(setter(builder_, arguments...));
    }

    // Sent twice, because sending leaves the builder as it was.
    void expect_sent(const Text& request) {
        for (int i = 0; i < 2; ++i) {
            if constexpr (kIsPolled) {
                sends(request, kSend, builder_);
            } else {
                const std::string response = request.text.substr(0, 3) + "042";
                exchanges(request, response, ABECS_RSP_STAT_ST_ERRKEY, kSend, builder_, map_.get());
            }
        }
    }

    // So many of the map's items are left, of one.
    void expect_incomplete(const Refusal& refusal, size_t left = 1) {
        if constexpr (kIsPolled) {
            refuses(refusal, kSend, builder_);
        } else {
            map_.put(1);
            refuses(refusal, kSend, builder_, map_.get());
            EXPECT_EQ(map_.items().size(), left);
        }
    }

    static constexpr bool kIsPolled = std::is_invocable_v<decltype(kSend), AbecsComm*, Builder*>;
    Builder* builder_ = nullptr;
    ParamMap map_;
};

}  // namespace support

#endif
