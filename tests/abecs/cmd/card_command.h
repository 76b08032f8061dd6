// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_CARD_COMMAND_H
#define QUORVEL_TESTS_ABECS_CMD_CARD_COMMAND_H

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <type_traits>

#include "tests/abecs/cmd/param_map.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"

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

// `send` sends just this request; `poll` then waits for the answer of this command and no other.
template <typename Send, typename Out>
void expect_exchange(const std::string& request, Send send, int32_t (*poll)(AbecsComm*, Out*, char*), Out* out,
                     const std::string& outName, Peer::Where where) {
    const std::string id = request.substr(0, 3);
    Link link;
    char text[33] = "";
    EXPECT_REFUSED(2, "'" + outName + "' is NULL", poll(link.comm, nullptr, nullptr));
    EXPECT_REFUSED(3, id + " was not sent yet", poll(link.comm, out, text));
    link.peer.request(request, where).response("NTM000004WAIT").response("XYZ000").response("ERR013");
    EXPECT_NO_RAISE(send(link.comm));
    EXPECT_EQ(abecs_comm_get_blk_wait_id(link.comm), id);
    EXPECT_EQ(link.call(poll, where)(out, text), -2);
    EXPECT_STREQ(text, "WAIT");
    EXPECT_RAISES(12, "(" + id + ") Invalid RSP_ID: XYZ)", poll(link.comm, out, text));
    EXPECT_EQ(link.call(poll, where)(out, text), 13);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

// A command whose request is put together in a builder.
template <typename Builder, void (*kDelete)(Builder**)>
class Built : public testing::Test {
protected:
    ~Built() override { kDelete(&builder_); }

    template <typename... Parameters>
    void refused(KorResult_E code, const std::string& detail, void (*setter)(Builder*, Parameters...),
                 std::type_identity_t<Parameters>... arguments) {
        EXPECT_REFUSED(code, detail, setter(builder_, arguments...));
    }

    template <typename... Parameters>
    void set(void (*setter)(Builder*, Parameters...), std::type_identity_t<Parameters>... arguments) {
        EXPECT_NO_RAISE(setter(builder_, arguments...));
    }

    Builder* builder_ = nullptr;
    ParamMap map_;
};

// And that waits for the cardholder.
template <typename Builder, void (*kDelete)(Builder**), void (*kSend)(AbecsComm*, Builder*),
          int32_t (*kPoll)(AbecsComm*, AbecsRspParamMap*, char*)>
class BuiltCommand : public Built<Builder, kDelete> {
protected:
    // Sent twice, because sending leaves the builder as it was.
    void expect_sent(const std::string& request, Peer::Where where = {}) {
        Link link;
        EXPECT_REFUSED(2, "'builder' is NULL", kSend(link.comm, nullptr));
        const auto send = [&](AbecsComm* pinpad) { kSend(pinpad, this->builder_); };
        for (int i = 0; i < 2; ++i) { expect_exchange(request, send, kPoll, this->map_.get(), "out", where); }
    }
};

}  // namespace support

#endif
