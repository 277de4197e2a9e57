#include "foundation/XmlText.h"

std::string xml::Escape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            default: {
                const bool unfit =
                    static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\r' && c != '\n';
                out += unfit ? ' ' : c;
                break;
            }
        }
    }
    return out;
}
