// Every PDU of the session, with its body fields in wire order (SMPP 3.4 chapter 4).
#pragma once
#include "Common/GsmPdu/UserDataHeader.h"
#include "Common/SmppPdu/SmppPdu.h"

#include <cstdint>
#include <string>

struct SmppEmptyBody {
    static constexpr bool kHasTlvs = false;
    template <class Io>
    void Fields(Io& /*io*/) {}
};

struct SmppBindBody {
    static constexpr bool kHasTlvs = true;
    std::string system_id, password, system_type;
    std::uint8_t interface_version = 0, addr_ton = 0, addr_npi = 0;
    std::string address_range;

    template <class Io>
    void Fields(Io& io) {
        io.CString("SystemID", system_id);
        io.CString("Password", password);
        io.CString("System Type", system_type);
        io.Byte("Interface Version", interface_version);
        io.Byte("TON", addr_ton);
        io.Byte("NPI", addr_npi);
        io.CString("Address Range", address_range);
    }
};

struct SmppBindRespBody {
    static constexpr bool kHasTlvs = true;
    std::string system_id;

    template <class Io>
    void Fields(Io& io) {
        io.CString("System ID", system_id);
    }
};

struct SmppMessageIdBody {
    static constexpr bool kHasTlvs = true;
    std::string message_id;

    template <class Io>
    void Fields(Io& io) {
        io.CString("Message Reference", message_id);
    }
};

// Who sends what kind of message to whom: the start of every message.
struct SmppAddressFields {
    std::string service_type;
    std::uint8_t source_addr_ton = 0, source_addr_npi = 0;
    std::string source_addr;
    std::uint8_t dest_addr_ton = 0, dest_addr_npi = 0;
    std::string destination_addr;

    template <class Io>
    void Fields(Io& io) {
        io.CString("Service Type", service_type);
        io.Byte("Source TON", source_addr_ton);
        io.Byte("Source NPI", source_addr_npi);
        io.CString("Source Address", source_addr);
        io.Byte("Destination TON", dest_addr_ton);
        io.Byte("Destination NPI", dest_addr_npi);
        io.CString("Destination Address", destination_addr);
    }
};

struct SmppMessageBody : SmppAddressFields {
    static constexpr bool kHasTlvs = true;
    std::uint8_t esm_class = 0, protocol_id = 0, priority_flag = 0;
    std::string schedule_delivery_time, validity_period;
    std::uint8_t registered_delivery = 0, replace_if_present_flag = 0, data_coding = 0, sm_default_msg_id = 0;
    std::string short_message;

    template <class Io>
    void Fields(Io& io) {
        SmppAddressFields::Fields(io);
        io.Byte("ESM Flag", esm_class);
        io.Byte("Protocol ID", protocol_id);
        io.Byte("Priority Flag", priority_flag);
        io.CString("Schedule Delivery Time", schedule_delivery_time);
        io.CString("Validity Period", validity_period);
        io.Byte("Registered Delivery", registered_delivery);
        io.Byte("Replace If Present", replace_if_present_flag);
        io.Byte("Data Coding Scheme", data_coding);
        io.Byte("Default Message ID", sm_default_msg_id);
        io.ShortMessage(short_message, esm_class);
    }
};

// The text of a received message: out of the short message, then out of a message_payload.
struct SmppReceivedText {
    std::u16string message;
    CUserDataHeader userDataHeader;

    void Read(std::string_view shortMessage, const CTLVRecords& tlvs, std::uint8_t esmClass,
              std::uint8_t dataCoding);

  private:
    void Append(std::string_view octets, std::uint8_t esmClass, std::uint8_t dataCoding);
};

struct SmppDeliverBody : SmppMessageBody, SmppReceivedText {
    void ReadText(const CTLVRecords& tlvs) { Read(short_message, tlvs, esm_class, data_coding); }
};

struct SmppDataBody : SmppAddressFields {
    static constexpr bool kHasTlvs = true;
    std::uint8_t esm_class = 0, registered_delivery = 0, data_coding = 0;

    template <class Io>
    void Fields(Io& io) {
        SmppAddressFields::Fields(io);
        io.Byte("ESM Flag", esm_class);
        io.Byte("Registered Delivery", registered_delivery);
        io.Byte("Data Coding Scheme", data_coding);
    }
};

using CSmppBindReceiver = TypedPdu<SmppBindBody, smpp::kBindReceiver>;
using CSmppBindTransmitter = TypedPdu<SmppBindBody, smpp::kBindTransmitter>;
using CSmppBindTransceiver = TypedPdu<SmppBindBody, smpp::kBindTransceiver>;
using CSmppBindReceiverResp = TypedPdu<SmppBindRespBody, smpp::kBindReceiver | smpp::kResponse>;
using CSmppBindTransmitterResp = TypedPdu<SmppBindRespBody, smpp::kBindTransmitter | smpp::kResponse>;
using CSmppBindTransceiverResp = TypedPdu<SmppBindRespBody, smpp::kBindTransceiver | smpp::kResponse>;
using CSmppSubmitSm = TypedPdu<SmppMessageBody, smpp::kSubmitSm>;
using CSmppSubmitSmResp = TypedPdu<SmppMessageIdBody, smpp::kSubmitSm | smpp::kResponse>;
using CSmppDeliverSm = TypedPdu<SmppDeliverBody, smpp::kDeliverSm>;
using CSmppDeliverSmResp = TypedPdu<SmppMessageIdBody, smpp::kDeliverSm | smpp::kResponse>;
using CSmppDataSm = TypedPdu<SmppDataBody, smpp::kDataSm>;
using CSmppDataSmResp = TypedPdu<SmppMessageIdBody, smpp::kDataSm | smpp::kResponse>;
using CSmppEnquireLink = TypedPdu<SmppEmptyBody, smpp::kEnquireLink>;
using CSmppEnquireLinkResp = TypedPdu<SmppEmptyBody, smpp::kEnquireLink | smpp::kResponse>;
using CSmppUnbind = TypedPdu<SmppEmptyBody, smpp::kUnbind>;
using CSmppUnbindResp = TypedPdu<SmppEmptyBody, smpp::kUnbind | smpp::kResponse>;
using CSmppGenericNack = TypedPdu<SmppEmptyBody, smpp::kGenericNack>;
