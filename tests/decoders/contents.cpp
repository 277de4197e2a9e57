// Prints content messages and the submit PDUs that carry them, a JSON object a line, for an
// independent decoder to read.
#include "gsm/GsmCodec.h"
#include "sms/SmsConstants.h"
#include "smsdata/SmsDataMmsNotification.h"
#include "smsdata/SmsDataWapBookmark.h"
#include "smsdata/SmsDataWapPush.h"
#include "smsdata/SmsDatavCard.h"

#include <cstdio>
#include <string>

namespace {

bool Print(const char* kind, const std::string& encoded) {
    static CGsmCodec codec;
    const std::u16string body(encoded.begin(), encoded.end());
    if (codec.Encode({"", "+31612345678", body, sms::asMESSAGEFORMAT_DATA_UDH, 0, false, 0}) != 0)
        return false;
    std::printf("{\"kind\": \"%s\", \"encoded\": \"%s\", \"pdus\": \"%s\"}\n", kind, encoded.c_str(),
                codec.Text().c_str());
    return true;
}

}  // namespace

int main() {
    CSmsDataWapPush push;
    push.URL = "http://www.example.org/news";
    push.Description = "Hi";
    push.SignalReference = "n1";
    push.Encode();
    bool printed = Print("si", push.EncodedMessage);
    push.Description = std::string(300, 'd');
    push.Encode();
    printed = Print("si", push.EncodedMessage) && printed;
    push.URL = "https://example.org/";
    push.ConnectionType = sms::asWAPPUSH_SERVICE_LOAD;
    push.ExecuteAction = sms::asWAPPUSH_ACTION_CACHE;
    push.Encode();
    printed = Print("sl", push.EncodedMessage) && printed;

    CSmsDataWapBookmark bookmark;
    bookmark.Description = "Example";
    bookmark.URL = "http://www.example.org/";
    bookmark.Encode();
    printed = Print("bookmark", bookmark.EncodedMessage) && printed;

    CSmsDataMmsNotification notification;
    notification.From = "+31600000001";
    notification.Subject = "Photo";
    notification.Class = sms::asMMS_CLASS_INFORMATIONAL;
    notification.ContentLocation = "http://mmsc.example.org/1";
    notification.MessageSize = 1000;
    notification.TransactionId = "t42";
    notification.Encode();
    printed = Print("mms", notification.EncodedMessage) && printed;

    CSmsDatavCard card;
    card.Name = u"Bob";
    card.Phone = u"+31600000002";
    card.Encode();
    printed = Print("vcard", card.EncodedMessage) && printed;
    return printed ? 0 : 1;
}
