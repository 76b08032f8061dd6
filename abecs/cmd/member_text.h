// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_MEMBER_TEXT_H
#define QUORVEL_ABECS_CMD_MEMBER_TEXT_H

#include <cstddef>
#include <cstring>

namespace abecs {

// A text member of a caller's record, with the NUL that the caller may have left out: the writers of text fields read
// up to it.
template <size_t Size>
struct MemberText {
    char text[Size];

    explicit MemberText(const char (&member)[Size]) {
        const size_t length = strnlen(member, Size - 1);
        std::memcpy(text, member, length);
        text[length] = '\0';
    }
};

// The same of the member's last character too: the writers refuse a text that is longer than its field.
template <size_t Size>
struct WholeMemberText {
    char text[Size + 1];

    explicit WholeMemberText(const char (&member)[Size]) {
        const size_t length = strnlen(member, Size);
        std::memcpy(text, member, length);
        text[length] = '\0';
    }
};

}  // namespace abecs

#endif
