// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/descriptor.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace quorvel::wire {

void fail_call(const char* call) { throw std::system_error(errno, std::generic_category(), call); }

bool is_transient(int error) noexcept { return error == EAGAIN || error == EINTR; }

Descriptor::Descriptor(int descriptor, const char* call) : descriptor_(descriptor) {
    if (descriptor < 0) { fail_call(call); }
}

Descriptor::~Descriptor() { ::close(descriptor_); }

std::string slave_path(const Descriptor& master) {
    if (grantpt(master.get()) != 0) { fail_call("grantpt"); }
    if (unlockpt(master.get()) != 0) { fail_call("unlockpt"); }
    std::array<char, 128> path{};
    if (const int error = ptsname_r(master.get(), path.data(), path.size()); error != 0) {
        throw std::system_error(error, std::generic_category(), "ptsname_r");
    }
    return path.data();
}

WakeUp::WakeUp() : event_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "eventfd") {}

void WakeUp::wake() const noexcept {
    const int error = errno;
    const uint64_t one = 1;
    // Can only fail when the counter is full, and then the wait ends anyway.
    [[maybe_unused]] const ssize_t written = ::write(event_.get(), &one, sizeof one);
    errno = error;
}

void WakeUp::clear() const {
    uint64_t count = 0;
    if (::read(event_.get(), &count, sizeof count) < 0 && !is_transient(errno)) { fail_call("read"); }
}

}  // namespace quorvel::wire
