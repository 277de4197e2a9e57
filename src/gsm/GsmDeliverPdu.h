// The SMS-DELIVER reader, 3GPP TS 23.040 section 9.2.2.1.
#pragma once
#include "Common/GsmPdu/UserDataHeader.h"
#include "gsm/GsmPdu.h"

class CGsmDeliverPdu : public CGsmPdu {
  public:
    using CGsmPdu::CGsmPdu;

    // False when the text is no SMS-DELIVER.
    [[nodiscard]] bool Decode();

    GsmAddress serviceCentre;
    GsmAddress originator;
    std::uint8_t protocolIdentifier = 0;
    std::uint8_t dcs = 0;
    TimeStamp timeStamp{};
    std::size_t userDataLength = 0;  // TP-UDL: septets or octets
    bool hasHeader = false;
    CUserDataHeader header;

    // The user data behind the header, at most 256 units: octets, or 16-bit units when DCS bit 0x08 is set.
    std::span<const std::uint8_t> Data() const { return data_; }

  private:
    std::span<const std::uint8_t> data_;
};
