// What a receiver may do with an attachment, and the OMA DRM 1.0 message (combined delivery) that says so.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

struct CMmsPermission {
    std::int32_t Operation = 0;  // an asMMS_DRM_ constant
    std::int32_t Times = 0;      // how often; 0 = no limit
    std::int32_t Days = 0;       // how long; 0 = no limit
    std::string BeginDate;       // YYYY-MM-DD; counts together with EndDate, and then before the others
    std::string EndDate;
};

// A file as a DRM message names it.
struct DrmContent {
    std::string_view boundary;
    std::string_view contentType;
    std::string_view contentId;
};

// The whole message; its content section is empty.
std::string DrmMessage(const CMmsPermission& permission, const DrmContent& content);
