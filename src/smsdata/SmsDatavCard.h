// Business card content: a vCard 2.1 that the phone stores as a contact.
#pragma once
#include "frame/VrmBase.h"

#include <string>

struct VCardFields {
    std::u16string Name, Phone, PhoneWork, PhoneHome, Mobile, Pager, Fax, Email, Title, URL;
    std::string EncodedMessage;  // hexadecimal
};

class CSmsDatavCard : public CVrmBase, public VCardFields {
  public:
    CSmsDatavCard() : CVrmBase("CSmsDatavCard") {}

    void Clear() { static_cast<VCardFields&>(*this) = {}; }
    void Encode();
};
