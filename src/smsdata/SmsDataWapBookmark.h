// Over-the-air bookmark content: a name and an address that the phone stores.
#pragma once
#include "frame/VrmBase.h"

#include <cstdint>
#include <string>

struct WapBookmarkFields {
    std::string Description;
    std::string URL;
    std::string EncodedMessage;  // hexadecimal
};

class CSmsDataWapBookmark : public CVrmBase, public WapBookmarkFields {
  public:
    CSmsDataWapBookmark() : CVrmBase("CSmsDataWapBookmark") {}

    void Clear() { static_cast<WapBookmarkFields&>(*this) = {}; }
    void Encode();

  private:
    std::uint8_t transaction_ = 0;
};
