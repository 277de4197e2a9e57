// Optional parameters (TLVs) of an SMPP PDU, SMPP 3.4 section 5.3.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Value types; the numbers are those of the asSMPP_TLV_ constants.
enum class TLVType : std::uint32_t { kByte = 1, kWord = 2, kLong = 3, kCOctet = 4, kOctet = 5, kUnicode = 6 };

struct CTLVRecord {
    std::uint32_t tag = 0;  // 16 bits used
    TLVType type = TLVType::kByte;
    std::uint8_t byteValue = 0;
    std::uint16_t wordValue = 0;
    std::uint32_t longValue = 0;
    std::u16string text;  // one octet a character; full characters for kUnicode

    // Puts the number, cut to each width, into all three integer values.
    void SetInteger(std::uint32_t value);

    // The integer value that belongs to the type; 0 for the string types.
    std::uint32_t Integer() const;
};

// An ordered list in which a tag occurs at most once.
class CTLVRecords {
  public:
    // Replaces the record of the same tag in its place, else appends.
    void AddOrReplace(CTLVRecord record);
    const CTLVRecord* Find(std::uint32_t tag) const;
    void Clear() { records_.clear(); }

    bool empty() const { return records_.empty(); }
    std::size_t size() const { return records_.size(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

    // "tag;;type;;value||" for each record in order; records of type 6 are left out.
    std::u16string ToText() const;

    // Replaces the list by the text's records; reading ends at the first empty piece.
    void FromText(std::u16string_view text);

  private:
    std::vector<CTLVRecord> records_;
};
