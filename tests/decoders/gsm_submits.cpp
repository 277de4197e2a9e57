// Prints PDUs of many kinds with what went into them, a JSON object a line, for an independent decoder to
// read.
#include "gsm/GsmCodec.h"

#include <cstdio>
#include <string>

namespace {

std::string Json(std::u16string_view text) {
    std::string out = "\"";
    char escape[8];
    for (const char16_t c : text) {
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
        out += escape;
    }
    return out + "\"";
}

struct Row {
    const char* recipient;
    const char* smsc;
    std::u16string body;
    std::int32_t format;
    std::int32_t validity;
    bool report;
    std::uint16_t port;
};

}  // namespace

int main() {
    std::u16string alphabet;
    for (char16_t c = 0x20; c < 0x7F; ++c) {
        if (c != u'`') alphabet += c;
    }
    alphabet +=
        u"\u00A3\u00A5\u00E8\u00E9\u00F9\u00EC\u00F2\u00C7\n\u00D8\u00F8\u00C5\u00E5\u0394\u03A6\u0393\u039B"
        u"\u03A9"
        u"\u03A0\u03A8\u03A3\u0398\u039E\u00C6\u00E6\u00DF\u00C9\u00A4\u00A1\u00C4\u00D6\u00D1\u00DC\u00A7"
        u"\u00BF\u20AC";
    std::u16string large;
    for (int i = 0; i < 500; ++i) large += static_cast<char16_t>(u'a' + i % 26);
    std::u16string wide;
    for (int i = 0; i < 200; ++i) wide += static_cast<char16_t>(0x4E00 + i);
    std::u16string octets;
    for (int i = 0; i < 300; ++i) {
        constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
        octets += {kDigits[static_cast<std::size_t>(i) >> 4 & 15], kDigits[static_cast<std::size_t>(i) & 15]};
    }
    CGsmCodec codec;
    for (const Row& row : {
             Row{"+31612345678", "", u"hellohello", 0, 0, false, 0},
             Row{"0612345678", "+31653131313", alphabet, 0, 1440, true, 0},
             Row{"N12345", "", u"x", 1, 5, false, 0},
             Row{"+31612345678", "", large, 2, 0, true, 0},
             Row{"+3161234567", "", large.substr(0, 161), 3, 0, false, 0},
             Row{"+31612345678", "", large, 2, 0, false, 2948},
             Row{"+31612345678", "", octets.substr(0, 280), 10, 0, false, 0},
             Row{"+31612345678", "", u"0605040B8423F0" + octets, 11, 0, false, 0},
             Row{"+31612345678", "", wide.substr(0, 70), 20, 635040, false, 0},
             Row{"+31612345678", "", wide, 22, 10080, true, 0},
             Row{"+31612345678", "", wide, 23, 0, false, 5000},
             Row{"+31612345678", "", u"short", 0, 0, false, 9200},
         }) {
        if (codec.Encode(
                {row.smsc, row.recipient, row.body, row.format, row.validity, row.report, row.port}) != 0)
            return 1;
        std::printf(
            "{\"to\": \"%s\", \"format\": %d, \"report\": %s, \"port\": %d, \"body\": %s, \"pdus\": "
            "\"%s\"}\n",
            row.recipient, row.format, row.report ? "true" : "false", row.port, Json(row.body).c_str(),
            codec.Text().c_str());
    }
    return 0;
}
