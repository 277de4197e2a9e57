#include "mms/Mm1Reply.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/WspCharsets.h"
#include "foundation/ErrorTexts.h"
#include "foundation/OctetWriter.h"
#include "mms/MMSECodec.h"
#include "mms/MmsFields.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kOk = 0x80;         // of both statuses
constexpr std::uint32_t kRetrieved = 0x81;  // status of an m-notifyresp-ind

struct StatusRow {
    std::uint32_t status;
    ResultCode code;
};

// OMA MMS encapsulation chapters 7.2.27 and 7.2.29; what is not listed is 33761.
constexpr StatusRow kResponse[] = {
    {kOk, result::Success},
    {0x81, result::MmscError},
    {0x82, result::MmscDenied},
    {0x83, result::MmscCorrupt},
    {0x84, result::MmscSenderUnresolved},
    {0x85, result::MmscNotFound},
    {0x86, result::MmscNetwork},
    {0x87, result::MmscContentRefused},
    {0x88, result::MmscUnsupported},
};
// A message that is there may come without a status.
constexpr StatusRow kRetrieval[] = {
    {0, result::Success},         {kOk, result::Success},       {0xC0, result::MmscError},
    {0xC1, result::MmscNotFound}, {0xC2, result::MmscNetwork},  {0xE0, result::MmscError},
    {0xE1, result::MmscDenied},   {0xE2, result::MmscNotFound}, {0xE3, result::MmscUnsupported},
};

template <std::size_t Count>
ResultCode CodeOf(const StatusRow (&rows)[Count], std::uint32_t status) {
    const StatusRow* const row = std::ranges::find(rows, status, &StatusRow::status);
    return row != std::end(rows) ? row->code : result::MmscError;
}

// Where a unit's type has its status and its words.
struct Form {
    std::uint8_t type, status, text;
};
constexpr Form kSendConf{mms::type::kSendConf, mms::header::kResponseStatus, mms::header::kResponseText};
constexpr Form kRetrieveConf{mms::type::kRetrieveConf, mms::header::kRetrieveStatus,
                             mms::header::kRetrieveText};

// The code is that of the unit itself: whether it is one, and whole.
Mm1Reply Read(const Form& form, std::string_view octets) {
    Mm1Reply reply;
    CMMSECodec unit;
    reply.code = unit.Decode(octets);
    if (octets.empty()) {
        reply.code = result::HttpNoResponse;
    } else if (unit.MessageType() != form.type) {
        reply.code = result::HttpProviderUnknown;
    } else {
        const MmsField& text = unit.Field(form.text);
        reply.status = unit.Field(form.status).token;
        reply.text = wsp::WideText(text.text, text.charset);
        reply.messageId = unit.Field(mms::header::kMessageId).text;
        reply.transactionId = unit.Field(mms::header::kTransactionId).text;
    }
    return reply;
}

std::string Answer(std::uint8_t type, std::string_view transactionId, std::uint32_t status) {
    OctetWriter out(transactionId.size());
    WriteField(out, {.number = mms::header::kMessageType, .token = type});
    WriteField(out, {.number = mms::header::kTransactionId, .text = transactionId});
    WriteField(out, {.number = mms::header::kVersion, .token = mms::kVersion10});
    if (status != 0) WriteField(out, {.number = mms::header::kStatus, .token = status});
    return out.Take();
}

}  // namespace

Mm1Reply ReadSendConf(std::string_view octets) {
    Mm1Reply reply = Read(kSendConf, octets);
    const bool isClear =
        reply.code == result::Success || (reply.code == result::MmscCorrupt && reply.status != 0);
    if (isClear) reply.code = CodeOf(kResponse, reply.status);
    return reply;
}

Mm1Reply ReadRetrieveConf(std::string_view octets) {
    Mm1Reply reply = Read(kRetrieveConf, octets);
    const ResultCode refusal = CodeOf(kRetrieval, reply.status);
    if (refusal != result::Success) reply.code = refusal;
    return reply;
}

std::string AcknowledgeInd(std::string_view transactionId) {
    return Answer(mms::type::kAcknowledgeInd, transactionId, 0);
}
std::string NotifyRespInd(std::string_view transactionId) {
    return Answer(mms::type::kNotifyRespInd, transactionId, kRetrieved);
}
