// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_ACCESS_H
#define QUORVEL_SIMULATOR_WEB_ACCESS_H

#include <string>
#include <string_view>
#include <vector>

namespace quorvel::sim::web {

// Who may play the PIN pad from a browser: whoever has the token, from a page that this PIN pad has served. A name that
// somebody else's server gives for this machine is not taken, so that no page of theirs gets in by it.
class Access {
public:
    // `names` are the machine's names that are taken besides addresses and localhost.
    explicit Access(std::string token, std::vector<std::string> names = {});

    // Of the headers' values; `origin` is empty when there is none.
    [[nodiscard]] bool admits_host(std::string_view host) const;
    [[nodiscard]] static bool admits_origin(std::string_view origin, std::string_view host);
    [[nodiscard]] bool admits(std::string_view authorization) const;

    [[nodiscard]] const std::string& token() const noexcept { return token_; }

private:
    const std::string token_;
    const std::vector<std::string> names_;
};

// 128 bits of the system's, in hexadecimal.
[[nodiscard]] std::string new_token();

// What stands in the file, which is made with a new token, for its user alone, when it is not there. Throws
// std::runtime_error for one that others may read, that cannot be read or made, or whose token is not 16 to 128
// letters and digits.
[[nodiscard]] std::string token_in(const std::string& path);

}  // namespace quorvel::sim::web

#endif
