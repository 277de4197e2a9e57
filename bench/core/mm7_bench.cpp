// Multimedia messages over MM7: bodies built, replies read.
#include "Measures.h"
#include "foundation/ErrorTexts.h"
#include "mms/Mm7Reply.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <cstring>
#include <string>

namespace {

// What the body of a message is held against. The copy lies elsewhere in its page: on some machines a copy to
// the same place runs at a tenth of the speed, and so does that of "of_memcpy".
void CopyPicture(benchmark::State& state) {
    constexpr std::size_t kElsewhere = 1024;
    const std::string picture(static_cast<std::size_t>(state.range(0)), 'x');
    std::string copy(picture.size() + kElsewhere, 'x');
    for (auto _ : state) {
        std::memcpy(copy.data() + kElsewhere, picture.data(), picture.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CopyPicture)->Arg(300 << 10);

// A message with one picture of so many octets.
void EncodeMm7(benchmark::State& state) {
    const std::string picture(static_cast<std::size_t>(state.range(0)), 'x');
    CMmsMessage message;
    message.Protocol = mms::asMMS_PROTOCOL_MM7;
    message.SetFrom("+31600000001");
    message.Subject = u"The subject";
    (void)message.AddRecipient("+31612345678", 0);
    CMmsSlide slide;
    slide.AddAttachmentData("picture.jpg", picture);
    message.AddSlide(slide.Slide());
    if (message.Encode() != result::Success) return state.SkipWithError("not encoded");
    measures::PerItem items(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(message.Encode());
        benchmark::DoNotOptimize(message.EncodedMessage.data());
    }
    items.Report(std::vector{picture}, state.iterations());
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(EncodeMm7)->Arg(200)->Arg(300 << 10)->Arg(10 << 20);

const char* const kReply =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<env:Envelope xmlns:env=\"http://schemas.xmlsoap.org/soap/envelope/\"><env:Header>"
    "<mm7:TransactionID "
    "xmlns:mm7=\"http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/REL-5-MM7-1-2\" "
    "env:mustUnderstand=\"1\">00000001</mm7:TransactionID></env:Header><env:Body>"
    "<mm7:SubmitRsp "
    "xmlns:mm7=\"http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/REL-5-MM7-1-2\">"
    "<mm7:MM7Version>5.3.0</mm7:MM7Version><mm7:Status><mm7:StatusCode>1000</mm7:StatusCode>"
    "<mm7:StatusText>Success</mm7:StatusText></mm7:Status><mm7:MessageID>041502073667</mm7:MessageID>"
    "</mm7:SubmitRsp></env:Body></env:Envelope>";

void ReadMm7(benchmark::State& state, const std::string& octets) {
    measures::PerItem items(state);
    for (auto _ : state) {
        const Mm7Reply reply = ReadMm7Reply(octets, 0);
        if (ResultOf(reply) != result::Success) return state.SkipWithError("not read");
        benchmark::DoNotOptimize(reply.messageId.data());
    }
    items.Report(std::vector{octets}, state.iterations());
}
void ReadMm7Plain(benchmark::State& state) { ReadMm7(state, kReply); }
void ReadMm7Multipart(benchmark::State& state) {
    ReadMm7(state, std::string("--b\r\nContent-Type: text/xml\r\n\r\n") + kReply + "\r\n--b--\r\n");
}
BENCHMARK(ReadMm7Plain);
BENCHMARK(ReadMm7Multipart);

}  // namespace
