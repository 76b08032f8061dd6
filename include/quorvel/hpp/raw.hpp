// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_RAW_HPP
#define QUORVEL_HPP_RAW_HPP

#include "quorvel/hpp/receivers.hpp"

/// @file
/// Requests of any kind, by their ids.

namespace quorvel {

/// The answer to a Raw request.
struct RawAnswer {
    Secret data;  ///< what stands behind the status, block lengths included

    /// Its blocks, each behind three digits of length. Throws Error, protocol, when it is made otherwise.
    [[nodiscard]] std::vector<Secret> blocks() const {
        std::vector<Secret> all;
        for (std::string_view rest = data.reveal(); !rest.empty();) {
            size_t size = 0;
            for (size_t i = 0; i < 3; ++i) {
                if (i >= rest.size() || rest[i] < '0' || rest[i] > '9') { malformed(); }
                size = size * 10 + static_cast<size_t>(rest[i] - '0');
            }
            if (rest.size() < 3 + size) { malformed(); }
            all.emplace_back(rest.substr(3, size));
            rest.remove_prefix(3 + size);
        }
        return all;
    }
    /// The parameters in its blocks: ids, each with the bytes of its value. Throws as blocks() does.
    [[nodiscard]] std::vector<std::pair<uint16_t, Secret>> parameters() const {
        std::vector<std::pair<uint16_t, Secret>> all;
        for (const Secret& block : blocks()) {
            for (Bytes rest = block.bytes(); !rest.empty();) {
                if (rest.size() < 4) { malformed(); }
                const auto pair = [&](size_t at) { return static_cast<uint16_t>(rest[at] << 8 | rest[at + 1]); };
                const size_t size = pair(2);
                if (rest.size() < 4 + size) { malformed(); }
                all.emplace_back(pair(0), Secret(rest.subspan(4, size)));
                rest = rest.subspan(4 + size);
            }
        }
        return all;
    }

private:
    [[noreturn]] static void malformed() {
        throw Error(ErrorCode::protocol, "[KOR_RESULT_PROTOCOL_ERROR] the answer has no such form");
    }
};

namespace detail {

using Packet = Owned<abecs_packet_delete>;

// A parameter or block as it travels.
inline void append(AbecsPacket* packet, std::string_view id, std::span<const Bytes> blocks) {
    const CText name(id);
    call([&] {
        abecs_packet_write_field_a(packet, name.get(), 3, false);
        for (const Bytes block : blocks) {
            abecs_packet_write_field_n(packet, block.size(), 3);
            abecs_packet_write_field_b(packet, block.data(), block.size());
        }
    });
}

// Reads the answer to `id` and its status; -1 and -2 as the _response functions do.
class RawReader final : public Receiver<RawAnswer> {
public:
    RawReader() : packet_(call([] { return abecs_packet_new(); })) {}
    void expect(std::string_view id) noexcept { id.copy(id_, sizeof id_ - 1); }

    int32_t poll(AbecsComm* link, char* notification) override {
        AbecsPacket* const packet = packet_.get();
        abecs_comm_read_packet(link, packet);
        char id[4]{};
        abecs_packet_read_field_a(packet, id, sizeof id, 3, false);
        if (std::strcmp(id, "NTM") == 0) {
            abecs_packet_read_notification(packet, notification);
            return ABECS_RSP_STAT_ST_NOTIFICATION;
        }
        if (std::strcmp(id, id_) != 0) {
            kor_exception_throw(KOR_RESULT_PROTOCOL_ERROR, "[KOR_RESULT_PROTOCOL_ERROR] the answer of another command");
        }
        const int32_t status = abecs_packet_read_rsp_stat(packet);
        abecs_comm_release(link);
        return status;
    }
    RawAnswer value(int32_t) override {
        AbecsPacket* const packet = packet_.get();
        Wiped<std::array<uint8_t, 2048>> held;
        uint8_t* const bytes = held.record.data();
        const size_t size = call([&] {
            const size_t left = abecs_packet_available_read(packet);
            return abecs_packet_read_field_b(packet, bytes, held.record.size(), left);
        });
        return {Secret(Bytes(bytes, size))};
    }

private:
    Packet packet_;
    char id_[4]{};
};

}  // namespace detail

/// Any request, by its id of three characters: with blocks as they stand, or with parameters, which are laid out in one
/// or two blocks. OPN, CLO and CLX belong to the session.
struct Raw {
    /// A parameter of the request.
    struct Parameter {
        uint16_t id = 0;   ///< AbecsSpeId_E, or any other
        Bytes value = {};  ///< up to 995 bytes
    };

    std::string_view command = {};               ///< the command's name, three characters
    std::span<const Parameter> parameters = {};  ///< one behind the other
    std::span<const Bytes> blocks = {};          ///< up to 999 bytes each
    bool waits = false;                          ///< for the cardholder: start() it; anything else is run()

    Answer<RawAnswer> on(detail::Line& line) const {
        if (waits) { detail::refuse_argument("a request that waits is to be started"); }
        const detail::Packet packet = built();
        detail::RawReader reader;
        reader.expect(command);
        AbecsComm* const link = line.get();
        AbecsPacket* const request = packet.get();
        int32_t status = ABECS_RSP_STAT_ST_NOTIFICATION;
        line.exchange([&] {
            abecs_comm_check_busy(link);
            abecs_comm_send_packet(link, request);
            char text[33];
            while (status == ABECS_RSP_STAT_ST_NOTIFICATION) { status = reader.poll(link, text); }
        });
        return detail::answered(command, status, [&] { return reader.value(status); });
    }
    std::unique_ptr<detail::Receiver<RawAnswer>> start_on(detail::Line& line) const {
        const detail::Packet packet = built();
        auto reader = std::make_unique<detail::RawReader>();
        reader->expect(command);
        const detail::CText name(command);
        AbecsComm* const link = line.get();
        AbecsPacket* const request = packet.get();
        line.exchange([&] {
            abecs_comm_check_busy(link);
            abecs_comm_send_packet(link, request);
            abecs_comm_lock(link, name.get());
        });
        return reader;
    }

private:
    [[nodiscard]] detail::Packet built() const {
        if (command.size() != 3) { detail::refuse_argument("the id of a command has three characters"); }
        AbecsPacket* const packet = detail::call([] { return abecs_packet_new(); });
        detail::Packet owned(packet);
        if (parameters.empty()) {
            detail::append(packet, command, blocks);
            return owned;
        }
        const detail::Owned<abecs_cmd_builder_delete> builder(detail::call([] { return abecs_cmd_builder_new(); }));
        const detail::Owned<abecs_param_delete> param(detail::call([] { return abecs_param_new(); }));
        const detail::CText name(command);
        detail::call([&] {
            abecs_cmd_builder_set_cmd_id(builder.get(), name.get());
            for (const Parameter& each : parameters) {
                abecs_param_set_id(param.get(), each.id);
                abecs_param_write_field_b(param.get(), each.value.data(), each.value.size());
                abecs_cmd_builder_add_param(builder.get(), param.get());
            }
            abecs_cmd_builder_build(builder.get(), packet);
        });
        return owned;
    }
};

}  // namespace quorvel

#endif
