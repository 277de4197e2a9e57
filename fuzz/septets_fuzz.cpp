// The septet unpacker: what it gives, packed again, must be the octets it came from.
#include "Common/GsmPdu/GsmAlphabet.h"
#include "Common/GsmPdu/Septets.h"
#include "Fuzz.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::size_t header = data[0];
    const std::size_t maximum = std::min<std::size_t>(data[1], size * 8 / 7);
    std::vector<std::uint8_t> codes(maximum);
    codes.resize(septets::Unpack({data + 2, size - 2}, header, maximum, codes.data()));
    std::vector<std::uint8_t> packed(codes.size() + 1);
    packed.resize(septets::Pack(codes, header, packed.data()));
    std::vector<std::uint8_t> again(codes.size());
    if (septets::Unpack(packed, header, codes.size(), again.data()) != codes.size() || again != codes)
        std::abort();
    std::vector<char16_t> text(codes.size());
    (void)CGsmAlphabet::Decode(codes, text.data());
    return 0;
}
