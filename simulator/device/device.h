// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_DEVICE_H
#define QUORVEL_SIMULATOR_DEVICE_DEVICE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "simulator/cards/card.h"
#include "simulator/cards/chip.h"
#include "simulator/device/media.h"
#include "simulator/device/tables.h"
#include "simulator/device/texts.h"
#include "simulator/device/transaction.h"
#include "simulator/keys/key_store.h"
#include "simulator/wire.h"

namespace quorvel::sim {

inline constexpr int kIndexCount = 100;

// What the PIN pad tells of itself, in the fields of GIN for index 0 and in the items of GIX.
struct Identity {
    std::string manufacturer = "QUORVEL";
    // What stands behind a ";" refines the model.
    std::string model = "VIRTUAL;SIM";
    bool contactless = true;
    std::string osVersion = "QSO 0.1.0";
    std::string specVersion = "2.12";
    std::string manufacturerVersion = "001.00 260101";
    std::string serialNumber = "QV00000001";
    std::string partNumber = "QV-SIM-1";
    std::string capabilities = "1111000000";
    std::string applicationVersion = "001.00 260101";
    std::string genericVersion = "001.00 260101";
    std::string kernelVersion = "4.3a";
    std::string contactlessVersion = "1.00";
    std::string mastercardVersion = "3.1.4";
    std::string visaVersion = "2.2";
    std::string amexVersion = "3.1";
    std::string discoverVersion = "1.0";
    std::string pureVersion = "2.1.7";
    // Lines and columns of text, then height and width in points.
    std::string textSize = "0416";
    std::string graphicSize = "01280160";
    std::string mediaSupport = "1110000000";
};

// GIN's other layouts: the texts in the order of their fields.
struct AcquirerInfo {
    std::array<std::string, 4> texts;
    unsigned number = 0;
};

struct Index2Info {
    std::array<std::string, 5> texts{"QUORVEL", "APPLICATION2", "001.00 260101", "0001", "A00"};
    unsigned number = 2;
};

struct Index3Info {
    std::array<std::string, 8> texts{"APP003", "0100", "0001", "A00", "B00", "001.00 260101", "0001", "01"};
    bool dukpt = true;
    unsigned number = 3;
};

// All that the PIN pad is and remembers.
struct Device {
    Identity identity;
    Index2Info index2;
    Index3Info index3;
    // Indexes that are not here tell about themselves what acquirer() makes up.
    std::map<int, AcquirerInfo> acquirers;
    KeyStore keys;
    Tables tables;
    uint32_t tableMemory = 262144;
    Media media;
    // The card in the chip reader.
    std::optional<Card> chip;
    // The one that was read last, by whatever command, in the chip reader or not.
    std::optional<Card> lastCard;
    std::optional<Transaction> transaction;
    uint64_t transactions = 0;
    // What GCR asked for last, so that it can go on after tables were loaded.
    std::optional<CardRequest> cardRequest;
    ChipReading lastChipReading = ChipReading::kGood;
    // What is left of each chip that has been in the reader, by card number: it stays so when the card comes again.
    std::map<std::string, int> pinTries;
    // Security modules in the slots from 1 on.
    std::map<int, Chip> modules;
    // Card numbers and tracks leave enciphered under it: 8 bytes for DES, 16 for triple DES. A session's end drops it.
    std::optional<Bytes> panKey;
    Language language = Language::kEnglish;
    std::function<std::chrono::system_clock::time_point()> clock = std::chrono::system_clock::now;
    // A host has had the card in the chip reader read, and has not asked for it to be taken out.
    bool owesCard = false;

    [[nodiscard]] AcquirerInfo acquirer(int index) const;
    void drop_pan_key();

    [[nodiscard]] std::string text(Text text) const { return text_of(text, language); }

    // Of the chip reader. A card takes the place of the one that is there.
    void insert(Card card);
    void remove_card();

    // One with a few keys, as it comes from the factory.
    [[nodiscard]] static Device standard();
};

}  // namespace quorvel::sim

#endif
