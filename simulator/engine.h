// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_ENGINE_H
#define QUORVEL_SIMULATOR_ENGINE_H

#include <functional>
#include <string>
#include <string_view>

#include "simulator/bytes.h"
#include "simulator/device.h"
#include "simulator/frame.h"
#include "simulator/journal.h"
#include "simulator/status.h"

namespace quorvel::sim {

// The PIN pad's side of the protocol, without a line: bytes go in, bytes come out.
class Engine {
public:
    using Send = std::function<void(ByteView)>;

    Engine(Device device, Journal& journal, Send send);

    void receive(ByteView bytes);

    // True while a frame has begun and not ended: the host must go on, or give_up() is called.
    [[nodiscard]] bool in_frame() const noexcept { return decoder_.in_frame(); }
    void give_up();

private:
    void handle(const Reception& reception);
    void handle_byte(uint8_t byte);
    void cancel();
    void accept(const Frame& frame);
    void refuse(const std::string& fault);
    void resend();

    Bytes respond(const Frame& frame);
    Bytes run(std::string_view id, ByteView request);
    Bytes refusal(Finding::Kind kind, std::string text, std::string_view id, Status status);

    void send_byte(uint8_t byte);
    void transmit(ByteView wire, std::string words);
    void find(Finding::Kind kind, std::string text);

    Device device_;
    Journal& journal_;
    Send send_;
    FrameDecoder decoder_;
    Bytes lastResponse_;
    std::string lastWords_;
    int resends_ = 0;
};

}  // namespace quorvel::sim

#endif
