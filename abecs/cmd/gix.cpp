// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gix.h"

#include <algorithm>
#include <array>
#include <span>

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "quorvel/abecs/spe_id.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGix{.id = "GIX"};
constexpr size_t kMaxIds = 64;

struct Range {
    int32_t first;
    int32_t last;

    [[nodiscard]] constexpr bool holds(int32_t id) const { return first <= id && id <= last; }
};

constexpr std::array kSingleItems{
    Range{ABECS_CMD_GIX_ID_PP_SERNUM, ABECS_CMD_GIX_ID_PP_GENVERS},
    Range{ABECS_CMD_GIX_ID_PP_KRNLVER, ABECS_CMD_GIX_ID_PP_PUREVER},
    Range{ABECS_CMD_GIX_ID_PP_DSPTXTSZ, ABECS_CMD_GIX_ID_PP_MFSUP},
    Range{ABECS_CMD_GIX_ID_PP_MKDESP, ABECS_CMD_GIX_ID_PP_DKPTTDESD},
    Range{ABECS_CMD_GIX_ID_PP_BIGRAND, ABECS_CMD_GIX_ID_PP_BIGRAND},
    Range{ABECS_CMD_GIX_ID_PP_TLRMEM, ABECS_CMD_GIX_ID_PP_TLRMEM},
};

constexpr std::array kFamilies{
    Range{ABECS_CMD_GIX_ID_PP_KSNDESP0, ABECS_CMD_GIX_ID_PP_KSNDESP99},
    Range{ABECS_CMD_GIX_ID_PP_KSNTDESP0, ABECS_CMD_GIX_ID_PP_KSNTDESP99},
    Range{ABECS_CMD_GIX_ID_PP_KSNTDESD0, ABECS_CMD_GIX_ID_PP_KSNTDESD99},
    Range{ABECS_CMD_GIX_ID_PP_TABVER0, ABECS_CMD_GIX_ID_PP_TABVER99},
};

constexpr bool any_holds(std::span<const Range> ranges, int32_t id) {
    return std::ranges::any_of(ranges, [id](const Range& range) { return range.holds(id); });
}

// An id of a numbered family ends the check: what follows it is taken as it stands.
bool refuse_ids(std::span<const int32_t> ids) {
    for (size_t i = 0; i < ids.size(); ++i) {
        if (any_holds(kFamilies, ids[i])) { return false; }
        if (refuse_if(!any_holds(kSingleItems, ids[i]),
                      "Invalid enumerator for AbecsCmdGixId_E at index %zu: %d (%02X)", i, ids[i],
                      static_cast<uint32_t>(ids[i]))) {
            return true;
        }
    }
    return false;
}

}  // namespace

int32_t abecs_cmd_gix(AbecsComm* pinpad, const int32_t* idList, size_t idListSize, AbecsRspParamMap* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_if(idListSize > kMaxIds, "'idListSize' (%zu) exceeds maximum allowed (64)", idListSize)
        || refuse_missing(idList, idListSize, "'idList' is NULL")) {
        return kRaised;
    }
    const std::span ids(idList, idListSize);
    if (refuse_ids(ids)) { return kRaised; }
    if (refuse_null(out, "'out' is NULL")) { return kRaised; }
    return call(pinpad, kGix, Request::params([&](ParamWriter& params) {
                    if (ids.empty()) { return; }
                    params.put(ABECS_SPE_ID_IDLIST, [&](AbecsParam* param) {
                        // Ids behind one of a family are unchecked: their low 16 bits travel.
                        for (const int32_t id : ids) {
                            abecs_param_write_byte(param, static_cast<uint8_t>(id >> 8));
                            abecs_param_write_byte(param, static_cast<uint8_t>(id));
                        }
                    });
                }),
                Response::into(out));
}
