// The GSM modem channel: the AT dialogues of 3GPP TS 27.005 and 27.007 that send, receive, delete and ask.
// Every operation opens the device, works, and closes it again.
#pragma once
#include "foundation/ResultCode.h"
#include "foundation/serial/VrmComIO.h"
#include "frame/VrmBase.h"
#include "gsm/GsmCodec.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessageX.h"
#include "sms/SmsMessagesX.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the caller sets.
struct GsmSettings {
    std::string device;       // "COM1", or the name of a telephony line
    std::uint32_t speed = 0;  // bits per second; 0 = 115200
    std::string initString;   // an AT command sent first; empty = none
    std::int32_t flowControl = sms::asDEVICEFLOWCONTROL_DEFAULT;
    std::int32_t messageStorage = sms::asSTORAGE_ALL;  // where messages and reports are read from
    std::int32_t reportsStorage = sms::asSTORAGE_ALL;  // kept for the caller; reading goes by messageStorage
    std::string smsc;                                  // empty = the SIM's own
};

class CGsmModem : public CVrmBase {
  public:
    static constexpr char kReferenceSeparator = ';';

    explicit CGsmModem(SerialOpener& opener, Clock& clock = SystemClock());

    GsmSettings settings;

    void SetLogFile(const std::string& name) override;
    void SetActivityFile(const std::string& name) override;

    // Back to the state after construction; only the PIN that was last rejected stays known.
    void Clear();

    // All return a result code; see the class's own page of the reference for the codes of each.
    ResultCode EnterPin(std::string_view pin);
    ResultCode SendCommand(std::string_view command, std::uint32_t timeout, std::string& response);

    // `references`: the modem's reference of each part, joined by ";" ("17;18;19").
    ResultCode Send(const CSmsMessageX& message, std::string& references);

    // Reads the chosen storages into the received messages.
    ResultCode Receive();
    CSmsMessagesX& Received() { return received_; }

    ResultCode DeleteMessage(std::int32_t index);
    // MMS notifications stay on the device unless `all`.
    ResultCode DeleteAllMessages(bool all);

    // The report of a reference as Send returned it. For several parts: open while one part is; then the
    // first state that is not "Delivered", and the latest time. A final report leaves the store.
    ResultCode QueryStatus(std::string_view references, CSmsDeliveryReport& report);
    CSmsDeliveryReports& Reports() { return reports_; }

  private:
    class OpenDevice;  // closes the device at the end of an operation

    enum Storage : unsigned { kSim = 1, kDevice = 2, kCombined = 4, kReports = 8 };

    ResultCode Open();
    void Close();
    ResultCode Initialise();
    ResultCode ChooseMode();
    ResultCode Command(std::string_view command, std::string_view expected = {});
    ResultCode Command(std::string_view command, std::string_view expected, std::string& reply);

    ResultCode CheckPin(std::string_view pin);
    void WaitForRegistration();

    ResultCode SendPdus(const CSmsMessageX& message, std::string& references);
    ResultCode SendPdu(std::string_view pdu, std::string& reference);
    ResultCode SendText(const CSmsMessageX& message, std::string& references);
    ResultCode RequestReports();

    ResultCode ReadChosenStorages(bool reports);
    ResultCode ReadStorages(unsigned storages);
    ResultCode ReadStorage(const char* storage);
    ResultCode ListMessages(const char* storage, int status, std::string& reportKeys);
    void TakePdu(const std::string& pdu, const char* storage, std::int32_t index, std::string& reportKeys);
    ResultCode SelectStorage(std::string_view storage);
    ResultCode DeleteKeys(std::string_view keys);

    CVrmComIO port_;
    CGsmCodec codec_;
    CSmsMessagesX received_;
    CSmsDeliveryReports reports_;
    std::string rejectedPin_;
    unsigned offeredStorages_ = 0;
    bool pduMode_ = true;
    std::optional<std::int64_t> reportsReadAt_;
};

// What one value list of "+CNMI: (0-2),(0,1),..." offers: bit n for the value n (0 to 3).
unsigned ParseCnmiList(std::string_view list);
