// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/examiner.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <mutex>
#include <numeric>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "simulator/exam/judge.h"
#include "simulator/exam/performer.h"
#include "simulator/exam/probe.h"
#include "simulator/line/port_link.h"
#include "wire/named.h"

namespace quorvel::sim::exam {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr size_t kMostLines = 1000;

class Folder {
public:
    Folder() : path_((fs::temp_directory_path() / "quorvel-exam-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) { throw std::system_error(errno, std::generic_category(), path_); }
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] std::string operator/(const char* name) const { return (fs::path(path_) / name).string(); }

private:
    std::string path_;
};

// The records that a till would load which loads none.
void load_tables(Device& device) {
    Tables::Records records;
    for (const std::string& name : Cards::standard().names()) {
        for (const Application& each : Cards::standard().at(name).applications) {
            records[{.table = 1, .acquirer = static_cast<int>(each.acquirer), .index = each.record}] = {};
        }
    }
    device.tables.load(Tables::kAllAcquirers, "EXAM000001", std::move(records));
}

// One case from its beginning to its end: the PIN pad, the port's lasting name, and the till.
class Examination {
public:
    Examination(const Case& asked, const Till& till)
        : case_(asked), till_(till), performer_([this] { link_.reset(); }), pinPad_(options()) {
        result_.asked = &asked;
        for (const Fault& fault : asked.faults) { pinPad_.inject(fault); }
    }

    Result run() {
        const auto begin = Clock::now();
        if (case_.before != Before::kMissing) { link_.emplace(folder_ / "port", pinPad_.path()); }
        if (case_.before != Before::kMute) { pinPad_.start(); }
        prepare_port();
        sell({.person = case_.person, .cues = case_.cues}, case_.cents, case_.host, case_.goal, "");
        if (case_.again && result_.verdict == Verdict::kPassed) { sell_again(); }
        if (case_.before < Before::kLocked) { look_at_the_line(); }
        pinPad_.stop();
        result_.time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
        return std::move(result_);
    }

private:
    PinPad::Options options() {
        PinPad::Options options;
        if (!till_.can(Feature::kTables)) { load_tables(options.device); }
        if (case_.prepare) { case_.prepare(options.device); }
        options.second = case_.second;
        options.speed = case_.speed;
        options.companion = &performer_;
        options.listeners.traffic = [this](const Traffic& traffic) { note(traffic); };
        options.returned = [this](const std::string& path) { link_.emplace(folder_ / "port", path); };
        return options;
    }

    // All on the PIN pad's thread.
    void note(const Traffic& traffic) {
        performer_.crossed(traffic);
        const std::lock_guard lock(mutex_);
        if (traffic_.size() >= kMostLines) { return; }
        const std::chrono::duration<double> since = Clock::now() - began_;
        traffic_.push_back(
            fmt::format("{:8.3f} {} {}", since.count(), traffic.sender == Sender::kHost ? '>' : '<', traffic.words));
    }

    void prepare_port() {
        if (case_.before == Before::kNothing || case_.before >= Before::kMute) { return; }
        other_.emplace(pinPad_.path());
        switch (case_.before) {
            case Before::kUnread:
                other_->send_command("OPN");
                break;
            case Before::kWaiting:
                static_cast<void>(other_->opens_session());
                other_->send_command("GKY");
                static_cast<void>(other_->hears(Bytes{wire::control::kAck}, std::chrono::seconds(1)));
                break;
            case Before::kHalf:
                other_->send(to_bytes("\x16GTS0020"));
                break;
            case Before::kEncrypted:
                // Whoever has no use for the session key needs no key pair.
                other_->send_command("OPN5230256" + std::string(512, 'F') + "3010001");
                static_cast<void>(other_->hears(Bytes{wire::control::kEtb}, std::chrono::seconds(1)));
                break;
            default:
                return other_->lock();
        }
        other_.reset();
        // What it has left behind is not the till's fault.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        pinPad_.clear_findings();
    }

    void sell(Performer::Sale sale, uint64_t cents, Host host, Outcomes goal, const std::string& which) {
        Process process;
        performer_.begin(std::move(sale), &process);
        const Order order{.port = folder_ / "port",
                          .cents = cents,
                          .host = host,
                          .encrypted = case_.encrypted,
                          .number = case_.number.words()};
        process.start(till_.command_for(order), till_.environment_for(order));
        Evidence evidence{.asked = case_, .till = till_, .cents = cents, .host = host, .goal = goal};
        evidence.ended = process.wait(till_.limit);
        evidence.leftBehind = process.clean_up() && evidence.ended;
        result_.output += which + process.output();
        settle();
        evidence.sale = performer_.sale();
        evidence.board = pinPad_.board().state();
        evidence.findings = pinPad_.findings();
        performer_.begin({}, &process);
        pinPad_.clear_findings();
        conclude(judge(evidence), which);
    }

    // What the till has sent last may still be on its way.
    void settle() {
        for (int i = 0; i < 30 && !pinPad_.board().state().waiting.empty(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }

    void sell_again() {
        pinPad_.clear_faults();
        wait_for_line();
        sell({.person = case_.person, .cues = {}}, case_.cents, Host::kApproves, {Outcome::kPaid}, "the next sale: ");
    }

    void wait_for_line() const {
        for (int i = 0; i < 200 && !fs::exists(folder_ / "port"); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    void conclude(const Judgement& judgement, const std::string& which) {
        result_.verdict = judgement.verdict;
        result_.expected = judgement.expected;
        result_.said = judgement.said;
        result_.truth = judgement.truth;
        for (const std::string& why : judgement.why) { result_.why.push_back(which + why); }
        const std::lock_guard lock(mutex_);
        result_.traffic = traffic_;
    }

    // Whether another program could work with the PIN pad now.
    void look_at_the_line() {
        pinPad_.clear_faults();
        wait_for_line();
        const Probe probe(pinPad_.path());
        if (const std::string lock = probe.lock_left(); !lock.empty()) {
            fail(fmt::format("the port is left locked ({})", lock));
        }
        if (!probe.cancels()) { return fail("the PIN pad does not confirm CAN any more"); }
        if (!probe.opens_session()) { fail("no session can be opened any more"); }
    }

    void fail(std::string why) {
        result_.why.push_back(std::move(why));
        if (result_.is_good() || result_.verdict == Verdict::kConduct) { result_.verdict = Verdict::kState; }
    }

    const Case& case_;
    const Till& till_;
    const Folder folder_;
    const Clock::time_point began_ = Clock::now();
    Result result_;
    std::mutex mutex_;
    std::vector<std::string> traffic_;
    std::optional<PortLink> link_;
    Performer performer_;
    std::optional<Probe> other_;
    PinPad pinPad_;
};

std::vector<size_t> longest_first(const std::vector<const Case*>& all) {
    std::vector<size_t> order(all.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::ranges::stable_sort(order, std::ranges::greater(), [&](size_t i) { return all[i]->seconds; });
    return order;
}

}  // namespace

std::string_view name_of(Verdict verdict) noexcept {
    using enum Verdict;
    static constexpr std::array kNames{Named{"passed", kPassed},
                                       Named{"money", kMoney},
                                       Named{"state", kState},
                                       Named{"conduct", kConduct},
                                       Named{"not-applicable", kNotApplicable},
                                       Named{"broken", kBroken}};
    return name_among(kNames, verdict);
}

std::string unfit(const Case& asked, const Till& till) {
    for (const Feature feature : asked.needs) {
        if (!till.can(feature)) { return fmt::format("the till takes no \"{}\"", name_of(feature)); }
    }
    if (till.hosts.contains(asked.host)) { return ""; }
    return fmt::format("the till has no acquirer that \"{}\"", name_of(asked.host));
}

Result examine(const Case& asked, const Till& till) {
    if (std::string why = unfit(asked, till); !why.empty()) {
        return {.asked = &asked, .verdict = Verdict::kNotApplicable, .why = {std::move(why)}};
    }
    return Examination(asked, till).run();
}

std::vector<Result> examine(const std::vector<const Case*>& all, const Till& till, unsigned jobs,
                            const std::function<void(const Result&)>& told) {
    const std::vector<size_t> order = longest_first(all);
    std::vector<Result> results(all.size());
    std::atomic<size_t> next = 0;
    std::mutex mutex;
    std::exception_ptr failure;
    const auto work = [&] {
        for (size_t i = next++; i < order.size() && !is_stopped(); i = next++) {
            try {
                Result& result = results[order[i]] = examine(*all[order[i]], till);
                const std::lock_guard lock(mutex);
                told(result);
            } catch (...) {
                const std::lock_guard lock(mutex);
                failure = std::current_exception();
                next = order.size();
            }
        }
    };
    {
        std::vector<std::jthread> workers;
        for (unsigned i = 0; i < jobs; ++i) { workers.emplace_back(work); }
    }
    if (failure) { std::rethrow_exception(failure); }
    return results;
}

}  // namespace quorvel::sim::exam
