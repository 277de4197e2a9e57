// The HTTP channel without I/O: any template, message and reply.
#include "Fuzz.h"
#include "foundation/CodePage.h"
#include "foundation/Text.h"
#include "http/HttpSubmit.h"
#include "http/HttpVerdict.h"

#include <array>
#include <cstdlib>

namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"%MESSAGEDATAHEX8%", "%MESSAGEDATAHEX16%", "%MESSAGERECIPIENT%", "%MESSAGESENDER%", "%MESSAGEDATA%",
     "%MESSAGEDCS%", "%MESSAGEDCSHEX%", "%MESSAGEUDH%"});
constexpr char kMark = '\x01';  // before the number of a placeholder

// The template filled step by step as it is documented, in order; only that no step looks through what an
// earlier one has put in.
std::string InSteps(std::string text, const HttpFields& fields) {
    while (text.find("//") != std::string::npos) ReplaceAll(text, "//", "/");
    std::string mark{kMark, 'a'};
    for (const std::string_view name : kNames) {
        ReplaceAll(text, name, mark);
        ++mark.back();
    }
    for (mark.back() = 'a'; const std::string_view name : kNames) {
        ReplaceAll(text, mark, FillHttpTemplate(std::string(name), fields).url);
        ++mark.back();
    }
    return text;
}

void CheckTemplate(const std::string& text, const HttpFields& fields) {
    if (text.find(kMark) != std::string::npos) return;
    const HttpRequest request = FillHttpTemplate(text, fields);
    const bool isPost = text.find('?') != std::string::npos;
    if (InSteps(text, fields) != request.url + (isPost ? "?" : "") + request.body) std::abort();
    if (request.url.find('?') != std::string::npos) std::abort();
}

void CheckVerdict(const HttpProviderSettings& settings, std::string_view reply) {
    const ResultCode code = JudgeHttpReply(settings, reply);
    const auto has = [&](std::string_view text) { return reply.find(text) != std::string_view::npos; };
    if (has("ERR: 301") != (code == result::SmppNoCredits)) std::abort();
    if (code != result::Success) return;
    if (!settings.errorResponse.empty() && has(settings.errorResponse)) std::abort();
    if (!has(settings.successResponse)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first octet chooses format and character set, the others are seven texts.
    constexpr std::array<std::int32_t, 4> kFormats{0, 10, 11, 20};
    constexpr std::array<const char*, 4> kCharsets{"", "utf-8", "iso-8859-1", "windows-1252"};
    if (size == 0) return 0;
    std::vector<std::string_view> texts = Split(TextOf(data + 1, size - 1), "\x1E");
    texts.resize(7);
    HttpProviderSettings settings;
    settings.host = texts[0];
    settings.charset = kCharsets[data[0] >> 2 & 3];
    settings.urlText = settings.urlBinary = settings.urlUnicode = texts[1];
    settings.successResponse = texts[5];
    settings.errorResponse = texts[6];
    CSmsMessageX message;
    message.Format = kFormats[data[0] & 3];
    message.Recipient = texts[2];
    message.Sender = texts[3];
    message.Data = FromAnsi(texts[4]);
    HttpRequest request;
    if (BuildHttpRequest(settings, message, request) == result::Success &&
        request.url.find('?') != std::string::npos) {
        std::abort();
    }
    HttpFields fields{.recipient = std::string(texts[2]),
                      .sender = std::string(texts[3]),
                      .body = message.Data,
                      .alphabet = static_cast<Alphabet>(data[0] % 3),
                      .text = std::string(texts[4]),
                      .dcs = data[0],
                      .hasHeader = (data[0] & 8) != 0};
    CheckTemplate(std::string(texts[1]), fields);
    CheckVerdict(settings, texts[4]);
    return 0;
}
