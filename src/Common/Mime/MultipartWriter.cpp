#include "Common/Mime/MultipartWriter.h"

#include "Common/Mime/HeaderText.h"
#include "foundation/Base64.h"
#include "foundation/Hex.h"
#include "foundation/UniqueNumber.h"

namespace {

constexpr std::size_t kBase64Line = 76;  // RFC 2045 section 6.8
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kDashes = "--";

}  // namespace

std::string mime::NewBoundary() {
    std::string boundary = "---mime-boundary-";
    hex::AppendNumber(boundary, UniqueNumber());
    boundary += '.';
    hex::AppendNumber(boundary, UniqueNumber());
    return boundary + "---";
}

void mime::MultipartWriter::Part(std::initializer_list<Header> headers) {
    out_->append(kDashes).append(boundary_).append(kLineEnd);
    for (const Header& header : headers) {
        if (!header.value.empty()) AppendHeader(*out_, header.name, header.value);
    }
    *out_ += kLineEnd;
}

// The line end belongs to the boundary that follows.
void mime::MultipartWriter::Binary(std::string_view octets) { out_->append(octets).append(kLineEnd); }

void mime::MultipartWriter::Base64(std::string_view octets) {
    base64::Append(*out_, octets, kBase64Line);
    if (octets.empty()) *out_ += kLineEnd;
}

void mime::MultipartWriter::End() {
    out_->append(kDashes).append(boundary_).append(kDashes).append(kLineEnd);
}

std::size_t mime::Base64Size(std::size_t octets) { return base64::EncodedSize(octets, kBase64Line); }
