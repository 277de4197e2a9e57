#include "foundation/http/HttpStatus.h"

namespace {

using enum HttpStatus::Action;

struct Row {
    std::uint32_t status;
    HttpStatus meaning;
};

constexpr Row kRows[] = {
    {200, {kDone, result::Success}},
    {202, {kDone, result::Success}},
    {301, {kRedirect, result::Success}},
    {302, {kRedirect, result::Success}},
    {400, {kFail, result::HttpBadRequest}},
    {401, {kServerChallenge, result::HttpLogonFailed}},
    {403, {kFail, result::HttpForbidden}},
    {404, {kFail, result::HttpNotFound}},
    {405, {kFail, result::HttpMethodNotAllowed}},
    {407, {kProxyChallenge, result::HttpProxyLogonFailed}},
    {410, {kFail, result::HttpGone}},
    {500, {kFail, result::HttpServerError}},
    {501, {kFail, result::HttpNotImplemented}},
    {502, {kFail, result::HttpProxyError}},
    {503, {kFail, result::HttpUnavailable}},
    {504, {kFail, result::HttpProxyTimedOut}},
};

}  // namespace

HttpStatus StatusOf(std::uint32_t status) {
    for (const Row& row : kRows) {
        if (row.status == status) return row.meaning;
    }
    return {status / 100 == 2 ? kDone : kRepeat, result::Success};
}
