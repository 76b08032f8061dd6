// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/access.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "simulator/keys/random.h"
#include "wire/descriptor.h"
#include "wire/hex.h"

namespace quorvel::sim::web {

namespace {

constexpr size_t kTokenBytes = 16;
constexpr size_t kShortest = 16;
constexpr size_t kLongest = 128;
constexpr std::string_view kScheme = "Bearer ";

char small(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

bool is_same_name(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, small, small);
}

// Without the port and the brackets.
std::string name_in(std::string_view host) {
    if (!host.empty() && host.front() == '[') { return std::string(host.substr(1, host.find(']') - 1)); }
    return std::string(host.substr(0, host.find(':')));
}

bool is_address(const std::string& name) {
    std::array<unsigned char, sizeof(in6_addr)> ignored{};
    return ::inet_pton(AF_INET, name.c_str(), ignored.data()) == 1
           || ::inet_pton(AF_INET6, name.c_str(), ignored.data()) == 1;
}

// However much of it is right, it takes the same time.
bool is_same_secret(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) { return false; }
    unsigned difference = 0;
    for (size_t i = 0; i < one.size(); ++i) { difference |= static_cast<unsigned char>(one[i] ^ other[i]); }
    return difference == 0;
}

bool is_token(std::string_view text) {
    const auto fits = [](char each) {
        return (each >= '0' && each <= '9') || (small(each) >= 'a' && small(each) <= 'z');
    };
    return text.size() >= kShortest && text.size() <= kLongest && std::ranges::all_of(text, fits);
}

[[noreturn]] void fail(const std::string& path) { throw std::system_error(errno, std::generic_category(), path); }

void write_token(const std::string& path, const std::string& token) {
    const int made = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (made < 0) { fail(path); }
    const wire::Descriptor file(made, "open");
    const std::string line = token + "\n";
    if (::write(file.get(), line.data(), line.size()) != static_cast<ssize_t>(line.size())) { fail(path); }
}

std::string read_token(const std::string& path, int opened) {
    const wire::Descriptor file(opened, "open");
    struct stat about = {};
    if (::fstat(file.get(), &about) != 0) { fail(path); }
    if ((about.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw std::runtime_error(fmt::format("{}: others may read it: chmod 600 {}", path, path));
    }
    std::string text(kLongest + 2, '\0');
    const ssize_t count = ::read(file.get(), text.data(), text.size());
    if (count < 0) { fail(path); }
    text.resize(static_cast<size_t>(count));
    if (text.ends_with('\n')) { text.pop_back(); }
    if (!is_token(text)) {
        throw std::runtime_error(fmt::format("{}: no token: {} to {} letters and digits", path, kShortest, kLongest));
    }
    return text;
}

}  // namespace

Access::Access(std::string token, std::vector<std::string> names)
    : token_(std::move(token)), names_(std::move(names)) {}

bool Access::admits_host(std::string_view host) const {
    const std::string name = name_in(host);
    if (is_address(name) || is_same_name(name, "localhost")) { return true; }
    return !name.empty() && std::ranges::any_of(names_, [&](const auto& each) { return is_same_name(each, name); });
}

bool Access::admits_origin(std::string_view origin, std::string_view host) {
    return origin.empty() || is_same_name(origin, fmt::format("http://{}", host));
}

bool Access::admits(std::string_view authorization) const {
    return authorization.starts_with(kScheme) && is_same_secret(authorization.substr(kScheme.size()), token_);
}

std::string new_token() { return wire::to_hex(Random().bytes(kTokenBytes)); }

std::string token_in(const std::string& path) {
    const int there = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (there >= 0) { return read_token(path, there); }
    if (errno != ENOENT) { fail(path); }
    std::string token = new_token();
    write_token(path, token);
    return token;
}

}  // namespace quorvel::sim::web
