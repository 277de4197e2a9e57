// A provider's URL template, and what it becomes with a message in it.
#pragma once
#include "sms/MessageFormats.h"

#include <cstdint>
#include <string>
#include <string_view>

// What the placeholders stand for; the texts are the caller's.
struct HttpFields {
    std::string_view recipient, sender;  // octets that go out percent-encoded
    std::u16string_view body;            // characters; of the binary formats one an octet
    Alphabet alphabet = Alphabet::kGsm;
    std::string_view text;  // of a text: its octets in the provider's character set
    std::uint8_t dcs = 0;   // data coding
    bool hasHeader = false;
};

struct HttpRequest {
    std::string url;
    std::string body;  // what is posted
};

// Of several slashes in a row one is left.
void MakeSlashesSingle(std::string& text);

// Fills "host[:port]/template". Every run of slashes in it becomes one. The first "?" ends the URL, and what
// follows is posted. Placeholders are found in the template alone and never in what others stand for; where
// two share a percent sign, the one that comes first in the list of placeholders is meant. No value holds a
// "?", a "/" or a line break.
HttpRequest FillHttpTemplate(std::string text, const HttpFields& fields);
