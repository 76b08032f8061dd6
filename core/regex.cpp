// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/regex.h"

#include <regex.h>

#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

struct KorRegex {
    regex_t expression;
};

KorRegex* kor_regex_new(const char* pattern) {
    if (refuse_null(pattern, "Invalid regular expression")) { return nullptr; }
    auto* regex = static_cast<KorRegex*>(kor_heap_alloc(sizeof(KorRegex), 0));
    if (regex == nullptr) { return nullptr; }
    if (regcomp(&regex->expression, pattern, REG_EXTENDED | REG_NOSUB) != 0) {
        kor_heap_free(regex);
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid regular expression"), nullptr;
    }
    return regex;
}

void kor_regex_delete(KorRegex** regex) {
    if (regex == nullptr || *regex == nullptr) { return; }
    regfree(&(*regex)->expression);
    kor_heap_free(*regex);
    *regex = nullptr;
}

bool kor_regex_match(const char* text, const KorRegex* regex) {
    if (refuse_null(text, "'text' is NULL") || refuse_null(regex, "'regex' is NULL")) { return false; }
    const int result = regexec(&regex->expression, text, 0, nullptr, 0);
    if (result != 0 && result != REG_NOMATCH) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "regexec() error: %d", result), false;
    }
    return result == 0;
}

bool kor_regex_smatch(const char* text, const char* pattern) {
    bool matched = false;
    KorRegex* regex = nullptr;
    attempt([&] {
        regex = kor_regex_new(pattern);
        matched = kor_regex_match(text, regex);
    }).cleanup([&] {
          kor_regex_delete(&regex);
      }).run();
    return matched;
}
