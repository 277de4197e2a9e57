// Where a device keeps messages and reports, 3GPP TS 27.005 section 3.2.2.
#pragma once
#include "sms/SmsConstants.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct GsmStorage {
    unsigned bit;         // in sets of storages
    const char* name;     // in AT commands and storage keys
    const char* logName;  //
    std::int32_t choice;  // asSTORAGE_...
    unsigned covers;      // the storages that are not read when this one is
    bool reportsOnly;     // never holds messages
};

// In the order in which they are deleted from, and read.
inline constexpr auto kGsmStorages = std::to_array<GsmStorage>({
    {4, "MT", "COMBINED", sms::asSTORAGE_COMBINED, 1 | 2, false},
    {1, "SM", "SIM", sms::asSTORAGE_SIM, 0, false},
    {2, "ME", "DEVICE", sms::asSTORAGE_DEVICE, 0, false},
    {8, "SR", "REPORTS", sms::asSTORAGE_REPORTS, 1 | 2 | 4, true},
});

enum class StorageUse { kMessages, kReports };

// The set of the storages that a text names, in letters of either case.
unsigned StoragesNamed(std::string_view text);

// What an asSTORAGE_ choice has read: the storage chosen, else those that the device offers (a set of bits).
std::vector<const GsmStorage*> StoragesToRead(std::int32_t choice, StorageUse use, unsigned offered);

// "SIM" ..., or "AUTO" when the choice names no storage of that use.
const char* StorageLogName(std::int32_t choice, StorageUse use);

// Where a message lies: "SM0003;".
std::string StorageKey(const GsmStorage& storage, std::int32_t index);

// The index in such a key (its ";" may be missing); nothing when it is of another storage.
std::optional<std::int32_t> IndexOfKey(const GsmStorage& storage, std::string_view key);
