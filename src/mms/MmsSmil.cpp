#include "mms/MmsSmil.h"

#include "foundation/Text.h"
#include "foundation/XmlText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::string_view kHead =
    "<smil>\r\n<head>\r\n<layout>\r\n"
    "<region id=\"Image\" height=\"100%\" width=\"100%\" fit=\"meet\" />\r\n"
    "<region id=\"Text\" height=\"100%\" width=\"100%\" fit=\"scroll\" />\r\n"
    "</layout>\r\n</head>\r\n<body>\r\n";
constexpr std::string_view kTail = "</body>\r\n</smil>\r\n";

// The first whose text stands in the content type counts. The elements name no region.
struct Element {
    std::string_view contentType;
    std::string_view start;
    std::string_view end;
};
constexpr auto kElements = std::to_array<Element>({
    {"text/plain", "<text src=\"", "\" />\r\n"},
    {"image", "<img src=\"", "\"  />\r\n"},  // two blanks, kept
    {"audio", "<audio src=\"", "\" />\r\n"},
    {"video", "<video src=\"", "\" />\r\n"},
    {"", "<ref src=\"", "\" />\r\n"},
});

void AddElement(std::string& smil, const CMmsMessagePart& part) {
    const auto* const element = std::ranges::find_if(
        kElements, [&part](const Element& row) { return ContainsNoCase(part.contentType, row.contentType); });
    smil.append(element->start).append(xml::Escape(part.contentLocation)).append(element->end);
}

}  // namespace

std::string SmilOf(const std::vector<CMmsMessageSlide>& slides) {
    std::string smil(kHead);
    for (const CMmsMessageSlide& slide : slides) {
        smil += "<par dur=\"" + std::to_string(slide.duration) + "s\">\r\n";
        for (const CMmsMessagePart& part : slide.parts) AddElement(smil, part);
        smil += "</par>\r\n";
    }
    return smil.append(kTail);
}
