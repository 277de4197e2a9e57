#include "foundation/net/ReplyDialogue.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::size_t kReadSize = 256;
constexpr char kReturn = '\r';
constexpr char kLineFeed = '\n';

}  // namespace

std::int32_t FirstNumber(std::string_view text) {
    const auto* const digit = std::ranges::find_if(text, IsDigit);
    return digit != text.end() ? ToInt(text.substr(static_cast<std::size_t>(digit - text.begin()))) : 0;
}

ReplyDialogue::ReplyDialogue(Stream& stream, CKorBase& log, const DialogueManner& manner)
    : stream_(&stream), log_(&log), manner_(manner) {
    stream_->SetTerminator(std::string(1, kLineFeed));
    stream_->SetLongestLine(manner_.longestLine);
}

void ReplyDialogue::LogText(const char* format, std::string_view text) {
    log_->Log(manner_.logMask, format, std::string(text).c_str());
}

int ReplyDialogue::Say(std::string_view line) {
    const std::string one = OneLine(line);
    return SayText(one, one);
}

int ReplyDialogue::Say(std::string_view line, std::string_view shown) {
    return SayText(OneLine(line), shown);
}

int ReplyDialogue::SayText(std::string_view text, std::string_view shown) {
    LogText(manner_.saidFormat, shown);
    if (std::exchange(wasHeard_, false)) {
        if (const int outcome = DropRest(); outcome != tcp::kSuccess) return outcome;
    }
    return stream_->SendLine(std::string(text) + kReturn, manner_.sendTime, manner_.stillTime);
}

// Reads away what lies behind the last reply, and waits for the rest of its line.
int ReplyDialogue::DropRest() {
    const Timer rest(stream_->GetClock(), lineIsOpen_ ? manner_.restOfLine : 0);
    std::array<char, kReadSize> buffer{};
    for (std::size_t dropped = 0; dropped < manner_.largestReply;) {
        std::size_t received = 0;
        const std::uint32_t time = lineIsOpen_ ? rest.Remaining() : 0;
        const int outcome = stream_->ReceiveWithin(buffer.data(), buffer.size(), time, received);
        if (outcome == tcp::kTotalTimedOut) return tcp::kSuccess;
        if (outcome != tcp::kSuccess) return outcome;
        lineIsOpen_ = manner_.unit == DialogueManner::Unit::kOctets && buffer[received - 1] != kLineFeed;
        dropped += received;
    }
    // A reply in lines was given up as too large: what is left of it does not keep a farewell back.
    return manner_.unit == DialogueManner::Unit::kLine ? tcp::kSuccess : tcp::kBufferFull;
}

Reply ReplyDialogue::Hear(const ReplyTimes& times) {
    Reply reply;
    if (manner_.unit == DialogueManner::Unit::kLine) {
        HearLines(times, reply);
    } else {
        HearOctets(times, reply);
    }
    wasHeard_ = true;
    if (reply.outcome == tcp::kSuccess) reply.code = FirstNumber(reply.pieces.back());
    return reply;
}

Reply ReplyDialogue::HearAfter(int said, const ReplyTimes& times) {
    if (said == tcp::kSuccess) return Hear(times);
    Reply none;
    none.outcome = said;
    return none;
}

Reply ReplyDialogue::Ask(std::string_view line, const ReplyTimes& times) {
    return HearAfter(Say(line), times);
}

Reply ReplyDialogue::Ask(std::string_view line, std::string_view shown, const ReplyTimes& times) {
    return HearAfter(Say(line, shown), times);
}

void ReplyDialogue::HearLines(const ReplyTimes& times, Reply& reply) {
    const Timer whole(stream_->GetClock(), times.whole);
    (void)stream_->WaitForData(std::min(times.begin, times.whole));
    for (std::size_t size = 0; size < manner_.largestReply;) {
        std::string line;
        const std::uint32_t time = std::min(times.piece, whole.Remaining());
        reply.outcome = stream_->ReceiveLine(line, time, Timer::kForever);
        if (reply.outcome != tcp::kSuccess) return;
        if (line.ends_with(kReturn)) line.pop_back();
        LogText(manner_.heardFormat, line);
        size += line.size() + 1;
        reply.pieces.push_back(std::move(line));
        if (manner_.isEnd(reply.pieces.back())) return;
    }
    reply.outcome = tcp::kBufferFull;
}

void ReplyDialogue::HearOctets(const ReplyTimes& times, Reply& reply) {
    const Timer deadline(stream_->GetClock(), std::min(times.piece, times.whole));
    std::string octets;
    std::array<char, kReadSize> buffer{};
    while (reply.outcome == tcp::kSuccess && !manner_.isEnd(octets)) {
        std::size_t received = 0;
        if (deadline.Expired()) {
            reply.outcome = tcp::kTotalTimedOut;
        } else if (octets.size() >= manner_.largestReply) {
            reply.outcome = tcp::kBufferFull;
        } else {
            reply.outcome =
                stream_->ReceiveWithin(buffer.data(), buffer.size(), deadline.Remaining(), received);
            octets.append(buffer.data(), received);
        }
    }
    lineIsOpen_ = !octets.empty() && octets.back() != kLineFeed;
    if (reply.outcome == tcp::kSuccess) LogText(manner_.heardFormat, octets);
    if (!octets.empty()) reply.pieces.push_back(std::move(octets));
}
