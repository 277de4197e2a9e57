#include "Common/SmppPdu/SmppTime.h"

#include "foundation/Text.h"

std::int32_t ParseSmppTime(std::string_view text, Clock& clock) {
    constexpr std::size_t kLength = 16;
    if (text.size() < kLength) return 0;
    const auto pair = [text](std::size_t at) { return ToInt(text.substr(at, 2)); };
    switch (text[kLength - 1]) {
        case '+':
        case '-':
            return static_cast<std::int32_t>(
                clock.FromLocal({2000 + pair(0), pair(2), pair(4), pair(6), pair(8), pair(10)}));
        case 'R':
        case 'r':
            return static_cast<std::int32_t>(clock.Now() + pair(4) * 86400LL + pair(6) * 3600LL +
                                             pair(8) * 60LL + pair(10));
        default:
            return 0;
    }
}
