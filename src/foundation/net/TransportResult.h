// What the outcome of a stream's operation is to the callers of a channel.
#pragma once
#include "foundation/ResultCode.h"

// Of `tcp::` or a Windows Sockets error: 10053, 10054, 10060, else 22025; 0 for success.
ResultCode TransportResult(int outcome);
