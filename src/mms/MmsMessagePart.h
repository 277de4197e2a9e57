// One part of a multimedia message and one slide of parts; copies are deep.
#pragma once
#include "foundation/Text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A part that carries content and what a receiver may do with it, OMA DRM 1.0.
inline constexpr std::string_view kDrmMessageType = "application/vnd.oma.drm.message";

struct CMmsMessagePart {
    std::string contentType;
    std::string contentId;        // in angle brackets
    std::string contentLocation;  // the file name without a folder
    std::string drmBoundary;      // of a DRM message only
    std::string data;
    std::uint32_t charset = 0;  // code page of a text, else 0

    bool IsText() const { return ContainsNoCase(contentType, "text/plain"); }
};

struct CMmsMessageSlide {
    static constexpr std::int32_t kDuration = 5;

    std::int32_t id = 0;
    std::int32_t duration = kDuration;  // seconds
    std::vector<CMmsMessagePart> parts;
};
