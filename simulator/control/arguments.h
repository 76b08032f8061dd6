// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_ARGUMENTS_H
#define QUORVEL_SIMULATOR_CONTROL_ARGUMENTS_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorvel::sim {

// What is wrong with a request, for whoever sent it.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The members of a request, each of which has to be one that somebody reads. All functions throw RequestError for a
// value that is missing or of another type or range. The request must outlive them.
class Arguments {
public:
    explicit Arguments(const nlohmann::json& request);

    [[nodiscard]] std::string text(std::string_view name);
    [[nodiscard]] std::string text(std::string_view name, std::string_view otherwise);
    [[nodiscard]] int64_t number(std::string_view name, int64_t lowest, int64_t highest,
                                 std::optional<int64_t> otherwise = {});
    [[nodiscard]] std::optional<double> fraction(std::string_view name);
    // False when it is not there.
    [[nodiscard]] bool flag(std::string_view name);
    [[nodiscard]] const nlohmann::json& list(std::string_view name);
    [[nodiscard]] const nlohmann::json& object(std::string_view name);
    [[nodiscard]] bool has(std::string_view name) const { return request_.contains(name); }

    // Refuses what nobody has read.
    void end() const;

private:
    // Null when there is none.
    [[nodiscard]] const nlohmann::json* find(std::string_view name);
    [[nodiscard]] const nlohmann::json& get(std::string_view name);

    const nlohmann::json& request_;
    std::set<std::string, std::less<>> read_;
};

}  // namespace quorvel::sim

#endif
