// A multimedia message: sender, recipients, slides, and the unit that it is encoded as or decoded from.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/VrmBase.h"
#include "mms/MmsConstants.h"
#include "mms/MmsMessagePart.h"
#include "mms/MmsRecipients.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CMMSECodec;

// What a protocol object hands to the encoders of its channel.
struct MmsSettings {
    std::int32_t schema = mms::asMMS_SCHEMA_REL5_MM7_1_2;
    std::int32_t version = mms::asMMS_VERSION_5_2_0;
    std::int32_t variation = mms::asMMS_MM7VARIATION_3GPP;
    std::string vaspId;
    std::string vasId;
    std::string serviceCode;
};

// Everything that Clear puts back.
struct MmsMessageFields {
    std::string From;
    std::u16string Subject;
    std::int32_t Class = mms::asMMS_CLASS_PERSONAL;
    std::int32_t Priority = mms::asMMS_PRIORITY_NORMAL;
    std::int32_t ValidityPeriod = 0;  // minutes from the encoding; 0 = none
    bool RequestReadReceipt = false;
    bool RequestDeliveryReport = false;
    std::string TransactionId;
    std::string Boundary;        // of a body in MIME form: over MM7 the headers that go with it
    std::string EncodedMessage;  // octets
    MmsSettings Settings;
    std::array<CMmsRecipients, 3> Recipients;  // by asMMS_RECIPIENT_ constant
    std::vector<CMmsMessageSlide> Slides;
    std::int32_t NextSlideId = 1;
    std::string CustomSmil;
    CMmsMessagePart Smil;  // as it was last encoded
    std::int32_t FileFormat = mms::asMMS_MM1FILE_MSENDREQ;
    std::size_t SlideCursor = 0;
    std::size_t RecipientCursor = 0;
};

class CMmsMessage : public CVrmBase, public MmsMessageFields {
  public:
    explicit CMmsMessage(Clock& clock = SystemClock()) : CVrmBase("CMmsMessage", clock) {}

    // An asMMS_PROTOCOL_ constant; what is none encodes as MM1. Clear leaves it.
    std::int32_t Protocol = 0;

    void Clear() { static_cast<MmsMessageFields&>(*this) = {}; }

    // Tells numbers and internet addresses apart by "/TYPE=" behind them.
    void SetFrom(std::string from);
    void SetEncoded(std::string octets);

    // 0 (also for an empty text), 34131 for what is no address, 34130 for a list that there is not.
    ResultCode AddRecipient(std::string_view address, std::int32_t type);
    // 0, or 34160 and an empty text. All lists share one place: the first NextRecipient after FirstRecipient
    // gives the first once more, as it always has.
    ResultCode FirstRecipient(std::int32_t type, std::string& address);
    ResultCode NextRecipient(std::int32_t type, std::string& address);
    void ClearRecipients();

    // Copies the slide; one without parts only uses up its number.
    void AddSlide(const CMmsMessageSlide& slide);
    // Null when there is no further one.
    const CMmsMessageSlide* FirstSlide();
    const CMmsMessageSlide* NextSlide();

    // In the form that `Protocol` says. 0, 34130 without recipient, 34140 without slide; in MM1 and MM7 form
    // 34134 for a subject that is too long. A code leaves the encoded message as it was.
    ResultCode Encode();
    // What Encode gave last, until somebody empties it.
    std::optional<ResultCode> EncodeResult;
    // Takes what the encoded message says; of a damaged one what is whole, with 33763.
    ResultCode Decode();

    // Encodes as MM1, always, and writes; the codes of Encode, or 34151.
    ResultCode SaveToFile(const std::string& file, std::int32_t format);
    // Reads and decodes; 34137 for a file that cannot be read or has more than 64 MiB, or the codes of
    // Decode.
    ResultCode LoadFromFile(const std::string& file);
    // 34138 for a file that cannot be read or has more than 64 MiB.
    ResultCode LoadCustomSmil(const std::string& file);

  private:
    CMmsRecipients* ListOf(std::int32_t type);
    ResultCode RecipientAt(std::int32_t type, std::size_t index, std::string& address);
    ResultCode EncodeAs(std::int32_t protocol);
    void BuildSmil();
    void TakeFields(const CMMSECodec& unit);
    void TakeParts(const CMMSECodec& unit);
};
