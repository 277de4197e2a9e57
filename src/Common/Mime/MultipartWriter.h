// Bodies of several parts, RFC 2046: each part behind a line with the boundary, headers in the spelling of
// the protocol, content as it is or in base64. Parts may hold multipart bodies of their own.
#pragma once
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace mime {

// "---mime-boundary-%08X.%08X---" with numbers that are used once.
std::string NewBoundary();

struct Header {
    std::string_view name;
    std::string_view value;  // of the system's code page; a header without value is left out
};

class MultipartWriter {
  public:
    // About the octets that a part takes besides content and values of headers.
    static constexpr std::size_t kPartFraming = 512;

    // Goes on behind what `out` holds, which is to have room for what comes.
    MultipartWriter(std::string& out, std::string boundary) : out_(&out), boundary_(std::move(boundary)) {}

    // What introduces a part, and the empty line behind it. Its content follows: by one of the two below, or
    // by a writer of its own over the same text.
    void Part(std::initializer_list<Header> headers);
    void Binary(std::string_view octets);
    void Base64(std::string_view octets);  // in lines of 76

    // The closing boundary and its line end.
    void End();

  private:
    std::string* out_;
    std::string boundary_;
};

// Octets that content has in base64.
std::size_t Base64Size(std::size_t octets);

}  // namespace mime
