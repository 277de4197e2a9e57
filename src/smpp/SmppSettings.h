// The settings of an SMPP session.
#pragma once
#include "Common/SmppPdu/TLVRecords.h"

#include <cstdint>
#include <string>

enum class BindMode : std::int32_t { kTransceiver = 0, kTransmitter = 1, kReceiver = 2 };

struct SmppSettings {
    std::string server;
    std::int32_t serverPort = 2775;
    std::int32_t serverTimeout = 10'000;  // ms: connect, bind, and the longest wait of Disconnect
    std::int32_t serverKeepAlive = 30;    // s between enquire_link PDUs; 0 = none
    std::string systemId, systemPassword, systemType;
    std::int32_t systemMode = 0;        // every other value than 1 and 2 binds as transceiver
    std::int32_t systemVersion = 0x34;  // 0x33, 0x34, 0x50, or the constants 33, 34, 50
    std::string sourceAddress;
    std::int32_t sourceTon = 0, sourceNpi = 0, destinationTon = 0, destinationNpi = 0;
    std::int32_t throughput = 0;  // messages per second; 0 = no limit
    std::int32_t charSet = 0;     // asSMPPCHARSET_...
    std::string addressRange;
    std::int32_t reportFormat = 0;  // asSMPPDELIVERYREPORTFORMAT_...
    CTLVRecords transmitTlvs, receiveTlvs;

    // Read from the advanced settings at each connect.
    std::int32_t windowSize = 10;
    bool relativeValidity = false;
    std::uint32_t dumpFlags = 255;

    // The interface_version octet; 0 when the version is none.
    std::uint8_t InterfaceVersion() const;
};
