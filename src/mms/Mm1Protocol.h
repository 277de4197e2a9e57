// The MM1 channel: multimedia messages as a handset sends and fetches them. A modem dials a packet data
// connection, and the provider's gateway on it leads to the MMS centre, which is spoken to over HTTP.
#pragma once
#include "foundation/ProviderFile.h"
#include "foundation/ResultCode.h"
#include "foundation/http/KorHttp.h"
#include "foundation/ras/KorRas.h"
#include "frame/VrmBase.h"
#include "gsm/GsmDevice.h"
#include "mms/Mm1Notifications.h"
#include "mms/Mm1Reply.h"
#include "mms/Mm1Settings.h"
#include "mms/MmsMessage.h"
#include "sms/SmsMessagesX.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CMm1Protocol : public CVrmBase {
  public:
    explicit CMm1Protocol(SerialOpener& opener, Clock& clock = SystemClock(),
                          std::unique_ptr<RasPlatform> ras = NewRasPlatform(),
                          std::unique_ptr<HttpTransport> http = NewHttpTransport());

    Mm1Settings settings;

    // Modem, connection and HTTP client write into the same files and hide the same passwords.
    void SetLogFile(const std::string& name) override;
    void SetActivityFile(const std::string& name) override;
    void HidePasswords(std::vector<std::string> passwords) override;

    // Back to the state after construction; a connection is hung up. Only the PIN that was last rejected
    // stays known.
    void Clear();

    // With the advanced setting "UseExistingConnection=1" the machine is in the provider's network already,
    // and nothing is dialled. 0; 33720 to 33723 for settings that are missing; 1020, 33711, 31600 to 31805,
    // 33710, or a code of the modem.
    ResultCode Connect();
    // 0 or 1020.
    ResultCode Disconnect();

    // Encodes the message and sends it from where it is encoded; 34141 without a message. 1020 or 33710
    // without a connection; 34133, 33720 to 33723; the codes of CMmsMessage::Encode, CKorHttp::Request and
    // ReadSendConf.
    ResultCode Send(CMmsMessage* message);

    // Fetches a message, and tells the centre that it has come. 22021 for what is no HTTP URL of up to 2048
    // characters; 1020, 33710, 33722, 33723, the codes of CKorHttp::Request and ReadRetrieveConf. With 33763
    // the message holds what could be read.
    ResultCode Retrieve(const std::string& contentLocation, CMmsMessage& message);

    // What the MMS centre said to the last message, and its id of that.
    const std::u16string& ProviderResponse() const { return providerResponse_; }
    const std::string& MessageId() const { return messageId_; }

    // Read the notifications in the modem's storages, all that can be read. While a dialled connection has
    // the modem, those that were read before count. The codes of CGsmDevice::AskStorages and List; the first
    // notification that there is comes without one.
    ResultCode FirstNotification(CSmsMessageX& message);
    ResultCode CountNotifications(std::size_t& count);
    CSmsMessagesX& Received() { return received_; }

    ResultCode EnterPin(std::string_view pin);
    ResultCode SendCommand(std::string_view command, std::int32_t timeout, std::string& response);

    // Provider files; the codes of ProviderFile.
    ResultCode LoadConfig(const std::string& file);
    ResultCode SaveConfig(const std::string& file);
    // Where the machine keeps them; empty when it does not say.
    static std::string ProvidersFolder();

  private:
    std::vector<ProviderRow> ProviderRows();
    GsmSettings ModemSettings() const;
    bool UsesExisting() { return AdvancedSetting("UseExistingConnection", 0) != 0; }
    void Guard() { GuardPasswords({settings.password}); }

    void LogSettings();
    ResultCode CheckSettings();
    ResultCode CheckGateway();
    ResultCode DialUp(std::optional<CGsmDevice::Session>& modem);
    bool IsUp();
    ResultCode PrepareModem(std::uint32_t& contextId);
    ResultCode InitialiseModem();
    ResultCode Dial(const RasEntry& entry);
    void AddRoute(const std::string& entry);
    ResultCode CheckLink();

    ResultCode Submit(CMmsMessage* message);
    ResultCode Fetch(const std::string& contentLocation, CMmsMessage& message);
    void Acknowledge(const std::string& contentLocation, const std::string& transactionId);
    ResultCode Post(const char* unit, std::string_view octets);
    ResultCode Request(const std::string& url, std::optional<std::string_view> body);
    void LogHex(std::string_view octets);
    void LogReply(const HttpReply& reply);
    void Take(Mm1Reply& reply);
    ResultCode Told(ResultCode code, const char* success, const char* failure, const char* last);
    void TellError(ResultCode code, const char* failure);
    void TellResult(ResultCode code, const char* last);

    ResultCode ReadNotifications();
    ResultCode ReadStorages();
    void KeepNotificationsOnly();

    CGsmDevice device_;
    CKorRas ras_;
    CKorHttp http_;
    CMm1Notifications notifications_;
    CSmsMessagesX received_;
    bool isOnExisting_ = false;  // connected, over a connection that the machine had
    std::u16string providerResponse_;
    std::string messageId_;
};
