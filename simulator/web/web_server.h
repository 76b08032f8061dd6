// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_WEB_SERVER_H
#define QUORVEL_SIMULATOR_WEB_WEB_SERVER_H

#include <memory>
#include <string>
#include <vector>

#include "simulator/control/control.h"
#include "simulator/scenario/performance.h"
#include "simulator/web/address.h"
#include "simulator/web/bulletin.h"

namespace quorvel::sim::web {

// The PIN pad's page, and what it asks for: requests as on the control socket, events as they happen, media files, the
// recording. It serves on threads of its own as long as it lives, 64 connections at a time, 16 of them for events;
// others wait. The PIN pad waits for none of them.
class WebServer {
public:
    struct Options {
        Address address = {};
        std::string token;
        // Of this machine, besides addresses and localhost.
        std::vector<std::string> names = {};
        std::string version = {};
        Bulletin::Values values = Bulletin::Values::kWithheld;
        // The recording's file; empty when there is none.
        std::string recording = {};
        // Null when there is none.
        const Performance* performance = nullptr;
    };

    // The bulletin listens to the PIN pad. Throws std::runtime_error when the address cannot be had.
    WebServer(Options options, Control& control, Bulletin& bulletin);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // With the token.
    [[nodiscard]] std::string link() const;

private:
    class Site;
    std::unique_ptr<Site> site_;
};

}  // namespace quorvel::sim::web

#endif
