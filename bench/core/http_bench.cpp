// Requests of the HTTP channel built per second: check, coding, template.
#include "http/HttpSubmit.h"

#include <benchmark/benchmark.h>

namespace {

constexpr const char* kTemplate =
    "cgi/"
    "send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%&dcs=%MESSAGEDCS%&coding=%"
    "MESSAGEDCSHEX%"
    "&udh=%MESSAGEUDH%";

void BuildRequest(benchmark::State& state) {
    HttpProviderSettings settings;
    settings.host = "gw.example.org";
    settings.port = 8080;
    settings.urlText = kTemplate;
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    message.Sender = "Example";
    for (int i = 0; i < 160; ++i) message.Data += u"The caf\u00E9 opens at 9 @ Main Street; "[i % 35];
    HttpRequest request;
    for (auto _ : state) {
        if (BuildHttpRequest(settings, message, request) != result::Success) {
            state.SkipWithError("refused");
            break;
        }
        benchmark::DoNotOptimize(request.body.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BuildRequest);

}  // namespace
