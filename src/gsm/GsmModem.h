// The GSM modem channel: sending, receiving, deleting and delivery reports over a GSM device.
// Every operation opens the device, works, and closes it again.
#pragma once
#include "foundation/ResultCode.h"
#include "frame/VrmBase.h"
#include "gsm/GsmCodec.h"
#include "gsm/GsmDevice.h"
#include "gsm/GsmStatusPdu.h"
#include "sms/SmsDeliveryReports.h"
#include "sms/SmsMessageX.h"
#include "sms/SmsMessagesX.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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
    ResultCode EnterPin(std::string_view pin) { return device_.EnterPin(settings, pin); }
    ResultCode SendCommand(std::string_view command, std::int32_t timeout, std::string& response) {
        return device_.SendCommand(settings, command, timeout, response);
    }

    // `references`: the modem's reference of each part, joined by ";" ("17;18;19"). A part for which the
    // modem gives none counts as sent.
    ResultCode Send(const CSmsMessageX& message, std::string& references);

    // Reads the chosen storages into the received messages: all that can be read, whatever fails. The code is
    // that of the first failure.
    ResultCode Receive();
    CSmsMessagesX& Received() { return received_; }

    ResultCode DeleteMessage(std::int32_t index);
    // MMS notifications stay on the device unless `all` is 1 or -1, which is a script's True.
    ResultCode DeleteAllMessages(std::int32_t all);

    // The report of a reference as Send returned it. For several parts: open while one part is; then the
    // first state that is not "Delivered", and the latest time. A final report leaves the store.
    ResultCode QueryStatus(std::string_view references, CSmsDeliveryReport& report);
    CSmsDeliveryReports& Reports() { return reports_; }

  private:
    ResultCode Initialise();
    ResultCode ChooseMode();

    ResultCode SendPdus(const CSmsMessageX& message, std::string& references);
    ResultCode SendPdu(std::string_view pdu, std::string& reference);
    ResultCode SendText(const CSmsMessageX& message, std::string& references);
    ResultCode RequestReports();

    ResultCode ReadStorages(StorageUse use);
    ResultCode ReadStorage(const GsmStorage& storage);
    bool TakeReport(const std::string& pdu);
    ResultCode DeleteKeys(std::string_view keys);

    CGsmDevice device_;
    CGsmCodec codec_;
    CSmsMessagesX received_;
    CSmsDeliveryReports reports_;
    bool pduMode_ = true;
    std::optional<std::int64_t> reportsReadAt_;
};
