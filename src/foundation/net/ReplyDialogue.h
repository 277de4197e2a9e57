// Dialogues of commands and replies over a stream: say a line, hear until the end of a reply. A protocol
// gives its manner of speaking and judges the replies.
#pragma once
#include "foundation/KorBase.h"
#include "foundation/net/Stream.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// How a protocol speaks.
struct DialogueManner {
    // The log lines of what is said and heard, `printf` style with one text, and their mask.
    const char* saidFormat;
    const char* heardFormat;
    unsigned logMask;

    // Whether replies are heard line by line, or as the octets come.
    enum class Unit { kLine, kOctets } unit;
    // Whether the reply ends with this line; or whether the octets that have come are a reply, behind which
    // nothing is heard.
    bool (*isEnd)(std::string_view piece);

    std::uint32_t sendTime;  // ms for a command to go out
    // ms in which no octet of it goes out, which end it sooner.
    std::uint32_t stillTime = Timer::kForever;
    // Octets only: ms that the next command waits for the end of the line in which a reply ended.
    std::uint32_t restOfLine;
    std::size_t longestLine;   // octets, about
    std::size_t largestReply;  // octets, about, dropped ones included
};

struct Reply {
    int outcome = tcp::kSuccess;      // of `tcp::`: why no whole reply was heard; -8 when it grew too large
    std::int32_t code = 0;            // the first number of the piece that ended the reply
    std::vector<std::string> pieces;  // its lines without their ends, or its octets as one piece
};

struct ReplyTimes {
    std::uint32_t piece;      // ms for each line, or for the octets
    std::uint32_t begin = 0;  // ms before that in which the reply may begin; lines only
    std::uint32_t whole = Timer::kForever;
};

// One connection's dialogue. Lines end with CR LF; those heard may end with LF alone. What has come behind a
// reply when the next command goes out is no answer to it and is dropped.
class ReplyDialogue {
  public:
    ReplyDialogue(Stream& stream, CKorBase& log, const DialogueManner& manner);

    // Says one line; line breaks and zeros in it become blanks, so that what a caller has handed in stays one
    // command. In the log `shown` stands for it, if given.
    int Say(std::string_view line);
    int Say(std::string_view line, std::string_view shown);
    // Says a text of many lines as it stands, and the end of its last one.
    int SayText(std::string_view text, std::string_view shown);

    Reply Hear(const ReplyTimes& times);

    // Says one line and hears the reply.
    Reply Ask(std::string_view line, const ReplyTimes& times);
    Reply Ask(std::string_view line, std::string_view shown, const ReplyTimes& times);

    // Hears the reply to what was said with this outcome.
    Reply HearAfter(int said, const ReplyTimes& times);

  private:
    int DropRest();
    void HearLines(const ReplyTimes& times, Reply& reply);
    void HearOctets(const ReplyTimes& times, Reply& reply);
    void LogText(const char* format, std::string_view text);

    Stream* stream_;
    CKorBase* log_;
    DialogueManner manner_;
    bool lineIsOpen_ = false;  // the last octets heard did not end a line
    bool wasHeard_ = false;    // a reply was, and nothing said since
};

// The first number in a text, whatever stands before it; 0 when there is none.
std::int32_t FirstNumber(std::string_view text);
