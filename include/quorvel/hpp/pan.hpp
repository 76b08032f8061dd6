// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_PAN_HPP
#define QUORVEL_HPP_PAN_HPP

#include "quorvel/hpp/values.hpp"

/// @file
/// Card numbers and tracks under a working key; see quorvel/abecs/pan.h for what looks enciphered and what comes back
/// as it was. The library's own copies are left to its next call, so each function has one more call wipe them.

namespace quorvel {

namespace detail {

// A text without characters may have no address either.
inline const char* start_of(std::string_view text) noexcept { return text.empty() ? "" : text.data(); }

}  // namespace detail

/// The number that a command takes to a PIN pad with this working key.
[[nodiscard]] inline Secret pan_encrypt(std::string_view pan, const WorkingKey& key) {
    const auto* text =
        detail::call([&] { return abecs_pan_encrypt2(detail::start_of(pan), pan.size(), &key.native()); });
    Secret result{std::string_view(text)};
    detail::call([&] { abecs_pan_encrypt2("", 0, &key.native()); });
    return result;
}

/// A track in clear that the PIN pad has sent under this working key.
[[nodiscard]] inline Secret pan_decrypt_track(std::string_view track, const WorkingKey& key) {
    const auto* text =
        detail::call([&] { return abecs_pan_decrypt_track2(detail::start_of(track), track.size(), &key.native()); });
    Secret result{std::string_view(text)};
    detail::call([&] { abecs_pan_decrypt_track2("", 0, &key.native()); });
    return result;
}

/// The card number in a clear track; empty when there is none.
[[nodiscard]] inline Secret pan_identify(std::string_view track) {
    const auto* text = detail::call([&] { return abecs_pan_identify2(detail::start_of(track), track.size()); });
    Secret result{std::string_view(text)};
    detail::call([] { abecs_pan_identify2("", 0); });
    return result;
}

}  // namespace quorvel

#endif
