// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/table_file.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <optional>
#include <string_view>

namespace quorvel::cli {

namespace {

constexpr size_t kHeadWidth = 8;
constexpr size_t kMostWidth = 997;
constexpr size_t kVersionWidth = 10;

std::optional<int> digits(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty() || value < 0) { return std::nullopt; }
    return value;
}

// Takes the lines of a file one by one.
class Loader {
public:
    explicit Loader(const std::string& path) : path_(path) {}

    TableFile load() {
        std::ifstream in(path_);
        if (!in) { throw Error(Exit::kUsage, fmt::format("{} cannot be read.", path_)); }
        for (std::string line; std::getline(in, line);) {
            ++number_;
            if (line.ends_with('\r')) { line.pop_back(); }
            take(line);
        }
        if (in.bad()) { throw Error(Exit::kUsage, fmt::format("{} cannot be read to its end.", path_)); }
        if (file_.version.empty()) { fail("there is no line `version`"); }
        return std::move(file_);
    }

private:
    [[noreturn]] void fail(std::string_view text) const {
        throw Error(Exit::kUsage, fmt::format("{}:{}: {}", path_, number_, text),
                    "quorvel-tables(5) describes the file.");
    }

    void take(std::string_view line) {
        if (line.empty() || line.front() == '#') { return; }
        if (line.starts_with("version ")) {
            file_.version = line.substr(line.find(' ') + 1);
            if (file_.version.empty() || file_.version.size() > kVersionWidth) {
                fail("a version has 1 to 10 characters");
            }
        } else if (line.starts_with("acquirer ")) {
            const auto acquirer = digits(line.substr(line.find(' ') + 1));
            if (!acquirer || *acquirer > 99) { fail("an acquirer is a number from 0 to 99"); }
            file_.acquirer = *acquirer;
        } else {
            record(line);
        }
    }

    void record(std::string_view line) {
        if (line.size() < kHeadWidth) { fail(fmt::format("a record has at least {} characters", kHeadWidth)); }
        const auto length = digits(line.substr(0, 3));
        if (!length || !digits(line.substr(3, 3))) {
            fail("a record begins with its length (3 digits), its table (1), its acquirer (2) and its index (2)");
        }
        if (static_cast<size_t>(*length) != line.size()) {
            fail(fmt::format("the record says that it has {} characters, but it has {}", *length, line.size()));
        }
        if (line.size() > kMostWidth) { fail(fmt::format("a record has at most {} characters", kMostWidth)); }
        const auto [first, added] = lines_.emplace(line.substr(3, 5), number_);
        if (!added) { fail(fmt::format("the same table, acquirer and index as in line {}", first->second)); }
        file_.records.add(line);
    }

    const std::string& path_;
    size_t number_ = 0;
    std::map<std::string, size_t, std::less<>> lines_;
    TableFile file_;
};

}  // namespace

TableFile TableFile::read(const std::string& path) { return Loader(path).load(); }

std::string table_version(Link& link, int acquirer) {
    const auto answer = link.answer(Gts{static_cast<uint8_t>(acquirer)});
    return answer.ok() ? *answer : "";
}

void load_tables(Link& link, const TableFile& file, const Output& output) {
    constexpr const char* kLabel = "Loading tables";
    const auto progress = [&](size_t done, size_t total) {
        interrupt::check();
        output.progress(kLabel, done, total);
    };
    output.progress(kLabel, 0, std::max<size_t>(file.records.records(), 1));
    const auto answer = link.with_session("TLR", [&](Session& session) {
        return file.records.load(session, static_cast<uint8_t>(file.acquirer), file.version, progress);
    });
    if (!answer.ok()) { throw StatusError(answer.command(), answer.status()); }
}

}  // namespace quorvel::cli
