#include "mms/MmsContentTypes.h"

#include "foundation/RegisteredType.h"

#include <array>

namespace {

// Extensions, each followed by its type, except that "vcs" has lost its type to the next entry and the
// extension of "audio/wav" is missing: kept so. Whatever matches, what follows it counts, so that the entries
// behind that place work as well.
constexpr auto kEntries = std::to_array<std::string_view>({
    "aac",
    "audio/mp4",
    "amr",
    "audio/amr",
    "awb",
    "audio/amr-wb",
    "bmp",
    "image/bmp",
    "dcf",
    "application/vnd.oma.drm.content",
    "dm",
    "application/vnd.oma.drm.message",
    "emy",
    "text/x-emelody",
    "gif",
    "image/gif",
    "htm",
    "text/html",
    "html",
    "text/html",
    "ics",
    "text/calendar",
    "ime",
    "text/x-imelody",
    "imy",
    "text/x-imelody",
    "jad",
    "text/vnd.sun.j2me.app-descriptor",
    "jar",
    "application/java",
    "jpg",
    "image/jpeg",
    "jpeg",
    "image/jpeg",
    "mid",
    "audio/midi",
    "mmf",
    "application/vnd.smaf",
    "mms",
    "application/vnd.wap.mms-message",
    "mp3",
    "audio/mp3",
    "mp4",
    "audio/mp4",
    "png",
    "image/png",
    "rmf",
    "audio/rmf",
    "rng",
    "application/vnd.nokia.ringin-tone",
    "sis",
    "application/vnd.symbian.install",
    "smil",
    "application/smil",
    "smi",
    "application/smil",
    "svg",
    "image/svg+xml",
    "tif",
    "image/tiff",
    "tiff",
    "image/tiff",
    "txt",
    "text/plain",
    "vcf",
    "text/x-vcard",
    "vcs",
    "text/x-vcalendarwav",
    "audio/wav",
    "wbmp",
    "image/vnd.wap.wbmp",
    "wma",
    "audio/x-ms-wma",
    "wmlc",
    "application/vnd.wap.wmlc",
    "wml",
    "text/vnd.wap.wml",
    "3gp",
    "video/3gpp",
});
static_assert(kEntries.size() == 79);

// The last match counts.
std::string_view FromTable(std::string_view extension) {
    std::string_view type;
    for (std::size_t i = 0; i + 1 < kEntries.size(); ++i) {
        if (kEntries[i] == extension) type = kEntries[i + 1];
    }
    return type;
}

}  // namespace

std::string ContentTypeOfFile(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) return {};
    const std::string_view extension = name.substr(dot + 1);
    std::string type(FromTable(extension));
    if (type.empty()) type = RegisteredType(std::string(extension));
    return type.empty() ? "application/octet-stream" : type;
}

std::string_view BareFileName(std::string_view path) { return path.substr(path.rfind('\\') + 1); }
