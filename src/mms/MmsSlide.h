// One slide as a caller builds it: texts and attachments, and for how long they are shown.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/VrmBase.h"
#include "mms/MmsMessagePart.h"
#include "mms/MmsPermission.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class CMmsSlide : public CVrmBase {
  public:
    explicit CMmsSlide(Clock& clock = SystemClock()) : CVrmBase("CMmsSlide", clock) {}
    // One that stands in a message.
    explicit CMmsSlide(CMmsMessageSlide slide) : CVrmBase("CMmsSlide"), slide_(std::move(slide)) {}

    std::int32_t Duration() const { return slide_.duration; }  // seconds
    void SetDuration(std::int32_t seconds) { slide_.duration = seconds; }
    std::int32_t Id() const { return slide_.id; }
    const CMmsMessageSlide& Slide() const { return slide_; }

    void Clear();

    // Waits 50 ms, which is kept from when names came from the clock alone.
    void AddText(std::u16string_view text);

    // Every attachment from now on, until Clear, goes as a DRM message with this permission.
    void Protect(CMmsPermission permission);

    // 0 (also for an empty name), or 34137 when the file cannot be read, is empty or has more than 64 MiB. A
    // protected attachment waits 10 ms, for the same reason.
    ResultCode AddAttachment(const std::string& file);
    void AddAttachmentData(std::string_view file, std::string data);

    std::size_t AttachmentCount() const { return Count(false); }
    std::size_t TextCount() const { return Count(true); }

    // The index-th attachment or text, from 0; null when there is none.
    const CMmsMessagePart* Attachment(std::int32_t index) const { return Find(false, index); }
    const CMmsMessagePart* Text(std::int32_t index) const { return Find(true, index); }

    // 34151 when the file cannot be written.
    static ResultCode Save(const CMmsMessagePart& attachment, const std::string& file);

  private:
    ResultCode AddProtected(const std::string& file);
    std::size_t Count(bool texts) const;
    const CMmsMessagePart* Find(bool texts, std::int32_t index) const;

    CMmsMessageSlide slide_;
    CMmsPermission permission_;
    bool isProtected_ = false;
};

// The most octets that a file may have to be read into a message.
inline constexpr std::size_t kLargestMmsFile = std::size_t{64} << 20;
