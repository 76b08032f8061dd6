// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

template <size_t count>
void write_texts(Writer& to, const std::array<std::string, count>& texts, const std::array<size_t, count>& widths) {
    for (size_t i = 0; i < count; ++i) { to.a(texts[i], widths[i]); }
}

Writer pin_pad_itself(const Identity& identity) {
    Writer fields;
    fields.a(identity.manufacturer, 20)
        .a(identity.model, 19)
        .a(identity.contactless ? "C" : " ", 1)
        .a(identity.osVersion, 20)
        .a(identity.specVersion, 4)
        .a(identity.manufacturerVersion, 16)
        .a(identity.serialNumber, 20);
    return fields;
}

Writer index_2(const Index2Info& info) {
    Writer fields;
    write_texts(fields, info.texts, {8, 12, 13, 4, 3});
    fields.n(info.number, 2);
    return fields;
}

Writer index_3(const Index3Info& info) {
    Writer fields;
    write_texts(fields, info.texts, {6, 4, 4, 3, 3, 13, 4, 2});
    fields.a(info.dukpt ? "T" : " ", 1).n(info.number, 2);
    return fields;
}

Writer acquirer(const AcquirerInfo& info) {
    Writer fields;
    write_texts(fields, info.texts, {20, 13, 4, 3});
    fields.n(info.number, 2);
    return fields;
}

}  // namespace

Answer gin(Call& call) {
    Reader fields = only_block(call);
    const auto index = static_cast<int>(fields.n("GIN_ACQIDX", 2));
    fields.end();
    switch (index) {
        case 0:
            return Answer::of(pin_pad_itself(call.device.identity));
        case 2:
            return Answer::of(index_2(call.device.index2));
        case 3:
            return Answer::of(index_3(call.device.index3));
        default:
            return Answer::of(acquirer(call.device.acquirer(index)));
    }
}

}  // namespace quorvel::sim::commands
