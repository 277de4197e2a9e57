// Reads MMS units of every type (OMA MMS encapsulation 1.0 to 1.3, WAP-230 for the body): what a server or a
// phone sends, not only what our own encoder writes.
#pragma once
#include "Common/Wsp/WspValues.h"
#include "foundation/ResultCode.h"
#include "mms/MmsFields.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One entry of the body; a multipart inside is one entry, its data as it stands.
struct MmsPart {
    wsp::ContentType type;
    std::string_view contentId;
    std::string_view location;
    std::string_view boundary;  // of a DRM message
    std::string_view data;
};

class CMMSECodec {
  public:
    // 0, or 33763 for a damaged unit, of which what is whole can be read all the same. Everything given out
    // shows into `unit`.
    ResultCode Decode(std::string_view unit);

    std::uint8_t MessageType() const;  // 0 when there is none
    const std::vector<MmsField>& Fields() const { return fields_; }
    const std::vector<MmsPart>& Parts() const { return parts_; }

    // The first field with the number; one without content when there is none.
    const MmsField& Field(std::uint8_t number) const;

    // A line for each field and each part, to read.
    std::string Dump() const;

  private:
    bool ReadFields(OctetReader& in);
    bool ReadNextField(OctetReader& in);
    bool ReadBody(OctetReader& in);
    bool ReadPart(OctetReader& in);
    bool NeedsBody() const;

    std::vector<MmsField> fields_;
    std::vector<MmsPart> parts_;
    wsp::ContentType type_;
    bool hasBody_ = false;
};
