// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_PORTS_HPP
#define QUORVEL_HPP_PORTS_HPP

#include "quorvel/hpp/device.hpp"

/// @file
/// Which ports there are, and which has a PIN pad.

namespace quorvel {

/// The paths of the serial ports that can be opened. Each candidate is opened and closed again; nothing is sent.
[[nodiscard]] inline std::vector<std::string> ports() {
    const detail::TextList found;
    detail::call([&] { kor_serial_list_ports(found.get()); });
    return found.all();
}

/// Opens a port and closes it again, without a byte being sent. Throws what Link would.
inline void probe(std::string_view port) {
    const detail::CText name(port);
    detail::call([&] {
        KorSerial* serial = kor_serial_open(name.get());
        kor_serial_close(&serial);
    });
}

/// The version of the library that is loaded.
[[nodiscard]] inline std::string_view version() noexcept { return kor_version_project(); }

/// The library's name of an error, "KOR_RESULT_IO_ERROR" for instance; "" for those of the wrapper.
[[nodiscard]] inline std::string_view name(ErrorCode code) noexcept {
    const bool known = code >= ErrorCode::runtime && code <= ErrorCode::crypt;
    return known ? kor_result_to_string(static_cast<KorResult_E>(code)) : "";
}

}  // namespace quorvel

#endif
