// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_SCREEN_H
#define QUORVEL_SIMULATOR_DEVICE_SCREEN_H

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace quorvel::sim {

// What the PIN pad shows. Safe from any thread.
class Screen {
public:
    // `changed` is called after each show(), on its thread.
    explicit Screen(std::function<void()> changed = {}) : changed_(std::move(changed)) {}

    struct Content {
        // Lines end with CR.
        std::string text = {};
        std::vector<std::string> menu = {};
        // The menu's option that enter chooses, counted from 1; 0 when there is no menu.
        size_t selected = 0;
        // What was typed; of a PIN only how many digits.
        std::string typed = {};
        // The name of the media file.
        std::string media = {};

        bool operator==(const Content&) const = default;
    };

    void show(Content content) {
        {
            const std::lock_guard lock(mutex_);
            content_ = std::move(content);
        }
        if (changed_) { changed_(); }
    }

    [[nodiscard]] Content content() const {
        const std::lock_guard lock(mutex_);
        return content_;
    }

private:
    const std::function<void()> changed_;
    mutable std::mutex mutex_;
    Content content_;
};

}  // namespace quorvel::sim

#endif
