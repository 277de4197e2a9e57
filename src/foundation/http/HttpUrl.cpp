#include "foundation/http/HttpUrl.h"

#include "foundation/Hex.h"
#include "foundation/Text.h"

#include <algorithm>

namespace {

// Takes "name:" and the slashes behind it off the front. One slash counts as two, since texts whose double
// slashes were made single come here as well.
HttpUrl::Scheme TakeScheme(std::string_view& text) {
    const std::size_t end = text.find(":/");
    if (end == std::string_view::npos || end > text.find_first_of("/?#[")) return HttpUrl::Scheme::kNone;
    const std::string name = Upper(text.substr(0, end));
    text.remove_prefix(end + 1);
    text.remove_prefix(text.starts_with("//") ? 2 : 1);
    if (name == "HTTP") return HttpUrl::Scheme::kHttp;
    return name == "HTTPS" ? HttpUrl::Scheme::kHttps : HttpUrl::Scheme::kOther;
}

bool IsPort(std::string_view digits) {
    return !digits.empty() && digits.size() <= 5 && std::ranges::all_of(digits, IsDigit) &&
           ToInt(digits) >= 1 && ToInt(digits) <= 0xFFFF;
}

bool IsHost(std::string_view host) {
    return !host.empty() && std::ranges::all_of(host, [](char c) {
        return static_cast<unsigned char>(c) > ' ' && static_cast<unsigned char>(c) < 0x7F && c != '@' &&
               c != '\\';
    });
}

// Nothing in a path may end the request's first line: what is no visible ASCII goes out as "%XX".
std::string Escaped(std::string_view path) {
    std::string text;
    text.reserve(path.size());
    for (const char c : path) {
        if (c > ' ' && c < 0x7F) {
            text += c;
        } else {
            text += '%';
            hex::Append(text, static_cast<std::uint8_t>(c));
        }
    }
    return text;
}

}  // namespace

HttpUrl HttpUrl::Parse(std::string_view text) {
    HttpUrl url;
    text = Trim(text);
    text = text.substr(0, text.find('#'));
    url.scheme = TakeScheme(text);
    const std::size_t end = std::min(text.find_first_of("/?"), text.size());
    std::string_view authority = text.substr(0, end);
    const std::string_view path = text.substr(end);

    const std::size_t bracket = authority.find(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    bool isGood = url.scheme != Scheme::kOther;
    if (colon != std::string_view::npos && colon + 1 < authority.size()) {
        const std::string_view port = authority.substr(colon + 1);
        isGood = isGood && IsPort(port);
        if (isGood) url.port = static_cast<std::uint16_t>(ToInt(port));
    }
    authority = authority.substr(0, colon);
    if (isGood && IsHost(authority)) url.host = authority;
    url.path = (path.starts_with('/') ? "" : "/") + Escaped(path);
    return url;
}

HttpUrl HttpUrl::Redirected(std::string_view target) const {
    target = Trim(target);
    std::string_view rest = target;
    if (target.find("://") != std::string_view::npos && TakeScheme(rest) != Scheme::kNone) {
        HttpUrl url = Parse(target);
        url.isAbsolute = true;
        return url;
    }
    HttpUrl url = *this;
    url.isAbsolute = false;
    if (target.starts_with('/')) target.remove_prefix(1);
    url.path = "/" + Escaped(target.substr(0, target.find('#')));
    return url;
}

std::string HttpUrl::Text(bool secure) const {
    std::string text = (secure ? "https://" : "http://") + host;
    if (port != 0) text += ":" + std::to_string(port);
    return text + path;
}
