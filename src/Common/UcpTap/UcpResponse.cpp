#include "Common/UcpTap/UcpResponse.h"

namespace {

constexpr char kStx = 0x02;
constexpr char kEtx = 0x03;
constexpr char kSeparator = '/';
constexpr int kFieldsBefore = 4;  // transaction, length, "R", number of the operation

UcpResult Meaning(char acknowledgement) {
    switch (acknowledgement) {
        case 'A':
        case 'a':
            return UcpResult::kAcknowledged;
        case 'N':
        case 'n':
            return UcpResult::kRefused;
        default:
            return UcpResult::kSyntaxError;
    }
}

// What stands behind the fields that come first; empty when there are too few.
std::string_view Answer(std::string_view content) {
    for (int field = 0; field < kFieldsBefore; ++field) {
        const std::size_t at = content.find(kSeparator);
        if (at == std::string_view::npos) return {};
        content.remove_prefix(at + 1);
    }
    return content;
}

// Ours, come back as an echo that the line has damaged: "01/00040/O/01/...".
bool IsOperation(std::string_view frame) {
    const std::size_t length = frame.find(kSeparator);
    if (length == std::string_view::npos) return false;
    const std::size_t kind = frame.find(kSeparator, length + 1);
    return kind != std::string_view::npos && frame.substr(kind + 1).starts_with("O/");
}

}  // namespace

UcpResponse::UcpResponse(std::string_view octets)
    : result_(octets.empty() ? UcpResult::kNothingReceived : UcpResult::kSyntaxError) {
    if (octets.size() < 2 || octets.front() != kStx || octets.back() != kEtx) return;
    const std::string_view answer = Answer(octets.substr(1, octets.size() - 2));
    if (answer.empty()) return;
    const UcpResult meaning = Meaning(answer.front());
    const std::size_t first = answer.find(kSeparator);
    if (meaning == UcpResult::kSyntaxError || first == std::string_view::npos) return;
    result_ = meaning;
    text_ = answer.substr(0, answer.find(kSeparator, first + 1));
}

UcpFrame FindUcpFrame(std::string_view heard) {
    for (;;) {
        const std::size_t begin = heard.find(kStx);
        if (begin == std::string_view::npos) return {heard};
        const std::size_t end = heard.find(kEtx, begin);
        if (end == std::string_view::npos) return {heard.substr(begin)};
        const std::size_t last = heard.rfind(kStx, end);  // those before it were noise
        const std::string_view frame = heard.substr(last, end + 1 - last);
        if (!IsOperation(frame)) return {frame, true};
        heard.remove_prefix(end + 1);
    }
}
