// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_PARAMS_H
#define QUORVEL_SIMULATOR_COMMANDS_PARAMS_H

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

#include "simulator/cards/pan_mask.h"
#include "simulator/wire.h"
#include "wire/fields.h"
#include "wire/param_id.h"

namespace quorvel::sim {

// The parameters of a request that has each of them in its number.
class Params {
public:
    struct Rule {
        uint16_t id;
        size_t fewest;
        size_t most;
    };
    using Ids = std::initializer_list<uint16_t>;

    // Throws LayoutError for a parameter that is not among these, for one too many and for one that is missing.
    Params(std::string_view command, Reader& request, Ids once, Ids atMostOnce = {},
           std::initializer_list<Rule> others = {});

    // What `read` makes of the whole of each parameter of that id, in their order.
    template <typename Read>
    [[nodiscard]] auto all(uint16_t id, Read read) const {
        std::vector<std::invoke_result_t<Read, Reader&>> values;
        for (const Param& param : params_) {
            if (param.id != id) { continue; }
            Reader reader(param_name(id), param.data);
            values.push_back(read(reader));
            reader.end();
        }
        return values;
    }

    template <typename Read>
    [[nodiscard]] auto find(uint16_t id, Read read) const {
        const auto values = all(id, read);
        return values.empty() ? std::nullopt : std::optional(values.front());
    }

    template <typename Read>
    [[nodiscard]] auto get(uint16_t id, Read read) const {
        return find(id, read).value();
    }

    // SPE_TIMEOUT. Zero asks for what is there already.
    [[nodiscard]] std::optional<std::chrono::seconds> timeout() const;
    [[nodiscard]] std::optional<PanMask> pan_mask() const;

private:
    std::vector<Param> params_;
};

}  // namespace quorvel::sim

#endif
