// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_ANSWER_HPP
#define QUORVEL_HPP_ANSWER_HPP

#include "quorvel/hpp/values.hpp"

/// @file
/// What commands answer.

namespace quorvel {

/// What a command answers that has nothing to tell but its status.
struct Nothing {};

/// The parameters of an answer by their ids (AbecsRspDatId_E). Copies share them; they are wiped with the last one.
class Items {
public:
    /// None.
    Items() : map_(detail::call([] { return abecs_rsp_param_map_new(); }), [](KorMap* map) { kor_map_delete(&map); }) {}

    /// Copied where others are moved, so that none is without its map.
    Items(const Items&) = default;
    /// The same.
    Items& operator=(const Items&) = default;
    ~Items() = default;

    /// Whether the answer has the parameter.
    [[nodiscard]] bool has(int32_t id) const noexcept { return bytes(id).has_value(); }
    /// The value, which lives as long as these items; nothing when the answer does not have it.
    [[nodiscard]] std::optional<Bytes> bytes(int32_t id) const noexcept {
        if (id < 0 || id > UINT16_MAX) { return std::nullopt; }
        const AbecsRspParamValue* value = abecs_rsp_param_map_get(map_.get(), static_cast<uint16_t>(id));
        if (value == nullptr) { return std::nullopt; }
        return Bytes(value->data, value->size);
    }
    /// The same as a text, without trailing blanks.
    [[nodiscard]] std::optional<std::string_view> text(int32_t id) const noexcept {
        const auto value = bytes(id);
        if (!value) { return std::nullopt; }
        const std::string_view all = detail::text_of(*value);
        return all.substr(0, all.find_last_not_of(' ') + 1);
    }
    /// The same as a copy that is wiped.
    [[nodiscard]] std::optional<Secret> secret(int32_t id) const { return copied(text(id)); }
    /// The same of bytes as they are.
    [[nodiscard]] std::optional<Secret> secret_bytes(int32_t id) const { return copied(bytes(id)); }
    /// The same of 1 to 18 decimal digits; nothing when it is something else.
    [[nodiscard]] std::optional<uint64_t> number(int32_t id) const noexcept {
        const auto digits = text(id);
        if (!digits || digits->empty() || digits->size() > 18) { return std::nullopt; }
        uint64_t value = 0;
        for (const char c : *digits) {
            if (c < '0' || c > '9') { return std::nullopt; }
            value = value * 10 + static_cast<uint64_t>(c - '0');
        }
        return value;
    }
    /// The ids of all that there are, in rising order.
    [[nodiscard]] std::vector<int32_t> ids() const {
        std::vector<int32_t> all;
        AbecsRspParamMapIt at{};
        for (bool more = abecs_rsp_param_map_begin(map_.get(), &at) != nullptr; more;
             more = abecs_rsp_param_map_next(&at) != nullptr) {
            all.push_back(at.id);
        }
        std::sort(all.begin(), all.end());
        return all;
    }
    /// For the C interface, to be read or filled; nobody may delete it.
    [[nodiscard]] AbecsRspParamMap* native() const noexcept { return map_.get(); }

private:
    template <typename Value>
    static std::optional<Secret> copied(const std::optional<Value>& value) {
        std::optional<Secret> copy;
        if (value) { copy.emplace(*value); }
        return copy;
    }

    std::shared_ptr<AbecsRspParamMap> map_;
};

/// A status and, when that is OK, what came with it.
template <typename Value>
class [[nodiscard]] Answer {
public:
    /// The type of the value.
    using value_type = Value;

    /// One without a value.
    Answer(std::string_view command, Status status) noexcept : command_(command), status_(status) {}
    /// One with a value.
    Answer(std::string_view command, Status status, Value value)
        : command_(command), status_(status), value_(std::move(value)) {}

    /// Whether there is a value: the status is OK or, of Gky, tells a key.
    [[nodiscard]] bool ok() const noexcept { return value_.has_value(); }
    /// The PIN pad's status.
    [[nodiscard]] Status status() const noexcept { return status_; }
    /// The id of the command that has been answered, "GCX" for instance.
    [[nodiscard]] std::string_view command() const noexcept { return command_; }

    /// The value; throws Refused when there is none.
    Value& value() & { return *checked(); }
    /// The same.
    const Value& value() const& { return *checked(); }
    /// The same.
    Value&& value() && { return std::move(*checked()); }
    /// A member of the value; throws as value() does.
    Value* operator->() { return checked(); }
    /// The same.
    const Value* operator->() const { return checked(); }
    /// The value; throws as value() does.
    Value& operator*() & { return *checked(); }
    /// The same.
    const Value& operator*() const& { return *checked(); }
    /// Throws Refused when the status is not OK, for those who have no use for it.
    Value require() && { return std::move(*checked()); }
    /// The same.
    const Value& require() const& { return *checked(); }

private:
    const Value* checked() const {
        if (!value_) { throw Refused(command_, status_); }
        return &*value_;
    }
    Value* checked() { return const_cast<Value*>(std::as_const(*this).checked()); }

    std::string command_;
    Status status_;
    std::optional<Value> value_;
};

}  // namespace quorvel

#endif
