#include "mms/Mm7Reply.h"

#include "Common/Mime/MimeReader.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "foundation/XmlReader.h"
#include "mms/MmsConstants.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace {

using xml::Reader;

// --- where the envelope is

bool IsXml(std::string_view text) {
    constexpr auto kStarts = std::to_array<std::string_view>({"<", "\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE"});
    return std::ranges::any_of(kStarts, [text = Trim(text)](auto start) { return text.starts_with(start); });
}

// Of a multipart the part that is called XML, else the first that looks so.
std::string EnvelopeIn(std::string_view octets) {
    const auto parts = mime::ReadMultipart(octets);
    const auto isNamed = [](const mime::ReadPart& part) {
        return ContainsNoCase(part.Header("Content-Type"), "xml");
    };
    auto found = std::ranges::find_if(parts, isNamed);
    if (found == parts.end()) found = std::ranges::find_if(parts, IsXml, &mime::ReadPart::content);
    return found != parts.end() ? std::string(Trim(found->Decoded())) : std::string();
}

// --- what it says

enum Value : std::size_t { kCode, kText, kMessageId, kFaultText, kValues };
enum Form : std::size_t { kStandard, kOther, kForms };

struct NamedValue {
    std::string_view name;
    Form form;
    Value value;
};
constexpr auto kNames = std::to_array<NamedValue>({
    {"StatusCode", kStandard, kCode},
    {"StatusText", kStandard, kText},
    {"MessageID", kStandard, kMessageId},
    {"Request-Status", kOther, kCode},
    {"Request-Status-Text", kOther, kText},
    {"Message-ID", kOther, kMessageId},
    {"faultstring", kStandard, kFaultText},
    {"FaultString", kOther, kFaultText},
});

// Of several elements of a name the first counts.
class Values {
  public:
    bool isFault = false;

    void Read(std::string_view envelope) {
        Reader reader(envelope);
        while (true) {
            switch (reader.Next()) {
                case Reader::Token::kStart:
                    Start(reader);
                    break;
                case Reader::Token::kText:
                    if (open_ != nullptr && reader.Depth() == depth_) collected_ += reader.Text();
                    break;
                case Reader::Token::kEnd:
                    End(reader);
                    break;
                case Reader::Token::kDone:
                case Reader::Token::kFault:
                    return;
            }
        }
    }

    bool Has(Form form, Value value) const { return found_[form][value].has_value(); }
    std::string Take(Form form, Value value) {
        return std::move(found_[form][value]).value_or(std::string());
    }

  private:
    void Start(const Reader& reader) {
        const std::string_view name = reader.LocalName();
        isInHeader_ = isInHeader_ || (reader.Depth() == 2 && name == "Header");
        if (isInHeader_ || open_ != nullptr) return;
        if (name == "Fault") isFault = true;
        const auto* const row = std::ranges::find(kNames, name, &NamedValue::name);
        if (row == kNames.end() || Has(row->form, row->value)) return;
        open_ = row;
        depth_ = reader.Depth();
        collected_.clear();
    }
    void End(const Reader& reader) {
        if (reader.Depth() < 2) isInHeader_ = false;
        if (open_ == nullptr || reader.Depth() >= depth_) return;
        if (open_->value == kFaultText) isFault = true;
        found_[open_->form][open_->value] = OneLine(std::move(collected_));
        open_ = nullptr;
    }
    static std::string OneLine(std::string text) {
        std::ranges::replace_if(
            text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
        return std::string(Trim(text));
    }

    std::array<std::array<std::optional<std::string>, kValues>, kForms> found_;
    const NamedValue* open_ = nullptr;  // whose text is collected
    std::size_t depth_ = 0;             // of that element
    std::string collected_;
    bool isInHeader_ = false;
};

// --- what it means

// A thousand of status codes: the first so many have a result of their own, all others that of the first.
struct Thousand {
    std::uint32_t first;
    std::uint32_t known;
    ResultCode result;
};
constexpr auto kThousands = std::to_array<Thousand>({
    {1000, 0, result::Success},  // with 1100, partial success
    {2000, 9, result::Mm7ClientError},
    {3000, 4, result::Mm7ServerError},
    {4000, 8, result::Mm7GeneralServiceError},
});

}  // namespace

Mm7Reply ReadMm7Reply(std::string_view octets, std::int32_t variation) {
    Values values;
    if (IsXml(octets)) {
        values.Read(Trim(octets));
    } else {
        values.Read(EnvelopeIn(octets));
    }
    Form form = variation == mms::asMMS_MM7VARIATION_3GPP ? kStandard : kOther;
    const Form other = form == kStandard ? kOther : kStandard;
    if (!values.Has(form, kCode) && values.Has(other, kCode)) form = other;
    Mm7Reply reply{values.Take(form, kCode), values.Take(form, kText), values.Take(form, kMessageId),
                   values.isFault};
    for (const Form spelling : {kStandard, kOther}) {
        if (reply.statusText.empty()) reply.statusText = values.Take(spelling, kFaultText);
    }
    return reply;
}

ResultCode ResultOf(const Mm7Reply& reply) {
    std::uint32_t code = 0;
    const char* const end = reply.statusCode.data() + reply.statusCode.size();
    const auto read = std::from_chars(reply.statusCode.data(), end, code);
    if (read.ec != std::errc() || read.ptr != end) return result::Mm7GeneralServiceError;
    const auto* const row =
        std::ranges::find_if(kThousands, [code](const Thousand& t) { return code / 1000 == t.first / 1000; });
    if (row == kThousands.end()) return result::Mm7GeneralServiceError;
    if (row->result == result::Success) return reply.isFault ? result::Mm7GeneralServiceError : row->result;
    const std::uint32_t offset = code - row->first;
    return offset <= row->known ? ResultCode(row->result.Number() + static_cast<std::int32_t>(offset))
                                : row->result;
}
