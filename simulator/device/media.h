// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_MEDIA_H
#define QUORVEL_SIMULATOR_DEVICE_MEDIA_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "simulator/wire.h"
#include "wire/fields.h"

namespace quorvel::sim {

inline constexpr size_t kMediaNameWidth = 8;

// The files that hosts have loaded. What stands inside them is not looked at.
class Media {
public:
    struct File {
        uint8_t type = 0;
        Bytes bytes;

        bool operator==(const File&) const = default;
    };

    // By name.
    using Files = std::map<std::string, File>;

    // What a host says of a file before it sends it.
    struct Announcement {
        std::string name;
        uint32_t size = 0;
        uint16_t crc = 0;
        uint8_t type = 0;
    };

    [[nodiscard]] const Files& files() const noexcept { return files_; }
    [[nodiscard]] bool has(const std::string& name) const { return files_.contains(name); }

    void store(const std::string& name, File file);
    void remove(const std::string& name) { files_.erase(name); }

    // A load is not seen before it ends. One that begins takes the place of one that did not end.
    void begin(Announcement announcement);
    [[nodiscard]] bool loading() const noexcept { return load_.has_value(); }
    // Inside a load only. Nothing of a block that makes the file longer than announced, which is a LayoutError.
    void add(ByteView block);
    // Likewise. Ends the load in any case, with a LayoutError when the file is another one than announced.
    void end();

private:
    struct Load {
        Announcement announcement;
        Bytes bytes = {};
    };

    Files files_;
    std::optional<Load> load_;
};

// Read SPE_MFNAME, which is an A field in some commands and an S field in others.
[[nodiscard]] std::string media_name(Reader& value);
[[nodiscard]] std::string media_name_in_s(Reader& value);

}  // namespace quorvel::sim

#endif
