// SmsMessage: what it holds, and how a protocol reads it: our own directly, any other through its properties.
// What was read is told by the PDU that a server gets.
// clang-format off
#include <winsock2.h>  // before windows.h
// clang-format on

#include "Com.h"
#include "Elsewhere.h"

#include <gtest/gtest.h>

namespace {

TEST(SmsMessage, HoldsItsDefaultsAndAnyValue) {
    const auto message = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    for (int round = 0; round < 2; ++round) {
        Bstr text;
        message->get_Time(text.out());
        EXPECT_EQ(text.str(), L"n/a");
        for (const auto& [name, value] : {std::pair{L"PID", -1L},
                                          {L"DCS", -1L},
                                          {L"ESM", -1L},
                                          {L"SourceTON", -1L},
                                          {L"DestinationNPI", -1L},
                                          {L"Format", 0L},
                                          {L"ValidityPeriod", 0L},
                                          {L"TimeSecs", 0L},
                                          {L"RequestDeliveryStatus", 0L}}) {
            Variant outcome;
            ASSERT_EQ(Call(message.get(), name, DISPATCH_PROPERTYGET, {}, &outcome), S_OK);
            EXPECT_EQ(outcome.lVal, value) << name;
        }
        for (const wchar_t* name : {L"PID", L"Format", L"TimeSecs", L"ValidityPeriod"}) {
            ASSERT_EQ(Call(message.get(), name, DISPATCH_PROPERTYPUT, {Variant(LONG_MIN)}, nullptr), S_OK);
            Variant outcome;
            Call(message.get(), name, DISPATCH_PROPERTYGET, {}, &outcome);
            EXPECT_EQ(outcome.lVal, LONG_MIN);
        }
        message->put_RequestDeliveryStatus(5);
        LONG wanted = 0;
        message->get_RequestDeliveryStatus(&wanted);
        EXPECT_EQ(wanted, -1);
        for (const std::wstring& value : {std::wstring(L"a\0b", 3), std::wstring(65536, L'n'), std::wstring(),
                                          std::wstring(L"\xD800 lone surrogate")}) {
            message->put_Data(Bstr(value));
            message->get_Data(text.out());
            EXPECT_EQ(text.str(), value);
            message->put_Sender(Bstr(value));
            message->get_Sender(text.out());
            EXPECT_EQ(text.str().size(), value.size());
        }
        message->put_Time(Bstr(L"later"));
        message->Clear();
    }
}

// A server that accepts every message of one connection and keeps the bodies of the submit_sm PDUs.
class Server {
  public:
    Server() {
        WSADATA data;
        ::WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        ::listen(listener_, 1);
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { Serve(); });
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() {
        ::closesocket(listener_);
        if (thread_.joinable()) thread_.join();
        ::WSACleanup();
    }

    LONG Port() const { return port_; }
    // Waits for the end of the connection.
    std::vector<std::string> Submits() {
        thread_.join();
        return submits_;
    }

  private:
    void Serve() {
        const SOCKET client = ::accept(listener_, nullptr, nullptr);
        for (std::string header(16, '\0'); Read(client, header);) {
            const auto number = [&header](std::size_t at) {
                std::uint32_t value = 0;
                for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(header[at++]);
                return value;
            };
            std::string body(number(0) - header.size(), '\0');
            if (!Read(client, body)) break;
            const std::uint32_t command = number(4);
            if (command == 4) submits_.push_back(body);
            const std::string answer = command == 4 ? std::string("1", 2) : std::string(command == 9, '\0');
            header[3] = static_cast<char>(header.size() + answer.size());
            header[2] = header[1] = header[0] = '\0';
            header[4] = '\x80';
            const std::string pdu = header + answer;
            ::send(client, pdu.data(), static_cast<int>(pdu.size()), 0);
        }
        ::closesocket(client);
    }
    static bool Read(SOCKET socket, std::string& wanted) {
        std::size_t read = 0;
        while (read < wanted.size()) {
            const int size = ::recv(socket, wanted.data() + read, static_cast<int>(wanted.size() - read), 0);
            if (size <= 0) return false;
            read += static_cast<std::size_t>(size);
        }
        return true;
    }

    SOCKET listener_;
    LONG port_ = 0;
    std::vector<std::string> submits_;
    std::thread thread_;
};

// Somebody else's SmsMessage: keeps its values in one of ours, but has a recipient of its own.
class ForeignMessage final : public ISmsMessage {
  public:
    // `passesOn`: interfaces that it does not know are those of the object inside.
    explicit ForeignMessage(bool passesOn) : passesOn_(passesOn) {}

    ISmsMessage* Inner() { return inner_.get(); }
    Bstr recipient;  // null = that of the object inside

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(ISmsMessage)) {
            *object = this;
            return S_OK;
        }
        *object = nullptr;
        return passesOn_ ? inner_->QueryInterface(iid, object) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Clear() override { return inner_->Clear(); }
    STDMETHODIMP get_Recipient(BSTR* out) override {
        if (recipient == nullptr) return inner_->get_Recipient(out);
        *out = ::SysAllocString(recipient);
        return S_OK;
    }
    STDMETHODIMP put_Recipient(BSTR value) override { return inner_->put_Recipient(value); }
#define MEMBER(type, name)                                                          \
    STDMETHODIMP get_##name(type* out) override { return inner_->get_##name(out); } \
    STDMETHODIMP put_##name(type value) override { return inner_->put_##name(value); }
    MEMBER(BSTR, Sender)
    MEMBER(BSTR, Data)
    MEMBER(LONG, Format)
    MEMBER(LONG, ValidityPeriod)
    MEMBER(BSTR, SMSC)
    MEMBER(BSTR, Time)
    MEMBER(LONG, TimeSecs)
    MEMBER(LONG, PID)
    MEMBER(LONG, DCS)
    MEMBER(LONG, ESM)
    MEMBER(LONG, SourceTON)
    MEMBER(LONG, SourceNPI)
    MEMBER(LONG, DestinationTON)
    MEMBER(LONG, DestinationNPI)
    MEMBER(BSTR, ServiceType)
    MEMBER(LONG, RequestDeliveryStatus)
#undef MEMBER

  private:
    Com<ISmsMessage> inner_ = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    bool passesOn_;
};

struct Row {
    const wchar_t* recipient;
    std::wstring data;
    std::vector<std::pair<const wchar_t*, LONG>> numbers;
    std::vector<std::string> expected;  // what the PDU holds
};

const std::vector<Row> kRows{
    {L"+31612345678", L"hello", {}, {std::string("31612345678", 12), "hello"}},
    {L"+31612345678:2948",
     L"00FF",
     {{L"Format", 10}, {L"PID", 5}, {L"DCS", 4}},
     {std::string("31612345678\0\x40\x05", 14), std::string("\x06\x05\x04\x0B\x84\0\0\0\xFF", 9)}},
    {L"S1234",
     L"\x4E2D\x00E9",
     {{L"Format", 20},
      {L"ValidityPeriod", 60},
      {L"RequestDeliveryStatus", 5},
      {L"ESM", 3},
      {L"SourceTON", 5},
      {L"SourceNPI", 9},
      {L"DestinationTON", 3},
      {L"DestinationNPI", 8}},
     {std::string("WAP\0\x05\x09\x8C\0\x03\x08S1234\0\x03\0\0\0", 20),
      std::string("R\0\x01\0\x08\0\x04\x4E\x2D\x00\xE9", 11)}},
};

void Fill(ISmsMessage* message, const Row& row) {
    message->Clear();
    message->put_Recipient(Bstr(row.recipient));
    message->put_Data(Bstr(row.data));
    message->put_Sender(Bstr(L"\x0152"));  // 0x8C in the code page
    message->put_ServiceType(Bstr(L"WAP"));
    for (const auto& [name, number] : row.numbers) {
        ASSERT_EQ(Call(message, name, DISPATCH_PROPERTYPUT, {Variant(number)}, nullptr), S_OK) << name;
    }
}

// What a server gets when the messages are sent.
std::vector<std::string> Sent(const std::vector<ISmsMessage*>& messages) {
    Server server;
    const auto smpp = Create<ISmsProtocolSmpp>(L"Quorvane.SmsProtocolSmpp");
    smpp->put_Server(Bstr(L"127.0.0.1"));
    smpp->put_ServerPort(server.Port());
    smpp->put_AdvancedSettings(Bstr(L"ValidityPeriodRelative=1"));  // the same at any time
    smpp->Connect();
    LONG error = 0;
    for (ISmsMessage* message : messages) {
        Variant argument(message);
        Bstr reference;
        smpp->Send(&argument, reference.out());
        smpp->get_LastError(&error);
        EXPECT_EQ(error, 0);
    }
    smpp->Disconnect();
    return server.Submits();
}

TEST(SmsMessage, IsSentAlikeWhoeverImplementsIt) {
    const auto own = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    for (const Row& row : kRows) {
        ForeignMessage foreign(false);
        ForeignMessage wrapper(true);
        for (ISmsMessage* message : {own.get(), foreign.Inner(), wrapper.Inner()}) Fill(message, row);
        const std::vector<std::string> sent = Sent({own.get(), &foreign, &wrapper});
        ASSERT_EQ(sent.size(), 3U);
        EXPECT_EQ(sent[1], sent[0]);
        EXPECT_EQ(sent[2], sent[0]);
        for (const std::string& part : row.expected) {
            EXPECT_NE(sent[0].find(part), std::string::npos) << testing::PrintToString(sent[0]);
        }
    }
}

// What an object shows counts, even if one of ours stands behind it.
TEST(SmsMessage, PropertiesOfAForeignObjectComeFirst) {
    ForeignMessage foreign(false);
    ForeignMessage wrapper(true);
    for (ForeignMessage* message : {&foreign, &wrapper}) {
        Fill(message->Inner(), kRows[0]);
        *message->recipient.out() = ::SysAllocString(L"+31699999999:5");
    }
    const std::vector<std::string> sent = Sent({&foreign, &wrapper});
    ASSERT_EQ(sent.size(), 2U);
    for (const std::string& pdu : sent) EXPECT_NE(pdu.find("31699999999"), std::string::npos);
}

TEST(SmsMessage, IsSentAlikeFromAnotherApartment) {
    Elsewhere<ISmsMessage> elsewhere(L"Quorvane.SmsMessage",
                                     [](ISmsMessage* message) { Fill(message, kRows[1]); });
    const auto proxy = elsewhere.Proxy();
    ASSERT_NE(proxy.get(), nullptr);
    const auto own = Create<ISmsMessage>(L"Quorvane.SmsMessage");
    Fill(own.get(), kRows[1]);
    const std::vector<std::string> sent = Sent({own.get(), proxy.get()});
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[1], sent[0]);
}

}  // namespace
