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

// What `kTransform` makes of a text under a working key.
template <auto kTransform>
Secret transformed(std::string_view text, const WorkingKey& key) {
    const auto* made = call([&] { return kTransform(start_of(text), text.size(), &key.native()); });
    Secret result{std::string_view(made)};
    call([&] { kTransform("", 0, &key.native()); });
    return result;
}

}  // namespace detail

/// The number that a command takes to a PIN pad with this working key.
[[nodiscard]] inline Secret pan_encrypt(std::string_view pan, const WorkingKey& key) {
    return detail::transformed<abecs_pan_encrypt2>(pan, key);
}

/// A track in clear that the PIN pad has sent under this working key.
[[nodiscard]] inline Secret pan_decrypt_track(std::string_view track, const WorkingKey& key) {
    return detail::transformed<abecs_pan_decrypt_track2>(track, key);
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
