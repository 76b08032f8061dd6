// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_CONTROL_CLIENT_H
#define QUORVEL_TESTS_SIMULATOR_CONTROL_CLIENT_H

#include <string>
#include <string_view>

// Someone on the control socket, who knows nothing of it but that lines go in and come out.
class ControlClient {
public:
    explicit ControlClient(const std::string& path);
    ~ControlClient();
    ControlClient(const ControlClient&) = delete;
    ControlClient& operator=(const ControlClient&) = delete;

    void send(std::string_view bytes);
    // As much as goes out without anybody reading; how much that was.
    size_t send_what_goes(std::string_view bytes);
    void shut_down_sending();

    // The next line; what there was of it when the connection ends first.
    std::string line();
    std::string ask(std::string_view request) {
        send(std::string(request) + "\n");
        return line();
    }

private:
    int socket_;
};

#endif
