// The XML reader, alone and as the reader of replies over MM7.
#include "Fuzz.h"
#include "foundation/Utf8.h"
#include "foundation/XmlReader.h"
#include "foundation/XmlText.h"
#include "mms/Mm7Reply.h"

#include <cstdlib>
#include <string>

namespace {

using Token = xml::Reader::Token;

// Every piece is part of the document, so that the texts together are no longer than what stands there. The
// pieces of a document, each as one text.
std::string Walk(std::string_view document, std::size_t& textLength) {
    xml::Reader reader(document, {.depth = 50, .attributes = 20});
    std::string seen;
    textLength = 0;
    while (true) {
        switch (reader.Next()) {
            case Token::kStart:
                seen += "<" + std::string(reader.Name()) + ">";
                if (reader.Depth() > 50 || reader.LocalName().size() > reader.Name().size()) std::abort();
                (void)reader.Attribute(reader.Name());
                break;
            case Token::kEnd:
                seen += "</" + std::string(reader.Name()) + ">";
                break;
            case Token::kText:
                textLength += reader.Text().size();
                if (!IsUtf8(reader.Text())) std::abort();
                seen += xml::Escape(reader.Text());
                break;
            case Token::kDone:
                if (reader.Depth() != 0) std::abort();
                return seen;
            case Token::kFault:
                if (reader.WhatIsWrong() == xml::Reader::Fault::kNone || reader.Next() != Token::kFault)
                    std::abort();
                return {};
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document = TextOf(data, size);
    std::size_t textLength = 0;
    const std::string seen = Walk(document, textLength);
    // Characters of other sets have three octets at the most where they had one.
    if (textLength > 3 * size) std::abort();
    // What was read, written again, reads the same.
    std::size_t again = 0;
    if (!seen.empty() && seen.find('\r') == std::string::npos && Walk(seen, again) != seen) std::abort();
    const Mm7Reply reply = ReadMm7Reply(document, static_cast<std::int32_t>(size % 3));
    if (reply.statusText.find('\n') != std::string::npos || reply.messageId.size() > 3 * size) std::abort();
    (void)ResultOf(reply);
    return 0;
}
