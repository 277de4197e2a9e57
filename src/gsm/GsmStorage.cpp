#include "gsm/GsmStorage.h"

#include "foundation/Text.h"

#include <algorithm>
#include <cstdio>

namespace {

bool Holds(const GsmStorage& storage, StorageUse use) {
    return use == StorageUse::kReports || !storage.reportsOnly;
}

const GsmStorage* Chosen(std::int32_t choice, StorageUse use) {
    const auto row = std::ranges::find(kGsmStorages, choice, &GsmStorage::choice);
    return row != kGsmStorages.end() && Holds(*row, use) ? &*row : nullptr;
}

}  // namespace

unsigned StoragesNamed(std::string_view text) {
    unsigned named = 0;
    for (const GsmStorage& row : kGsmStorages) {
        if (ContainsNoCase(text, row.name)) named |= row.bit;
    }
    return named;
}

std::vector<const GsmStorage*> StoragesToRead(std::int32_t choice, StorageUse use, unsigned offered) {
    if (const GsmStorage* const chosen = Chosen(choice, use)) return {chosen};
    unsigned covered = 0;
    for (const GsmStorage& row : kGsmStorages) {
        if ((offered & row.bit) != 0 && Holds(row, use)) covered |= row.covers;
    }
    std::vector<const GsmStorage*> read;
    for (const GsmStorage& row : kGsmStorages) {
        if ((offered & ~covered & row.bit) != 0 && Holds(row, use)) read.push_back(&row);
    }
    return read;
}

const char* StorageLogName(std::int32_t choice, StorageUse use) {
    const GsmStorage* const chosen = Chosen(choice, use);
    return chosen != nullptr ? chosen->logName : "AUTO";
}

std::string StorageKey(const GsmStorage& storage, std::int32_t index) {
    std::array<char, 24> key{};
    std::snprintf(key.data(), key.size(), "%s%04d;", storage.name, index);
    return key.data();
}

std::optional<std::int32_t> IndexOfKey(const GsmStorage& storage, std::string_view key) {
    const std::string_view name = storage.name;
    if (!key.starts_with(name)) return std::nullopt;
    return ToInt(key.substr(name.size()));
}
