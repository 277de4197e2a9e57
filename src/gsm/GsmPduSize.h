// How long a listed PDU is, and how long it would be if nothing of it was lost on the line.
#pragma once
#include <cstddef>
#include <string_view>

// In octets, without the service centre part, as "+CMGL" states a length.
struct GsmPduSize {
    std::size_t octets = 0;  // that are there, whole
    std::size_t needed = 0;  // by the fields of a SMS-DELIVER or SMS-STATUS-REPORT; 0 for any other
};

GsmPduSize SizeOfPdu(std::string_view hexText);
