// Base64, and the mail that a multimedia message becomes.
#include "Measures.h"
#include "foundation/Base64.h"
#include "foundation/ErrorTexts.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <string>

namespace {

constexpr std::size_t kMessage = 300'000;  // octets

// In lines of 0 (none) or 76, into memory that is there.
void EncodeBase64(benchmark::State& state) {
    const std::string octets(static_cast<std::size_t>(state.range(1)), 'x');
    const auto line = static_cast<std::size_t>(state.range(0));
    std::string text;
    text.reserve(base64::EncodedSize(octets.size(), line));
    for (auto _ : state) {
        text.clear();
        base64::Append(text, octets, line);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(state.iterations() * state.range(1));
}
BENCHMARK(EncodeBase64)->Args({0, kMessage})->Args({76, kMessage})->Args({76, 57})->Args({76, 10 << 20});

// Against a plain copy of the attachment.
void EncodeMail(benchmark::State& state) {
    CMmsMessage message;
    message.SetFrom("+31600000001");
    message.Subject = u"The subject";
    (void)message.AddRecipient("+31612345678", 0);
    CMmsSlide slide;
    const std::vector<std::string> payload = {std::string(kMessage, 'x')};
    slide.AddAttachmentData("picture.jpg", payload[0]);
    message.AddSlide(slide.Slide());
    message.Protocol = mms::asMMS_PROTOCOL_MM4;
    if (message.Encode() != result::Success) return state.SkipWithError("not encoded");
    measures::PerItem items(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(message.Encode());
        benchmark::DoNotOptimize(message.EncodedMessage.data());
    }
    items.Report(payload, state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kMessage));
}
BENCHMARK(EncodeMail);

}  // namespace
