#include "foundation/Secrets.h"

#include "foundation/Base64.h"
#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace {

constexpr std::size_t kShortestInText = 4;
constexpr std::size_t kPercentSize = 3;  // "%2F"

// The octet that a percent-encoded text begins with, or -1.
int PercentOctet(std::string_view text) {
    int octet = -1;
    if (text.size() < kPercentSize || text.front() != '%') return octet;
    const char* const end = text.data() + kPercentSize;
    return std::from_chars(text.data() + 1, end, octet, 16).ptr == end ? octet : -1;
}

// How many characters of the text's start are the password, some of them percent-encoded; 0 when it is not
// there.
std::size_t EncodedLength(std::string_view text, std::string_view password) {
    std::size_t at = 0;
    for (const char c : password) {
        const std::string_view rest = text.substr(at);
        if (PercentOctet(rest) == static_cast<unsigned char>(c)) {
            at += kPercentSize;
        } else if (rest.starts_with(c) || (c == ' ' && rest.starts_with('+'))) {
            ++at;
        } else {
            return 0;
        }
    }
    return at;
}

constexpr std::size_t kBase64Unit = 3;  // octets that four characters stand for

// The characters that a password alone makes within the base64 of a longer text, so many octets (modulo 3)
// from its start: "name:password".
std::string InsideBase64(const std::string& password, std::size_t before) {
    const std::string text = std::string(before, '\0') + password;
    std::string encoded = base64::Encode(text);
    encoded.resize(text.size() / kBase64Unit * 4 + text.size() % kBase64Unit);
    return encoded.substr(before == 0 ? 0 : before + 1);
}

// The PIN, passwords of the SIM, and what locks it with them, 3GPP TS 27.007 sections 7.4, 7.5 and 8.3.
constexpr auto kPinCommands = std::to_array<std::string_view>({"+CPIN", "+CPWD", "+CLCK"});

// What is dialled to change or unblock a PIN, 3GPP TS 22.030 section 6.6: "**04*old*new*new#".
constexpr auto kPinCodes = std::to_array<std::string_view>({"*04*", "*042*", "*05*", "*052*"});

// "AT+CPIN...", or another of the commands with values, which also stand behind others: "AT;+CPIN=...".
bool HoldsPin(std::string_view spaced) {
    std::string line(spaced);  // blanks may stand anywhere in a command
    std::erase(line, ' ');
    if (ContainsNoCase(line, "AT+CPIN")) return true;
    const bool changesPin =
        ContainsNoCase(line, "ATD") && std::ranges::any_of(kPinCodes, [&](std::string_view code) {
            return line.find(code) != std::string::npos;
        });
    if (changesPin) return true;
    return std::ranges::any_of(kPinCommands, [&](std::string_view command) {
        const std::size_t at = FindNoCase(line, command);
        return at != std::string_view::npos && Trim(line.substr(at + command.size())).starts_with('=');
    });
}

}  // namespace

std::string MaskPin(std::string_view text) {
    std::string masked(text);
    for (std::size_t at = 0; at < masked.size();) {
        const std::size_t end = std::min(masked.find_first_of("\r\n", at), masked.size());
        const auto line = masked.begin() + static_cast<std::ptrdiff_t>(at);
        const auto lineEnd = masked.begin() + static_cast<std::ptrdiff_t>(end);
        if (HoldsPin({line, lineEnd})) std::replace_if(line, lineEnd, IsDigit, '*');
        at = end + 1;
    }
    return masked;
}

void Secrets::Set(std::vector<std::string> passwords) {
    passwords_ = std::move(passwords);
    std::erase(passwords_, std::string());
    encoded_.clear();
    const std::size_t count = passwords_.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string utf8 = ToUtf8(FromAnsi(passwords_[i]));
        if (utf8 != passwords_[i]) passwords_.push_back(utf8);
    }
    for (const std::string& password : passwords_) {
        if (password.size() < kShortestInText) continue;
        encoded_.push_back(base64::Encode(password));
        for (std::size_t before = 0; before < kBase64Unit; ++before) {
            encoded_.push_back(InsideBase64(password, before));
        }
    }
}

std::string Secrets::Shown(const std::string& password) const {
    return std::ranges::find(passwords_, password) != passwords_.end() ? std::string(kMask) : password;
}

// Of several passwords the longest, so that no rest of one is left.
std::size_t Secrets::LengthAt(std::string_view text) const {
    std::size_t longest = 0;
    for (const std::string& password : passwords_) {
        if (password.size() < kShortestInText) continue;
        const std::size_t plain = text.starts_with(password) ? password.size() : 0;
        longest = std::max({longest, plain, EncodedLength(text, password)});
    }
    for (const std::string& form : encoded_) {
        if (text.starts_with(form)) longest = std::max(longest, form.size());
    }
    return longest;
}

void Secrets::Mask(std::string& text, std::size_t from) const {
    if (passwords_.empty()) return;
    std::string masked = text.substr(0, from);
    for (std::size_t at = masked.size(); at < text.size();) {
        if (const std::size_t length = LengthAt(std::string_view(text).substr(at)); length != 0) {
            masked += kMask;
            at += length;
        } else {
            masked += text[at++];
        }
    }
    text = std::move(masked);
}
