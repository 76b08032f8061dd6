// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/recording/recorder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "simulator/control/verbs.h"
#include "simulator/recording/stand_in.h"
#include "simulator/watch/listen.h"

namespace quorvel::sim {

namespace {

constexpr mode_t kOwnersAlone = 0600;
constexpr std::string_view kUnknownCard = "a-card-without-a-name";
// A digit that nobody is to know.
constexpr std::string_view kDigit = "digit";

// While one of these waits a digit chooses something; any other takes it for a part of a number or of a PIN.
constexpr std::array<std::string_view, 6> kOpenDigits{"CEX", "CKE", "GCR", "GCX", "GKY", "MNU"};

[[noreturn]] void fail(const std::string& path) { throw std::system_error(errno, std::generic_category(), path); }

std::FILE* open_file(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kOwnersAlone);
    if (descriptor < 0) { fail(path); }
    // One that was there already has the rights of its own.
    struct stat about = {};
    const bool narrow =
        ::fstat(descriptor, &about) == 0 && (!S_ISREG(about.st_mode) || ::fchmod(descriptor, kOwnersAlone) == 0);
    std::FILE* const file = narrow ? ::fdopen(descriptor, "w") : nullptr;
    if (file == nullptr) {
        const int error = errno;
        ::close(descriptor);
        errno = error;
        fail(path);
    }
    return file;
}

// A control byte by its name, whatever a fault has made of it; else what came as it came.
Recorded control_byte(const Traffic& traffic) {
    Recorded recorded{.text = traffic.words};
    const bool host = traffic.sender == Sender::kHost;
    recorded.mark = host ? Recorded::Mark::kHost : Recorded::Mark::kPinPad;
    if (host) { recorded.kind = traffic.words == "CAN" ? "can" : traffic.words == "NAK" ? "nak" : "bytes"; }
    if (!host) { recorded.kind = traffic.words.starts_with("ACK") ? "ack" : traffic.words == "EOT" ? "eot" : "nak"; }
    if (recorded.kind == "bytes") { recorded.bytes = traffic.wire; }
    return recorded;
}

}  // namespace

Recorder::Recorder(const std::string& path, Values values, Cards cards, std::function<void(const std::string&)> failed)
    : path_(path), values_(values), cards_(std::move(cards)), failed_(std::move(failed)), file_(open_file(path)) {
    write(Recording::kFirstLine);
    write(values_ == Values::kKept ? "values kept" : "values withheld");
}

void Recorder::listen(PinPad::Options& options) {
    if (options.seed) { write(fmt::format("seed {}", *options.seed)); }
    write(fmt::format("second {}", options.second.count()));
    listen_too(options.listeners.traffic, [this](const Traffic& traffic) { heard(traffic); });
    listen_too(options.listeners.finding, [this](const Finding& finding) {
        write({.mark = Mark::kFinding, .kind = std::string(kind_name(finding.kind)), .text = finding.text});
    });
    listen_too(options.witness.acted,
               [this](const Event& event, const std::string& waiting) { acted(event, waiting); });
    listen_too(options.witness.struck, [this](const Fault& fault) {
        write({.mark = Mark::kDeed, .kind = "fault", .text = to_json(fault).dump()});
    });
    listen_too(options.witness.left, [this] { write({.mark = Mark::kDeed, .kind = "left"}); });
}

void Recorder::heard(const Traffic& traffic) {
    Recorded recorded = control_byte(traffic);
    if (traffic.packet) {
        recorded.kind = traffic.sealed ? "sealed" : "frame";
        recorded.bytes = *traffic.packet;
    }
    if (values_ == Values::kWithheld && traffic.packet) {
        auto [packet, replaced] = stand_in(traffic.sender, recorded.bytes);
        recorded.bytes = std::move(packet);
        recorded.replaced = std::move(replaced);
    } else if (values_ == Values::kWithheld && recorded.bytes.size() > 1) {
        std::ranges::fill(recorded.bytes, uint8_t{0});
        recorded.replaced = {"all"};
    }
    write(std::move(recorded));
}

void Recorder::acted(const Event& event, const std::string& waiting) {
    Recorded recorded{.mark = Mark::kDeed};
    if (const auto* pressed = std::get_if<KeyPressed>(&event)) {
        const bool open = values_ == Values::kKept || !is_digit(pressed->key)
                          || std::ranges::find(kOpenDigits, waiting) != kOpenDigits.end();
        recorded.kind = "press";
        recorded.text = open ? name_of(pressed->key) : std::string(kDigit);
    } else if (const auto* swiped = std::get_if<CardSwiped>(&event)) {
        recorded.kind = "swipe";
        recorded.text = name_of_card(swiped->card);
    } else if (const auto* inserted = std::get_if<CardInserted>(&event)) {
        recorded.kind = "insert";
        recorded.text = name_of_card(inserted->card);
    } else if (const auto* tapped = std::get_if<CardTapped>(&event)) {
        recorded.kind = "tap";
        recorded.text = name_of_card(tapped->card);
    } else if (const auto* notice = std::get_if<Notice>(&event)) {
        recorded.kind = "notify";
        recorded.text = notice->text;
    } else {
        recorded.kind = "remove";
    }
    write(std::move(recorded));
}

std::string Recorder::name_of_card(const Card& card) const {
    for (std::string& name : cards_.names()) {
        const Card& known = cards_.at(name);
        if (known.pan == card.pan && known.track2 == card.track2) { return std::move(name); }
    }
    return std::string(kUnknownCard);
}

void Recorder::write(Recorded recorded) {
    recorded.time = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin_);
    write(to_line(recorded));
}

// Flushed, so that what has happened is there whatever happens next.
void Recorder::write(std::string_view line) {
    if (file_ == nullptr) { return; }
    const std::string text = fmt::format("{}\n", line);
    size_ += text.size();
    if (size_ > most_) { errno = EFBIG; }
    const bool written = size_ <= most_ && std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size()
                         && std::fflush(file_.get()) == 0;
    if (written) { return; }
    const int error = errno;
    file_.reset();
    failed_(fmt::format("nothing more is recorded in {}: {}", path_, std::generic_category().message(error)));
}

}  // namespace quorvel::sim
