// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_pad.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <utility>

namespace quorvel::sim {

namespace {

// What has come and is not yet heard; more stays where it is, so that whoever sends without end has to wait.
constexpr size_t kMaxHeard = 4096;
constexpr unsigned kBitsPerByte = 10;
constexpr uint32_t kUsualSeed = 1;

std::chrono::nanoseconds byte_time(unsigned speed) {
    return speed == 0 ? std::chrono::nanoseconds::zero()
                      : std::chrono::nanoseconds(std::chrono::seconds(kBitsPerByte)) / speed;
}

const WallClock& clock_of(PinPad::Options& options) {
    if (!options.clock) { options.clock = std::chrono::system_clock::now; }
    return options.clock;
}

Device device_of(PinPad::Options& options) {
    Device device = std::move(options.device);
    if (options.language) { device.language = *options.language; }
    if (options.seed) { device.random = Random(*options.seed); }
    device.clock = options.clock;
    return device;
}

}  // namespace

static_assert(std::atomic<bool>::is_always_lock_free, "request_stop() is called in signal handlers");

PinPad::PinPad(Options options)
    : journal_(std::move(options.listeners), clock_of(options)),
      companion_(options.companion),
      witness_(std::move(options.witness)),
      faults_(options.seed.value_or(kUsualSeed), witness_.struck),
      line_(options.companion != nullptr || witness_.left),
      screen_(options.changed),
      board_(options.changed),
      transmitter_(byte_time(options.speed), faults_, journal_,
                   {.write = [this](ByteView bytes) { send(bytes); },
                    .hangUp = [this](std::chrono::milliseconds time) { hang_up(time); }}),
      engine_({.device = device_of(options),
               .sessionKey = options.sessionKey,
               .second = options.second,
               .patience = options.patience,
               .session = options.session,
               .begins =
                   [this](const Exchange& exchange) {
                       if (companion_ != nullptr) { companion_->begins(*this, exchange); }
                   },
               .waits =
                   [this](const std::string& command) {
                       if (companion_ != nullptr) { companion_->waits(*this, command); }
                   },
               .exchanged =
                   [this](const Exchange& exchange) {
                       if (companion_ != nullptr) { companion_->exchanged(*this, exchange); }
                   },
               .acted =
                   [this](const Event& event, const std::string& waiting) {
                       if (witness_.acted) { witness_.acted(event, waiting); }
                   },
               .clock = options.clock},
              journal_, screen_, cardholder_, board_, transmitter_),
      heard_(byte_time(options.speed)),
      errands_([this] { line_.wake(); }),
      firstFaults_(std::move(options.faults)),
      frameTimeout_(options.frameTimeout),
      returned_(std::move(options.returned)),
      path_(line_.path()) {
    restart_faults();
}

PinPad::~PinPad() { stop(); }

void PinPad::run() {
    const Errands::Service service(errands_);
    while (!stopping_) {
        if (companion_ != nullptr) { companion_->work(*this, Clock::now()); }
        const uint64_t begun = engine_.begun();
        const bool room = heard_.size() < kMaxHeard;
        const auto limit = errands_.take() ? std::chrono::milliseconds::zero() : patience();
        if (line_.wait(limit, room) == Line::Event::kReadable) { heard_.push(line_.read(), {}, Clock::now()); }
        step(begun);
        errands_.work();
    }
}

void PinPad::step(uint64_t begun) {
    // What was done before the host spoke is not for the command that comes.
    engine_.poll(Clock::now());
    hear();
    engine_.poll(Clock::now());
    transmitter_.flush();
    see_off(begun);
    come_and_go();
}

void PinPad::hear() {
    const auto now = Clock::now();
    if (const Bytes bytes = heard_.take(now); !bytes.empty()) {
        lastHeard_ = now;
        spoken_ = true;
        engine_.receive(bytes);
    } else if (engine_.in_frame() && now >= lastHeard_ + frameTimeout_) {
        engine_.give_up();
    }
}

std::optional<std::chrono::milliseconds> PinPad::patience() const {
    const auto at = next();
    if (!at) { return std::nullopt; }
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(*at - Clock::now()),
                    std::chrono::milliseconds::zero());
}

// When there is something to do though nothing happens. A frame that has begun comes first: a command that waits
// notices a little later that its time is over.
std::optional<PinPad::Clock::time_point> PinPad::next() const {
    std::optional<Clock::time_point> next = engine_.in_frame() ? lastHeard_ + frameTimeout_ : engine_.deadline();
    const auto consider = [&next](std::optional<Clock::time_point> other) {
        if (other && (!next || *other < *next)) { next = other; }
    };
    consider(heard_.due());
    if (companion_ != nullptr) { consider(companion_->due()); }
    consider(transmitter_.due());
    if (!line_.is_open()) { consider(returns_); }
    return next;
}

// Whatever the host had sent before it closed the line comes first. Of what has been heard meanwhile some may be
// somebody else's who has the line by now.
void PinPad::see_off(uint64_t begun) {
    if (line_.has_departed()) { leaving_ = line_.has_visitors() ? begun : std::numeric_limits<uint64_t>::max() - 1; }
    if (!leaving_) { return; }
    if (line_.is_open()) { heard_.push(line_.read(), {}, Clock::now()); }
    hear();
    engine_.poll(Clock::now());
    if (heard_.size() != 0) { return; }
    const uint64_t own = *std::exchange(leaving_, std::nullopt);
    if (!std::exchange(spoken_, false)) { return; }
    engine_.leave(own);
    cardholder_.part(Cardholder::End::kHost);
    if (companion_ != nullptr) { companion_->left(*this); }
    if (witness_.left) { witness_.left(); }
}

void PinPad::come_and_go() {
    std::unique_lock lock(mutex_);
    if (const auto absence = std::exchange(absence_, std::nullopt)) {
        transmitter_.abandon();
        heard_.clear();
        spoken_ = false;
        leaving_.reset();
        engine_.restart();
        line_.hang_up();
        returns_ = Clock::now() + *absence;
    }
    if (line_.is_open() || Clock::now() < returns_) { return; }
    line_.open();
    const std::string path = path_ = line_.path();
    lock.unlock();
    if (returned_) { returned_(path); }
}

void PinPad::hang_up(std::chrono::milliseconds time) {
    {
        const std::lock_guard lock(mutex_);
        absence_ = time;
    }
    line_.wake();
}

std::string PinPad::path() const {
    const std::lock_guard lock(mutex_);
    return path_;
}

void PinPad::act(const Gestures& gestures) {
    cardholder_.act(gestures);
    line_.wake();
}

// By errand, so that a host that has closed the line before is not the one that it is for.
void PinPad::when_in_session(std::string command, const Gestures& gestures) {
    errands_.run([&] { cardholder_.when({std::move(command), gestures, false}); });
}

bool PinPad::reset(Reset what) {
    bool done = false;
    errands_.run([&] { done = reset_now(what); });
    return done;
}

bool PinPad::reset_now(Reset what) {
    switch (what) {
        case Reset::kAll:
            return reset_all();
        case Reset::kCards:
            return engine_.reset(Device::Part::kCards);
        case Reset::kTables:
            return engine_.reset(Device::Part::kTables);
        case Reset::kKeys:
            return engine_.reset(Device::Part::kKeys);
        case Reset::kPins:
            return engine_.reset(Device::Part::kPins);
        case Reset::kMedia:
            return engine_.reset(Device::Part::kMedia);
        case Reset::kPlans:
            cardholder_.clear_plans();
            break;
        case Reset::kFaults:
            restart_faults();
            break;
        case Reset::kFindings:
            journal_.restart_findings();
    }
    return true;
}

bool PinPad::reset_all() {
    if (!engine_.reset(std::nullopt)) { return false; }
    transmitter_.abandon();
    heard_.clear();
    cardholder_.clear();
    restart_faults();
    journal_.restart_findings();
    return true;
}

void PinPad::restart_faults() {
    faults_.restart();
    for (const Fault& fault : firstFaults_) { inject(fault); }
}

void PinPad::forget_chip(const std::string& pan) {
    errands_.run([&] { engine_.forget_chip(pan); });
}

Tables PinPad::tables() {
    Tables tables;
    visit([&](const Device& device) { tables = device.tables; });
    return tables;
}

void PinPad::visit(const std::function<void(const Device&)>& visitor) {
    errands_.run([&] { visitor(engine_.device()); });
}

std::optional<SessionLog> PinPad::session() {
    std::optional<SessionLog> session;
    errands_.run([&] {
        session = engine_.session();
        if (session) { session->hostThere = spoken_; }
    });
    return session;
}

void PinPad::request_stop() noexcept {
    stopping_ = true;
    line_.wake();
}

void PinPad::start() {
    thread_ = std::thread([this] {
        try {
            run();
        } catch (const std::exception& error) { journal_.record(Finding{Finding::Kind::kInternal, error.what()}); }
    });
}

void PinPad::stop() {
    request_stop();
    if (thread_.joinable()) { thread_.join(); }
}

void PinPad::send(ByteView bytes) {
    if (!line_.is_open() || line_.write(bytes) || stopping_) { return; }
    journal_.record(Finding{Finding::Kind::kSequence, "nobody reads the line: bytes were lost"});
}

}  // namespace quorvel::sim
