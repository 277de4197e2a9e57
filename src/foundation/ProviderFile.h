// The settings of a channel in a provider file ("[Provider]", "ServerPort=2775"): one row a setting, which
// loading and saving both walk. Rows name the fields themselves, whatever structure they belong to.
#pragma once
#include "foundation/ResultCode.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <variant>

struct ProviderRow {
    // A setting that is no plain field.
    struct Access {
        std::function<std::string()> get;
        std::function<void(const std::string&)> set;
    };

    const char* section;
    const char* key;
    std::variant<std::string*, std::int32_t*, bool*, Access> field;  // a flag is 0 or 1
};

// A setting whose key the file lacks stays as it is, and so does a number or flag whose value is none.
// 0; 33050 when there is no such file, 33051 when it holds nothing in any of the sections: no setting is
// changed then.
ResultCode LoadProviderFile(const std::string& file, std::span<const ProviderRow> rows);

// Puts the settings into the file in the order of the rows; what else it holds stays. 0 or 33052.
ResultCode SaveProviderFile(const std::string& file, std::span<const ProviderRow> rows);
