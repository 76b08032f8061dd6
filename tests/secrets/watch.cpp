// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/secrets/watch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <malloc.h>
#include <map>
#include <memory>
#include <sys/mman.h>
#include <ucontext.h>

#include "tests/support/wire.h"

#ifdef __SANITIZE_ADDRESS__
#define QUORVEL_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORVEL_SANITIZED 1
#endif
#endif

extern "C" {
void* __real_kor_heap_alloc(size_t size, int nullable);
void* __wrap_kor_heap_alloc(size_t size, int nullable);
void __libc_free(void* pointer);
void __wrap_explicit_bzero(void* begin, size_t size);
void __wrap___explicit_bzero_chk(void* begin, size_t size, size_t room);
extern char __data_start;
extern char _end;
}

namespace secrets {

namespace {

constexpr size_t kWindow = 8;

#ifdef QUORVEL_SANITIZED
constexpr bool kSwitches = false;
#else
constexpr bool kSwitches = true;
#endif

class Stack {
public:
    Stack() : memory_(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}
    ~Stack() { munmap(memory_, kSize); }
    Stack(Stack&&) = delete;

#ifdef QUORVEL_SANITIZED
    // The sanitizer knows of one stack for each thread, where the test itself leaves secrets.
    void prepare(void (*function)()) {
        clear_below();
        function_ = function;
    }
    void enter() { function_(); }
    void leave() {}
    __attribute__((noinline, no_sanitize("address"))) static void clear_below() {
        volatile char below[1 << 16];
        for (volatile char& byte : below) { byte = 0; }
    }
    void (*function_)() = nullptr;
#else
    void prepare(void (*function)()) {
        getcontext(&inside_);
        inside_.uc_stack.ss_sp = memory_;
        inside_.uc_stack.ss_size = kSize;
        inside_.uc_link = &outside_;
        makecontext(&inside_, function, 0);
    }
    void enter() { swapcontext(&outside_, &inside_); }
    // The next entry goes on from here.
    void leave() { swapcontext(&inside_, &outside_); }
#endif

    [[nodiscard]] bool has(const char* address) const {
        const auto* begin = static_cast<const char*>(memory_);
        return begin <= address && address < begin + kSize;
    }
    [[nodiscard]] std::string_view content() const { return {static_cast<const char*>(memory_), kSize}; }

private:
    static constexpr size_t kSize = size_t{1} << 18;
    void* memory_;
    [[maybe_unused]] ucontext_t inside_{};
    [[maybe_unused]] ucontext_t outside_{};
};

// On the heap, so that the program's variables can be searched.
struct Watch {
    const std::function<void()>* call;
    std::vector<Secret> secrets;
    std::map<uint64_t, std::vector<const std::string*>> windows;
    std::array<bool, 0x10000> starts{};  // of the windows, by their first two bytes
    Seen seen;
    Stack stack;     // of the call
    Stack searches;  // of what is done meanwhile: it must not write over what the call has left on its own
};

Watch* current = nullptr;
std::string_view lookedAt;
enum class Event { kWiped, kFreed } event;

uint64_t window_at(const char* bytes) {
    uint64_t window = 0;
    std::memcpy(&window, bytes, kWindow);
    return window;
}

// The names of the secrets that stand there, or nothing. A window goes through one byte after the other; few get by the
// quick look at its first two bytes.
__attribute__((no_sanitize("address", "undefined"))) std::string found_in(std::string_view memory) {
    std::vector<const std::string*> names;
    const char* at = memory.data();
    const char* const end = at + memory.size();
    const bool* const starts = current->starts.data();
    uint64_t window = 0;
    for (const char* const first = at + kWindow - 1; at < end; ++at) {
        window = window >> 8 | uint64_t{static_cast<uint8_t>(*at)} << 56;
        if (!starts[window & 0xFFFF] || at < first) { continue; }
        const auto found = current->windows.find(window);
        if (found != current->windows.end()) { names.insert(names.end(), found->second.begin(), found->second.end()); }
    }
    std::string list;
    for (const Secret& secret : current->secrets) {
        if (std::find(names.begin(), names.end(), &secret.name) == names.end()) { continue; }
        list += (list.empty() ? "" : ", ") + secret.name;
    }
    return list;
}

void note() {
    const std::string found = found_in(lookedAt);
    if (found.empty()) { return; }
    const std::string text = std::to_string(lookedAt.size()) + ": " + found;
    if (event == Event::kWiped) {
        current->seen.wiped.push_back(text);
    } else {
        current->seen.left.push_back("freed " + text);
    }
}

#ifndef QUORVEL_SANITIZED
// Other threads and the searches free memory, too.
bool in_call() {
    const char local = 0;
    return current != nullptr && current->stack.has(&local);
}
#endif

// On the call's own stack this only changes to the other one: whatever else it did could write over what is left there,
// or, as functions with variable arguments do, put the registers there.
void look_at(Event what, const void* begin, size_t size) {
    if (current == nullptr) { return; }
    event = what;
    lookedAt = {static_cast<const char*>(begin), size};
    current->searches.enter();
}

void search() {
    do {
        note();
        current->searches.leave();
    } while (kSwitches);
}

void wipe(void* begin, size_t size) {
    look_at(Event::kWiped, begin, size);
    auto* byte = static_cast<volatile char*>(begin);
    while (size-- != 0) { *byte++ = 0; }
}

void look_around() {
    const std::pair<const char*, std::string_view> places[]{
#ifndef QUORVEL_SANITIZED
        {"stack: ", current->stack.content()},
#endif
        {"variables: ", {&__data_start, static_cast<size_t>(&_end - &__data_start)}},
    };
    for (const auto& [place, memory] : places) {
        if (const std::string found = found_in(memory); !found.empty()) { current->seen.left.push_back(place + found); }
    }
}

std::string swapped(std::string bytes) {
    for (size_t at = 0; at + 4 <= bytes.size(); at += 4) { std::reverse(&bytes[at], &bytes[at] + 4); }
    return bytes;
}

}  // namespace

Secret of_bytes(std::string name, std::string_view bytes) {
    std::string upper = support::to_hex(bytes);
    std::erase(upper, ' ');
    std::string lower = upper;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return c < 'A' ? c : c + 'a' - 'A'; });
    Secret secret{std::move(name), {std::string(bytes), swapped(std::string(bytes)), upper, lower}};
    for (const std::string_view forward : {bytes, std::string_view(upper)}) {
        secret.forms.emplace_back(forward.rbegin(), forward.rend());
    }
    return secret;
}

Secret of_digits(std::string name, std::string_view digits) {
    return of_bytes(std::move(name), support::operator""_hex(digits.data(), digits.size()));
}

Seen watch(const std::vector<Secret>& secrets, Raising raising, const std::function<void()>& call) {
    const auto watched = std::make_unique<Watch>();
    watched->call = &call;
    watched->secrets = secrets;
    for (const Secret& secret : watched->secrets) {
        for (const std::string& form : secret.forms) {
            for (size_t at = 0; at + kWindow <= form.size(); ++at) {
                const uint64_t window = window_at(&form[at]);
                watched->windows[window].push_back(&secret.name);
                watched->starts[window & 0xFFFF] = true;
            }
        }
    }
    Seen& seen = watched->seen;
    watched->searches.prepare(search);
    if (raising == Raising::kCaught) {
        watched->stack.prepare([] {
            const support::Raised raised = support::raised_by([] { (*current->call)(); });
            if (raised != support::Raised{}) { current->seen.raised.push_back(raised); }
        });
        current = watched.get();
        current->stack.enter();
    } else {
        const support::ReturningRaises raises;
        watched->stack.prepare([] { (*current->call)(); });
        current = watched.get();
        current->stack.enter();
        seen.raised = raises.all();
    }
    look_around();
    current = nullptr;
    return std::move(seen);
}

}  // namespace secrets

// Without what others have left there before.
void* __wrap_kor_heap_alloc(size_t size, int nullable) {
    void* memory = __real_kor_heap_alloc(size, nullable);
    return memory != nullptr ? std::memset(memory, 0xE7, malloc_usable_size(memory)) : nullptr;
}

#ifndef QUORVEL_SANITIZED
// In the place of the C library's for the whole program, so that what the libraries under this one free is seen, too.
void free(void* ptr) noexcept {
    if (ptr != nullptr && secrets::in_call()) {
        secrets::look_at(secrets::Event::kFreed, ptr, malloc_usable_size(ptr));
    }
    __libc_free(ptr);
}
#endif

void __wrap_explicit_bzero(void* begin, size_t size) { secrets::wipe(begin, size); }

// The second name, under which fortified builds call it.
void __wrap___explicit_bzero_chk(void* begin, size_t size, size_t) { secrets::wipe(begin, size); }
