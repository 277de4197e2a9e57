#include "Common/Wsp/WspContentTypes.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto kTypes = std::to_array<std::string_view>({
    "*/*",
    "text/*",
    "text/html",
    "text/plain",
    "text/x-hdml",
    "text/x-ttml",
    "text/x-vCalendar",
    "text/x-vCard",
    "text/vnd.wap.wml",
    "text/vnd.wap.wmlscript",
    "text/vnd.wap.wta-event",
    "multipart/*",
    "multipart/mixed",
    "multipart/form-data",
    "multipart/byterantes",  // so spelled: "multipart/byteranges" has no number here and goes out as text
    "multipart/alternative",
    "application/*",
    "application/java-vm",
    "application/x-www-form-urlencoded",
    "application/x-hdmlc",
    "application/vnd.wap.wmlc",
    "application/vnd.wap.wmlscriptc",
    "application/vnd.wap.wta-eventc",
    "application/vnd.wap.uaprof",
    "application/vnd.wap.wtls-ca-certificate",
    "application/vnd.wap.wtls-user-certificate",
    "application/x-x509-ca-cert",
    "application/x-x509-user-cert",
    "image/*",
    "image/gif",
    "image/jpeg",
    "image/tiff",
    "image/png",
    "image/vnd.wap.wbmp",
    "application/vnd.wap.multipart.*",
    "application/vnd.wap.multipart.mixed",
    "application/vnd.wap.multipart.form-data",
    "application/vnd.wap.multipart.byteranges",
    "application/vnd.wap.multipart.alternative",
    "application/xml",
    "text/xml",
    "application/vnd.wap.wbxml",
    "application/x-x968-cross-cert",
    "application/x-x968-ca-cert",
    "application/x-x968-user-cert",
    "text/vnd.wap.si",
    "application/vnd.wap.sic",
    "text/vnd.wap.sl",
    "application/vnd.wap.slc",
    "text/vnd.wap.co",
    "application/vnd.wap.coc",
    "application/vnd.wap.multipart.related",
    "application/vnd.wap.sia",
    "text/vnd.wap.connectivity-xml",
    "application/vnd.wap.connectivity-wbxml",
});
static_assert(kTypes.size() == 55);

}  // namespace

std::optional<std::uint8_t> wsp::ContentTypeNumber(std::string_view text) {
    const auto* const hit = std::ranges::find(kTypes, text);
    if (hit == kTypes.end()) return std::nullopt;
    return static_cast<std::uint8_t>(hit - kTypes.begin());
}

std::string_view wsp::ContentTypeText(std::uint64_t number) {
    return number < kTypes.size() ? kTypes[number] : std::string_view();
}

bool wsp::IsMultipart(std::string_view type) {
    return FindNoCase(type, "multipart/") == 0 || FindNoCase(type, "application/vnd.wap.multipart.") == 0;
}
