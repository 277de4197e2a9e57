#include "Common/SmppPdu/TLVTags.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
    std::uint32_t tag;
    std::string_view name;
    TLVType type;
};

// The types of number_of_messages and broadcast_content_type_info depart from the standard on purpose, and so
// does the spelling of the name of tag 0x0606.
constexpr auto kRows = std::to_array<Row>({
    {0x0005, "dest_addr_subunit", TLVType::kByte},
    {0x0006, "dest_network_type", TLVType::kByte},
    {0x0007, "dest_bearer_type", TLVType::kByte},
    {0x0008, "dest_telematics_id", TLVType::kWord},
    {0x000D, "source_addr_subunit", TLVType::kByte},
    {0x000E, "source_network_type", TLVType::kByte},
    {0x000F, "source_bearer_type", TLVType::kByte},
    {0x0010, "source_telematics_id", TLVType::kByte},
    {0x0017, "qos_time_to_live", TLVType::kLong},
    {0x0019, "payload_type", TLVType::kByte},
    {0x001D, "additional_status_info_text", TLVType::kCOctet},
    {0x001E, "receipted_message_id", TLVType::kCOctet},
    {0x0030, "ms_msg_wait_facilities", TLVType::kByte},
    {0x0201, "privacy_indicator", TLVType::kByte},
    {0x0202, "source_subaddress", TLVType::kOctet},
    {0x0203, "dest_subaddress", TLVType::kOctet},
    {0x0204, "user_message_reference", TLVType::kWord},
    {0x0205, "user_response_code", TLVType::kByte},
    {0x020A, "source_port", TLVType::kWord},
    {0x020B, "destination_port", TLVType::kWord},
    {0x020C, "sar_msg_ref_num", TLVType::kWord},
    {0x020D, "language_indicator", TLVType::kByte},
    {0x020E, "sar_total_segments", TLVType::kByte},
    {0x020F, "sar_segment_seqnum", TLVType::kByte},
    {0x0210, "sc_interface_version", TLVType::kByte},
    {0x0302, "callback_num_pres_ind", TLVType::kByte},
    {0x0303, "callback_num_atag", TLVType::kOctet},
    {0x0304, "number_of_messages", TLVType::kOctet},
    {0x0381, "callback_num", TLVType::kOctet},
    {0x0420, "dpf_result", TLVType::kByte},
    {0x0421, "set_dpf", TLVType::kByte},
    {0x0422, "ms_availability_status", TLVType::kByte},
    {0x0423, "network_error_code", TLVType::kOctet},
    {0x0424, "message_payload", TLVType::kOctet},
    {0x0425, "delivery_failure_reason", TLVType::kByte},
    {0x0426, "more_messages_to_send", TLVType::kByte},
    {0x0427, "message_state", TLVType::kByte},
    {0x0428, "congestion_state", TLVType::kByte},
    {0x0501, "ussd_service_op", TLVType::kByte},
    {0x0600, "broadcast_channel_indicator", TLVType::kByte},
    {0x0601, "broadcast_content_type", TLVType::kOctet},
    {0x0602, "broadcast_content_type_info", TLVType::kCOctet},
    {0x0603, "broadcast_message_class", TLVType::kByte},
    {0x0604, "broadcast_rep_num", TLVType::kWord},
    {0x0605, "broadcast_frequency_interval", TLVType::kOctet},
    {0x0606, "broadcast_area_indentifier", TLVType::kOctet},
    {0x0607, "broadcast_error_status", TLVType::kLong},
    {0x0608, "broadcast_area_success", TLVType::kByte},
    {0x0609, "broadcast_end_time", TLVType::kCOctet},
    {0x060A, "broadcast_service_group", TLVType::kOctet},
    {0x060B, "billing_identification", TLVType::kCOctet},
    {0x060D, "source_network_id", TLVType::kCOctet},
    {0x060E, "dest_network_id", TLVType::kCOctet},
    {0x060F, "source_node_id", TLVType::kOctet},
    {0x0610, "dest_node_id", TLVType::kOctet},
    {0x0611, "dest_addr_np_resolution", TLVType::kByte},
    {0x0612, "dest_addr_np_information", TLVType::kOctet},
    {0x0613, "dest_addr_np_country", TLVType::kOctet},
    {0x1201, "display_time", TLVType::kByte},
    {0x1203, "sms_signal", TLVType::kWord},
    {0x1204, "ms_validity", TLVType::kOctet},
    {0x130C, "alert_on_message_delivery", TLVType::kByte},
    {0x1380, "its_reply_type", TLVType::kByte},
    {0x1383, "its_session_info", TLVType::kWord},
});

const Row* Find(std::uint32_t tag) {
    const auto* const row = std::ranges::lower_bound(kRows, tag, {}, &Row::tag);
    return row != kRows.end() && row->tag == tag ? row : nullptr;
}

}  // namespace

TLVType TypeOfTag(std::uint32_t tag) {
    const Row* row = Find(tag);
    return row != nullptr ? row->type : TLVType::kOctet;
}

std::string_view NameOfTag(std::uint32_t tag) {
    const Row* row = Find(tag);
    return row != nullptr ? row->name : "provider specific";
}
