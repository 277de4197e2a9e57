// Encoding and decoding multimedia messages.
#include "Measures.h"
#include "foundation/ErrorTexts.h"
#include "mms/MMSECodec.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"

#include <memory>

namespace {

// A message of so many parts of so many octets.
std::unique_ptr<CMmsMessage> MessageOf(std::int64_t parts, std::int64_t octets) {
    auto message = std::make_unique<CMmsMessage>();
    message->SetFrom("+31600000001");
    message->Subject = u"The subject";
    (void)message->AddRecipient("+31612345678", 0);
    CMmsSlide slide;
    for (std::int64_t i = 0; i < parts; ++i) {
        slide.AddAttachmentData("picture" + std::to_string(i) + ".jpg",
                                std::string(static_cast<std::size_t>(octets), 'x'));
    }
    message->AddSlide(slide.Slide());
    return message;
}

// Every run of `work` against the copy of its payload, in one: "of_memcpy" is how many times as long it
// takes.
template <class Work>
void Measure(benchmark::State& state, Work work) {
    const auto message = MessageOf(state.range(0), state.range(1));
    if (message->Encode() != result::Success) return state.SkipWithError("not encoded");
    const std::vector<std::string> payload = {
        std::string(static_cast<std::size_t>(state.range(0) * state.range(1)), 'x')};
    measures::PerItem items(state);
    for (auto _ : state) work(*message);
    items.Report(payload, state.iterations());
    state.SetBytesProcessed(state.iterations() * state.range(0) * state.range(1));
}

// How many times the payload a message and its first encoding hold at the most.
double MemoryOfEncoding(std::int64_t parts, std::int64_t octets) {
    const std::int64_t before = measures::Octets();
    const auto message = MessageOf(parts, octets);
    measures::ForgetMostOctets();
    if (message->Encode() != result::Success) return 0;
    return static_cast<double>(measures::MostOctets() - before) / static_cast<double>(parts * octets);
}

void EncodeMms(benchmark::State& state) {
    state.counters["memory"] = MemoryOfEncoding(state.range(0), state.range(1));
    Measure(state, [](CMmsMessage& message) {
        benchmark::DoNotOptimize(message.Encode());
        benchmark::DoNotOptimize(message.EncodedMessage.data());
    });
}

// Down to the parts that the message holds.
void DecodeMms(benchmark::State& state) {
    Measure(state, [](CMmsMessage& message) {
        benchmark::DoNotOptimize(message.Decode());
        benchmark::DoNotOptimize(message.Slides.data());
    });
}

// As far as the unit's own octets.
void ReadMms(benchmark::State& state) {
    CMMSECodec unit;
    Measure(state,
            [&unit](CMmsMessage& message) { benchmark::DoNotOptimize(unit.Decode(message.EncodedMessage)); });
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Args({1, 200})->Args({3, 100 << 10});  // small ones, and the usual one
    for (const std::int64_t parts : {1, 14, 126}) benchmark->Args({parts, 1 << 10});  // growth with parts
    for (const std::int64_t size : {100 << 10, 1 << 20, 10 << 20})
        benchmark->Args({1, size});  // with the payload
}
BENCHMARK(EncodeMms)->Apply(Sizes);
BENCHMARK(DecodeMms)->Apply(Sizes);
BENCHMARK(ReadMms)->Apply(Sizes);

}  // namespace
