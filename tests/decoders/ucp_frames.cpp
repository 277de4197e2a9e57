// Prints UCP frames with what went into them, a JSON object a line, for an independent decoder to read.
#include "Common/UcpTap/SMSCMessage.h"
#include "foundation/Hex.h"

#include <cstdio>
#include <string>

namespace {

struct Row {
    std::string recipient, originator, password;
    std::u16string text;
};

bool Print(const Row& row) {
    CSMSCMessage message;
    if (message.BuildUcp(row.recipient, row.originator, row.password, row.text) != result::Success)
        return false;
    std::string octets;
    for (const char16_t c : row.text) octets += static_cast<char>(c);
    std::printf(
        "{\"frame\": \"%s\", \"recipient\": \"%s\", \"originator\": \"%s\", \"password\": \"%s\", \"text\": "
        "\"%s\"}\n",
        hex::Of(message.Frame()).c_str(), row.recipient.c_str(), row.originator.c_str(), row.password.c_str(),
        hex::Of(octets).c_str());
    return true;
}

}  // namespace

int main() {
    std::u16string all;
    for (char16_t c = 0x20; c < 0x7F; ++c) all += c;
    for (const Row& row : {
             Row{"0612345678", "1234", "", u"Hi"},
             Row{"0612345678", "1234", "pw", u"Hi"},
             Row{"1", "", "", u""},
             Row{"+31612345678", "Me", "secret", all},
             Row{"0612345678", "6", "", u"Hi"},  // sums of one digit
             Row{"0612345678", "9", "", u"Hi"},
             Row{"0612345678", std::string(40, '7'), std::string(40, 'p'), std::u16string(160, u'x')},
         }) {
        if (!Print(row)) return 1;
    }
    // Every length and so, over them, every sum.
    for (std::size_t length = 0; length <= 160; ++length) {
        if (!Print({"0612345678", "1234", "", std::u16string(length, u'A')})) return 1;
    }
    return 0;
}
