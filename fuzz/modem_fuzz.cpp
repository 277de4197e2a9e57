// The AT reply reader, the whole dialogue and waits for octets: a modem that says anything. No call may
// outlast its time-outs.
#include "Fuzz.h"
#include "foundation/serial/HearUntil.h"
#include "gsm/GsmModem.h"
#include "support/ScriptedModem.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    VirtualClock clock;
    ScriptedModem modem(clock);
    modem.Fragment(data[0] % 8);
    const std::string text(TextOf(data + 4, size - 4));
    const std::size_t half = text.size() / 2;
    modem.Otherwise((data[1] & 1) != 0 ? "\r\nOK\r\n" : text.substr(0, half));
    modem.On("AT+CPMS=?", {(data[1] & 2) != 0 ? "\r\n+CPMS: (\"SM\")\r\n\r\nOK\r\n" : text});
    modem.On("AT+CMGF=?", {(data[1] & 4) != 0 ? "\r\n+CMGF: (0)\r\n\r\nOK\r\n" : text});
    modem.On("AT+CMGL=1", {text});
    modem.On("AT+CMGL=0", {text.substr(half)});
    modem.On("AT+CNMI=?", {text});
    modem.On("AT+CPIN?", {text});
    CGsmModem gsm(modem, clock);
    gsm.settings.device = "COM1";
    gsm.settings.messageStorage = data[2] % 5;
    std::string reply;
    (void)gsm.Receive();
    (void)gsm.DeleteAllMessages(1);
    CSmsMessageX message;
    message.Recipient = "+31612345678";
    message.Data = u"text";
    message.RequestDeliveryStatus = (data[3] & 1) != 0;
    (void)gsm.Send(message, reply);
    (void)gsm.SendCommand("AT", 1000, reply);
    CSmsDeliveryReport report;
    (void)gsm.QueryStatus("1", report);
    (void)gsm.EnterPin("1234");
    CVrmComIO port(modem, clock);
    if (port.Open({.device = "COM1"}) != result::Success) std::abort();
    modem.Give(text);
    const auto before = clock.Slept();
    const std::string wanted = text.substr(half);
    const Hearing hearing = Hear(port, {.tries = 3, .read = 1000, .pause = 100, .text = wanted});
    if (clock.Slept() - before > 3200 || !text.starts_with(hearing.heard)) std::abort();
    port.Close();
    if (clock.Slept() > 3'600'000 || modem.openings != modem.closings) std::abort();
    return 0;
}
