// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/raised.h"

#include <array>
#include <ostream>

#include "quorvel/kor/exception.h"

namespace support {

namespace {

std::vector<Raised> returned;

void record(int16_t code, const char* message) { returned.push_back({code, message != nullptr ? message : ""}); }

// Apart from raised_by, so that no object with a destructor is alive across the longjmp.
void run_caught(void (*call)(void*), void* context, KorException* caught) {
    caught->error = KOR_RESULT_OK;
    caught->message[0] = '\0';
    KOR_TRY { call(context); }
    KOR_CATCH(KOR_RESULT_OK) { kor_exception_get(caught); }
    KOR_END_TRY;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Raised& raised) {
    return out << "code " << raised.code << " \"" << raised.message << '"';
}

Raised error(int16_t code, const std::string& detail) {
    static constexpr std::array kNames{
        "OK",           "RUNTIME_ERROR",     "ILLEGAL_ARGUMENT", "ILLEGAL_STATE",  "INDEX_OUT_OF_BOUNDS",
        "MALLOC_ERROR", "IO_ERROR",          "TIMEOUT_ERROR",    "FILE_NOT_FOUND", "ENCODING_ERROR",
        "DEVICE_BUSY",  "PERMISSION_DENIED", "PROTOCOL_ERROR",   "CRYPT_ERROR",
    };
    return {code, "[KOR_RESULT_" + std::string(kNames.at(static_cast<size_t>(code))) + "] " + detail};
}

std::vector<Raised> errors(int16_t code, std::initializer_list<const char*> details) {
    std::vector<Raised> all;
    for (const char* detail : details) { all.push_back(error(code, detail)); }
    return all;
}

Raised too_few(size_t requested, size_t available) {
    return error(kIo, "Buffer does not have enough data (requested: " + std::to_string(requested)
                          + ", available: " + std::to_string(available) + ")");
}

Raised too_full(size_t requested, size_t available) {
    return error(kIo, "No enough space in buffer (available: " + std::to_string(available)
                          + ", requested: " + std::to_string(requested) + ")");
}

Raised raised_by(void (*call)(void*), void* context) {
    KorException caught;
    run_caught(call, context, &caught);
    return {caught.error, caught.message};
}

ReturningRaises::ReturningRaises() {
    returned.clear();
    kor_exception_set_uncaught_handler(record);
}

ReturningRaises::~ReturningRaises() { kor_exception_set_uncaught_handler(nullptr); }

const std::vector<Raised>& ReturningRaises::all() const { return returned; }

}  // namespace support
