// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_PARAM_MAP_H
#define QUORVEL_TESTS_ABECS_CMD_PARAM_MAP_H

#include <map>
#include <string>

#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/map.h"

namespace support {

// A command's answer in parameters, as long as this lives.
class ParamMap {
public:
    using Items = std::map<int, std::string>;

    ParamMap() = default;
    ~ParamMap() { kor_map_delete(&map_); }
    ParamMap(const ParamMap&) = delete;
    ParamMap& operator=(const ParamMap&) = delete;

    [[nodiscard]] AbecsRspParamMap* get() const { return map_; }

    [[nodiscard]] Items items() const {
        Items all;
        AbecsRspParamMapIt it{};
        for (auto* at = abecs_rsp_param_map_begin(map_, &it); at != nullptr; at = abecs_rsp_param_map_next(at)) {
            all[at->id] = std::string(at->value.data, at->value.data + at->value.size);
        }
        return all;
    }

private:
    AbecsRspParamMap* map_ = abecs_rsp_param_map_new();
};

}  // namespace support

#endif
