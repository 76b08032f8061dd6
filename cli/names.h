// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_NAMES_H
#define QUORVEL_CLI_NAMES_H

#include <string>
#include <vector>

#include "cli/library.h"

namespace quorvel::cli {

// A list of texts that the library fills or reads.
class Names {
public:
    Names() : list_(call([] { return kor_string_list_new(); })) {}
    ~Names() { kor_string_list_delete(&list_); }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;

    [[nodiscard]] KorList* get() const noexcept { return list_; }

    void add(const std::string& name) {
        call([&] { kor_string_list_append(list_, name.c_str()); });
    }

    [[nodiscard]] std::vector<std::string> all() const {
        std::vector<std::string> names;
        for (auto* node = kor_string_list_first(list_); node != nullptr; node = kor_string_list_next(node)) {
            names.emplace_back(kor_string_list_item(node));
        }
        return names;
    }

private:
    KorList* list_;
};

}  // namespace quorvel::cli

#endif
