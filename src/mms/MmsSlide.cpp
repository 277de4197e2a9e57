#include "mms/MmsSlide.h"

#include "foundation/BinaryFile.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Utf8.h"
#include "mms/MmsContentTypes.h"
#include "mms/NameToken.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t kTextPause = 50;
constexpr std::uint32_t kDrmPause = 10;
constexpr std::uint32_t kUtf8CodePage = 65001;

CMmsMessagePart NamedPart(std::string contentType, std::string_view name, std::string data) {
    CMmsMessagePart part;
    part.contentType = std::move(contentType);
    part.contentId.append("<").append(name).append(">");
    part.contentLocation = name;
    part.data = std::move(data);
    return part;
}

}  // namespace

// The dates of a permission stay, but nothing is protected by them any more.
void CMmsSlide::Clear() {
    slide_.duration = CMmsMessageSlide::kDuration;
    slide_.parts.clear();
    isProtected_ = false;
    permission_.Operation = permission_.Times = permission_.Days = 0;
}

void CMmsSlide::AddText(std::u16string_view text) {
    GetClock().Sleep(kTextPause);
    std::string octets = ToUtf8(text);
    octets.push_back('\0');  // has always gone with the text
    slide_.parts.push_back(NamedPart("text/plain", NameToken() + ".txt", std::move(octets)));
    slide_.parts.back().charset = kUtf8CodePage;
}

void CMmsSlide::Protect(CMmsPermission permission) {
    permission_ = std::move(permission);
    isProtected_ = true;
}

ResultCode CMmsSlide::AddAttachment(const std::string& file) {
    if (file.empty()) return result::Success;
    if (isProtected_) return AddProtected(file);
    auto data = ReadBinaryFile(file, kLargestMmsFile);
    if (!data || data->empty()) return result::MmsInvalidAttachment;
    AddAttachmentData(file, *std::move(data));
    return result::Success;
}

void CMmsSlide::AddAttachmentData(std::string_view file, std::string data) {
    if (file.empty()) return;
    slide_.parts.push_back(NamedPart(ContentTypeOfFile(file), BareFileName(file), std::move(data)));
}

ResultCode CMmsSlide::AddProtected(const std::string& file) {
    if (!CanReadFile(file)) return result::MmsInvalidAttachment;
    GetClock().Sleep(kDrmPause);
    const std::string token = NameToken();
    const std::string name(BareFileName(file));
    const std::string boundary = "drm-boundary-" + token;
    const std::string type = ContentTypeOfFile(file);
    const std::string contentId = name + '@' + token;
    slide_.parts.push_back(NamedPart(std::string(kDrmMessageType), name + ".dm",
                                     DrmMessage(permission_, {boundary, type, contentId})));
    slide_.parts.back().drmBoundary = boundary;
    return result::Success;
}

std::size_t CMmsSlide::Count(bool texts) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(slide_.parts, [texts](const auto& part) { return part.IsText() == texts; }));
}

const CMmsMessagePart* CMmsSlide::Find(bool texts, std::int32_t index) const {
    std::int64_t left = index;
    for (const CMmsMessagePart& part : slide_.parts) {
        if (part.IsText() == texts && left-- == 0) return &part;
    }
    return nullptr;
}

ResultCode CMmsSlide::Save(const CMmsMessagePart& attachment, const std::string& file) {
    return WriteBinaryFile(file, attachment.data) ? result::Success : result::MmsSaveFailed;
}
