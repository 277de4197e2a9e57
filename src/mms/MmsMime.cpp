#include "mms/MmsMime.h"

namespace {

constexpr std::uint32_t kUtf8 = 65001;  // code page

}  // namespace

std::string mms::MimeTypeOf(const CMmsMessagePart& part) {
    if (part.contentType.empty()) return "application/octet-stream";
    if (!part.drmBoundary.empty()) return part.contentType + "; boundary=\"" + part.drmBoundary + '"';
    if (part.charset == kUtf8 && part.IsText()) return part.contentType + "; charset=\"utf-8\"";
    return part.contentType;
}
