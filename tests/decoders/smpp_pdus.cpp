// Prints SMPP PDUs with what went into them, a JSON object a line, for an independent decoder to read.
#include "Common/SmppPdu/SmppPdus.h"
#include "foundation/Hex.h"
#include "smpp/SmppSubmit.h"

#include <cstdio>
#include <string>

namespace {

void Print(const char* command, std::span<const std::uint8_t> octets, const std::string& fields) {
    std::string text;
    for (const std::uint8_t octet : octets) hex::Append(text, octet);
    std::printf("{\"command\": \"%s\", \"pdu\": \"%s\", \"fields\": {%s}}\n", command, text.c_str(),
                fields.c_str());
}

template <class Pdu>
void PrintPlain(const char* command) {
    Pdu pdu;
    pdu.sequence_number = 7;
    pdu.Encode();
    Print(command, pdu.Data(), {});
}

}  // namespace

int main() {
    CSmppBindTransceiver bind;
    bind.sequence_number = 1;
    bind.system_id = "me";
    bind.password = "secret";
    bind.system_type = "VMS";
    bind.interface_version = 0x34;
    bind.addr_ton = 1;
    bind.addr_npi = 1;
    bind.address_range = "1234";
    bind.Encode();
    Print(
        "0x00000009", bind.Data(),
        R"("smpp.system_id": "me", "smpp.password": "secret", "smpp.system_type": "VMS", "smpp.address_range": "1234")");
    PrintPlain<CSmppEnquireLink>("0x00000015");
    PrintPlain<CSmppEnquireLinkResp>("0x80000015");
    PrintPlain<CSmppUnbind>("0x00000006");
    PrintPlain<CSmppDeliverSmResp>("0x80000005");
    PrintPlain<CSmppDataSmResp>("0x80000103");

    struct Row {
        std::int32_t format;
        std::u16string data;
        std::uint32_t port;
        bool report;
        const char* fields;
    };
    SmppSubmitBuilder builder;
    for (const Row& row : {
             Row{0, u"Hello", 0, true, R"("smpp.data_coding": "0x00", "smpp.esm.submit.features": "0x00")"},
             Row{20, u"\u4E2D", 0, false, R"("smpp.data_coding": "0x08")"},
             Row{11, u"06050413880000AB", 0, false, R"("gsm_sms.destination_port": "5000")"},
             Row{2, std::u16string(400, u'x'), 0, false, R"("gsm_sms.udh.mm.msg_parts": "3")"},
             Row{0, u"to a port", 5000, false, R"("gsm_sms.destination_port": "5000")"},
         }) {
        CSmsMessageX message;
        message.Sender = "1234";
        message.Recipient = "+31612345678";
        message.Format = row.format;
        message.Data = row.data;
        message.DestinationPort = row.port;
        message.RequestDeliveryStatus = row.report;
        CTLVRecord reference{.tag = 0x0204, .type = TLVType::kWord};
        reference.SetInteger(4660);
        message.TlvRecords.AddOrReplace(reference);
        std::vector<std::string> pdus;
        if (builder.Build({}, message, pdus) != 0) return 1;
        for (const std::string& pdu : pdus) {
            Print(
                "0x00000004", {reinterpret_cast<const std::uint8_t*>(pdu.data()), pdu.size()},
                std::string(row.fields) +
                    R"(, "smpp.source_addr": "1234", "smpp.destination_addr": "31612345678", "smpp.dest_addr_ton": "0x01", )"
                    R"("smpp.user_message_reference": "0x1234")");
        }
    }
    return 0;
}
