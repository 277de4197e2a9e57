#include "gsm/GsmInbox.h"

#include "foundation/Text.h"
#include "gsm/AtValues.h"
#include "gsm/GsmPduSize.h"
#include "gsm/PDUDecode.h"

#include <optional>
#include <utility>

namespace {

constexpr unsigned kEvent = logmask::kActivity | logmask::kVerbatim;

// A PDU that lost its end on the line would be read with zeros in its place, and a report with a zero says
// "Delivered".
bool IsCut(CGsmDevice& device, const AtEntry& entry) {
    const GsmPduSize size = SizeOfPdu(entry.hexText);
    const std::vector<AtField> values = AtFields(entry.values);
    const bool isShort = values.size() > 1 && size.octets < size.needed &&
                         std::cmp_less(size.octets, ToInt(values.back().text));
    if (entry.whole && !isShort) return false;
    device.Log(kEvent, "Message at memory location [%d] was cut on its way, it stays on the device: [%s]\n",
               entry.number, entry.hexText.c_str());
    return true;
}

std::optional<CSmsMessageX> MessageIn(CGsmDevice& device, const AtEntry& entry, std::string key) {
    device.Log(kEvent, "Receiving message at memory location [%d]...\n", entry.number);
    CPDUDecode decoded(device.GetClock());
    if (!decoded.Decode(entry.hexText)) {
        device.Log(kEvent,
                   "Message at memory location [%d] cannot be decoded, it stays on the device: [%s]\n",
                   entry.number, entry.hexText.c_str());
        return std::nullopt;
    }
    CSmsMessageX message;
    message.Sender = std::move(decoded.originator);
    message.SMSC = std::move(decoded.serviceCentre);
    message.Data = std::move(decoded.body);
    message.Format = decoded.format;
    message.TimeSecs = decoded.timeSeconds;
    message.ReceivedTime = static_cast<std::int32_t>(device.GetClock().Now());
    message.Time = decoded.timeText;
    message.StorageLocation = std::move(key);
    message.SetSinglePart();
    message.UserDataHeader = std::move(decoded.header);
    message.TakeUserDataHeader();
    return message;
}

}  // namespace

ResultCode ReadInbox(CGsmDevice& device, const GsmStorage& storage, const GsmInboxUse& use) {
    return device.List(storage, [&](const AtEntry& entry) {
        if (IsCut(device, entry)) return;
        std::string key = StorageKey(storage, entry.number);
        if (use.isOther(entry.hexText, key)) return;
        if (auto message = MessageIn(device, entry, std::move(key))) use.take(*std::move(message));
    });
}
