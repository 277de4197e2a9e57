// Results of the content builders per second.
#include "smsdata/SmsDataMmsNotification.h"
#include "smsdata/SmsDataWapBookmark.h"
#include "smsdata/SmsDataWapPush.h"
#include "smsdata/SmsDatavCard.h"

#include <benchmark/benchmark.h>

namespace {

void Fill(CSmsDataWapPush& content) {
    content.URL = "http://www.example.org/news/2026";
    content.Description = "A text with a link that the phone shows";
}
void Fill(CSmsDataWapBookmark& content) {
    content.URL = "http://www.example.org/news/2026";
    content.Description = "The name of a bookmark";
}
void Fill(CSmsDataMmsNotification& content) {
    content.From = "+31600000001";
    content.Subject = "The subject of a message";
    content.ContentLocation = "http://mmsc.example.org/12345678";
}
void Fill(CSmsDatavCard& content) {
    content.Name = u"Example;Eve";
    content.Phone = u"+31600000001";
    content.Email = u"eve@example.org";
}

template <class Content>
void BuildContent(benchmark::State& state) {
    Content content;
    Fill(content);
    for (auto _ : state) {
        content.Encode();
        benchmark::DoNotOptimize(content.EncodedMessage.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildContent<CSmsDataWapPush>);
BENCHMARK(BuildContent<CSmsDataWapBookmark>);
BENCHMARK(BuildContent<CSmsDataMmsNotification>);
BENCHMARK(BuildContent<CSmsDatavCard>);

}  // namespace
