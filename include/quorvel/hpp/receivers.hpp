// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_RECEIVERS_HPP
#define QUORVEL_HPP_RECEIVERS_HPP

#include "quorvel/hpp/wait.hpp"

/// @file
/// What the requests are made of.

namespace quorvel::detail {

// The answer of a command that has nothing to tell.
inline Answer<Nothing> answered(std::string_view id, int32_t status) {
    return status == ABECS_RSP_STAT_ST_OK ? Answer<Nothing>(id, Status(status), {})
                                          : Answer<Nothing>(id, Status(status));
}
// And of one that has: `make` makes it, if the status is OK.
template <typename Make>
auto answered(std::string_view id, int32_t status, const Make& make) -> Answer<decltype(make())> {
    if (status == ABECS_RSP_STAT_ST_OK) { return {id, Status(status), make()}; }
    return {id, Status(status)};
}

// Reads into a record of the C interface.
template <typename Record, int32_t (*kPoll)(AbecsComm*, Record*, char*), auto kValue>
class RecordReceiver final : public Receiver<decltype(kValue(Record{}))> {
public:
    int32_t poll(AbecsComm* link, char* notification) override { return kPoll(link, &held_.record, notification); }
    decltype(kValue(Record{})) value(int32_t) override { return kValue(held_.record); }

private:
    Wiped<Record> held_;
};

// Into parameters.
template <int32_t (*kPoll)(AbecsComm*, AbecsRspParamMap*, char*), auto kValue>
class ItemsReceiver final : public Receiver<decltype(kValue(Items{}))> {
public:
    int32_t poll(AbecsComm* link, char* notification) override { return kPoll(link, items_.native(), notification); }
    decltype(kValue(Items{})) value(int32_t) override { return kValue(items_); }

private:
    Items items_;
};

// Into a text of so many characters.
template <size_t room, int32_t (*kPoll)(AbecsComm*, char*, char*), auto kValue>
class TextReceiver final : public Receiver<decltype(kValue(std::string_view{}))> {
public:
    int32_t poll(AbecsComm* link, char* notification) override {
        return kPoll(link, held_.record.data(), notification);
    }
    decltype(kValue(std::string_view{})) value(int32_t) override { return kValue(held_.record.data()); }

private:
    Wiped<std::array<char, room>> held_;
};

// Nothing at all.
template <int32_t (*kPoll)(AbecsComm*, char*)>
class StatusReceiver final : public Receiver<Nothing> {
public:
    int32_t poll(AbecsComm* link, char* notification) override { return kPoll(link, notification); }
    Nothing value(int32_t) override { return {}; }
};

// Sends a request that waits. What reads its answer is made first, so that nothing is missing once it is sent.
template <typename Reader, typename Send>
auto started(Line& line, Send send) {
    auto reader = std::make_unique<Reader>();
    line.exchange([&] { send(line.get()); });
    return reader;
}

// Texts of hexadecimal digits come without the leading pairs "30" that they may have had: puts them back.
inline Secret refilled(std::string_view digits, size_t size) {
    const size_t missing = digits.size() < size ? (size - digits.size()) / 2 * 2 : 0;
    return Secret::filled(missing + digits.size(), [&](std::span<uint8_t> all) {
        for (size_t i = 0; i < missing; ++i) { all[i] = i % 2 == 0 ? '3' : '0'; }
        std::copy(digits.begin(), digits.end(), all.begin() + static_cast<std::ptrdiff_t>(missing));
    });
}
// The same as bytes.
inline Secret refilled_bytes(std::string_view digits, size_t bytes) {
    return from_hex(refilled(digits, 2 * bytes).reveal());
}

// EMV data for a builder, wiped at the end.
struct EmvData : Wiped<AbecsEmvData> {
    explicit EmvData(Bytes bytes) {
        if (bytes.size() > sizeof record.data) { refuse_argument("more than 512 bytes of EMV data"); }
        std::copy(bytes.begin(), bytes.end(), record.data);
        record.szData = bytes.size();
    }
};

}  // namespace quorvel::detail

#endif
