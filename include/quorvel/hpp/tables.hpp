// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_TABLES_HPP
#define QUORVEL_HPP_TABLES_HPP

#include <fstream>
#include <iterator>

#include "quorvel/hpp/session.hpp"

/// @file
/// Loading of tables and media files.

namespace quorvel {

/// How far a load has come: done and all, of records or bytes. It may throw, which ends the load.
using Progress = std::function<void(size_t done, size_t total)>;

/// The records of a load of tables.
class Tables {
public:
    /// A record as TLR has it, with its length in front. Throws Error, illegal_argument, for one whose length is not
    /// that.
    void add(std::string_view record) {
        constexpr size_t kHead = 3;
        size_t length = 0;
        for (size_t i = 0; i < kHead && i < record.size(); ++i) {
            length = length * 10 + static_cast<size_t>(record[i] - '0');
        }
        if (record.size() < kHead || length != record.size()) {
            detail::refuse_argument("a record begins with its length in three digits");
        }
        const bool full = batches_.empty() || batches_.back().records == kMostRecords
                          || batches_.back().text.size() + record.size() > kMostCharacters;
        if (full) { batches_.emplace_back(); }
        batches_.back().text += record;
        ++batches_.back().records;
        ++records_;
    }
    /// How many there are.
    [[nodiscard]] size_t records() const noexcept { return records_; }

    /// Loads them: TLI, TLR as often as it takes, TLE. Returns the answer to TLE or the first that is not OK. A load
    /// that ends before TLE, by an error or otherwise, is to be made again from its start: what of it counts already is
    /// the PIN pad's own affair.
    Answer<Nothing> load(Session& session, uint8_t acquirer, std::string_view version,
                         const Progress& progress = nullptr) const {
        auto answer = session.run(Tli{acquirer, version});
        size_t done = 0;
        for (const Batch& batch : batches_) {
            if (!answer.ok()) { return answer; }
            answer = session.run(Tlr{batch.text});
            done += batch.records;
            if (answer.ok() && progress) { progress(done, records_); }
        }
        return answer.ok() ? session.run(Tle{}) : answer;
    }

    /// GTS: the version for an acquirer.
    static Answer<std::string> version(Session& session, uint8_t acquirer) { return session.run(Gts{acquirer}); }

private:
    static constexpr size_t kMostRecords = 99;
    static constexpr size_t kMostCharacters = 997;

    struct Batch {
        std::string text;
        size_t records = 0;
    };
    std::vector<Batch> batches_;
    size_t records_ = 0;
};

/// The PIN pad's media files: images and sounds for its display.
class Media {
public:
    /// Loads a file: MLI, MLR as often as it takes, MLE. Returns the answer to MLE or the first that is not OK.
    static Answer<Nothing> put(Session& session, std::string_view name, uint8_t type, Bytes content,
                               const Progress& progress = nullptr) {
        if (content.size() > UINT32_MAX) { detail::refuse_argument("a media file is smaller than 2^32 bytes"); }
        constexpr size_t kBlock = 995;
        auto answer = session.run(Mli{name, static_cast<uint32_t>(content.size()), crc_of(content), type});
        for (size_t done = 0; answer.ok() && done < content.size();) {
            const Bytes block = content.subspan(done, std::min(kBlock, content.size() - done));
            answer = session.run(Mlr{block});
            done += block.size();
            if (answer.ok() && progress) { progress(done, content.size()); }
        }
        return answer.ok() ? session.run(Mle{}) : answer;
    }
    /// The same of a file on disk, which is read first. Throws Error, not_found, when it cannot be read.
    static Answer<Nothing> put_file(Session& session, std::string_view name, uint8_t type, const std::string& path,
                                    const Progress& progress = nullptr) {
        const std::vector<char> content = content_of(path);
        return put(session, name, type, detail::bytes_of({content.data(), content.size()}), progress);
    }

    /// The names of the files that the PIN pad has: LMF.
    static Answer<std::vector<std::string>> list(Session& session) { return session.run(Lmf{}); }
    /// Shows a file: DSI.
    static Answer<Nothing> show(Session& session, std::string_view name) { return session.run(Dsi{name}); }
    /// Deletes files: DMF.
    static Answer<Nothing> remove(Session& session, std::span<const std::string_view> names) {
        return session.run(Dmf{names});
    }

private:
    // Of a folder the stream throws what is no Error.
    static std::vector<char> content_of(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        try {
            if (file) { return {std::istreambuf_iterator<char>(file), {}}; }
        } catch (const std::ios_base::failure&) {}
        throw Error(ErrorCode::not_found, "[KOR_RESULT_FILE_NOT_FOUND] the file cannot be read");
    }
    static uint16_t crc_of(Bytes content) {
        uint16_t crc = 0;
        detail::call([&] { abecs_crc16(content.data(), content.size(), &crc); });
        return crc;
    }
};

}  // namespace quorvel

#endif
