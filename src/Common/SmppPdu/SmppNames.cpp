#include "Common/SmppPdu/SmppNames.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    std::uint32_t code;
    std::string_view name;
};

constexpr auto kCommands = std::to_array<Row>({
    {0x00000001, "BIND_RECEIVER"},
    {0x00000002, "BIND_TRANSMITTER"},
    {0x00000003, "QUERY_SM"},
    {0x00000004, "SUBMIT_SM"},
    {0x00000005, "DELIVER_SM"},
    {0x00000006, "UNBIND"},
    {0x00000007, "REPLACE_SM"},
    {0x00000008, "CANCEL_SM"},
    {0x00000009, "BIND_TRANSCEIVER"},
    {0x00000015, "ENQUIRE_LINK"},
    {0x00000103, "DATA_SM"},
    {0x80000000, "GENERIC_NACK"},
    {0x80000001, "BIND_RECEIVER_RESP"},
    {0x80000002, "BIND_TRANSMITTER_RESP"},
    {0x80000003, "QUERY_SM_RESP"},
    {0x80000004, "SUBMIT_SM_RESP"},
    {0x80000005, "DELIVER_SM_RESP"},
    {0x80000006, "UNBIND_RESP"},
    {0x80000007, "REPLACE_SM_RESP"},
    {0x80000008, "CANCEL_SM_RESP"},
    {0x80000009, "BIND_TRANSCEIVER_RESP"},
    {0x80000015, "ENQUIRE_LINK_RESP"},
    {0x80000103, "DATA_SM_RESP"},
});

// SMPP 3.4 section 5.1.3 and SMPP 5.0 section 4.7.6; ESME_RINVSTDADDRSUBUNIR is spelled so on purpose.
constexpr auto kStatuses = std::to_array<Row>({
    {0x00, "ESME_ROK"},
    {0x01, "ESME_RINVMSGLEN"},
    {0x02, "ESME_RINVCMDLEN"},
    {0x03, "ESME_RINVCMDID"},
    {0x04, "ESME_RINVBNDSTS"},
    {0x05, "ESME_RALYBND"},
    {0x06, "ESME_RINVPRTFLG"},
    {0x07, "ESME_RINVREGDLVFLG"},
    {0x08, "ESME_RSYSERR"},
    {0x0A, "ESME_RINVSRCADR"},
    {0x0B, "ESME_RINVDSTADR"},
    {0x0C, "ESME_RINVMSGID"},
    {0x0D, "ESME_RBINDFAIL"},
    {0x0E, "ESME_RINVPASWD"},
    {0x0F, "ESME_RINVSYSID"},
    {0x11, "ESME_RCANCELFAIL"},
    {0x13, "ESME_RREPLACEFAIL"},
    {0x14, "ESME_RMSGQFUL"},
    {0x15, "ESME_RINVSERTYP"},
    {0x33, "ESME_RINVNUMDESTS"},
    {0x34, "ESME_RINVDLNAME"},
    {0x40, "ESME_RINVDESTFLAG"},
    {0x42, "ESME_RINVSUBREP"},
    {0x43, "ESME_RINVESMCLASS"},
    {0x44, "ESME_RCNTSUBDL"},
    {0x45, "ESME_RSUBMITFAIL"},
    {0x48, "ESME_RINVSRCTON"},
    {0x49, "ESME_RINVSRCNPI"},
    {0x50, "ESME_RINVDSTTON"},
    {0x51, "ESME_RINVDSTNPI"},
    {0x53, "ESME_RINVSYSTYP"},
    {0x54, "ESME_RINVREPFLAG"},
    {0x55, "ESME_RINVNUMMSGS"},
    {0x58, "ESME_RTHROTTLED"},
    {0x61, "ESME_RINVSCHED"},
    {0x62, "ESME_RINVEXPIRY"},
    {0x63, "ESME_RINVDFTMSGID"},
    {0x64, "ESME_RX_T_APPN"},
    {0x65, "ESME_RX_P_APPN"},
    {0x66, "ESME_RX_R_APPN"},
    {0x67, "ESME_RQUERYFAIL"},
    {0xC0, "ESME_RINVTLVSTREAM"},
    {0xC1, "ESME_RTLVNOTALLWD"},
    {0xC2, "ESME_RINVTLVLEN"},
    {0xC3, "ESME_RMISSINGTLV"},
    {0xC4, "ESME_RINVTLVVAL"},
    {0xFE, "ESME_RDELIVERYFAILURE"},
    {0xFF, "ESME_RUNKNOWNERR"},
    {0x100, "ESME_RSERTYPUNAUTH"},
    {0x101, "ESME_RPROHIBITED"},
    {0x102, "ESME_RSERTYPUNAVAIL"},
    {0x103, "ESME_RSERTYPDENIED"},
    {0x104, "ESME_RINVDCS"},
    {0x105, "ESME_RINVSRCADDRSUBUNIT"},
    {0x106, "ESME_RINVSTDADDRSUBUNIR"},
    {0x107, "ESME_RINVBCASTFREQINT"},
    {0x108, "ESME_RINVBCASTALIAS_NAME"},
    {0x109, "ESME_RINVBCASTAREAFMT"},
    {0x10A, "ESME_RINVNUMBCAST_AREAS"},
    {0x10B, "ESME_RINVBCASTCNTTYPE"},
    {0x10C, "ESME_RINVBCASTMSGCLASS"},
    {0x10D, "ESME_RBCASTFAIL"},
    {0x10E, "ESME_RBCASTQUERYFAIL"},
    {0x10F, "ESME_RBCASTCANCELFAIL"},
    {0x110, "ESME_RINVBCAST_REP"},
    {0x111, "ESME_RINVBCASTSRVGRP"},
    {0x112, "ESME_RINVBCASTCHANIND"},
});

template <std::size_t Size>
std::string_view Find(const std::array<Row, Size>& rows, std::uint32_t code) {
    const auto* const row = std::ranges::find(rows, code, &Row::code);
    return row != rows.end() ? row->name : std::string_view{};
}

}  // namespace

std::string_view CommandName(std::uint32_t commandId) {
    const std::string_view name = Find(kCommands, commandId);
    return name.empty() ? "UNKNOWN PDU" : name;
}

std::string_view StatusName(std::uint32_t commandStatus) { return Find(kStatuses, commandStatus); }
