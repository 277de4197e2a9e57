// The ways to prove an account, strongest first, with the log line that names each.
#pragma once
#include "foundation/http/HttpTransport.h"

struct HttpSchemeRow {
    http::Scheme scheme;
    const char* logLine;
};

inline constexpr HttpSchemeRow kHttpSchemes[] = {
    {http::kNegotiate, "HTTP AUTHENTICATION : NEGOTIATE\n"},
    {http::kNtlm, "HTTP AUTHENTICATION : NTLM\n"},
    {http::kPassport, "HTTP AUTHENTICATION : PASSPORT\n"},
    {http::kDigest, "HTTP AUTHENTICATION : DIGEST\n"},
    {http::kBasic, "HTTP AUTHENTICATION : BASIC\n"},
};
