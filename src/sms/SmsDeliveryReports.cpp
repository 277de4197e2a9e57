#include "sms/SmsDeliveryReports.h"

#include "foundation/Addresses.h"
#include "foundation/Assertion.h"
#include "foundation/ErrorTexts.h"
#include "foundation/Hex.h"
#include "foundation/Text.h"
#include "sms/ReceiptIds.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr const char* kSource = "SmsDeliveryReport";
constexpr std::string_view kRecordEnd = "||";
constexpr std::string_view kFieldEnd = ";;";
constexpr std::size_t kAnswersAtOnce = 8;
constexpr std::uint32_t kSaveSlice = 1024;  // places copied at a time, so that nobody waits for the lock
constexpr std::size_t kWritePiece = std::size_t{1} << 18;
constexpr std::int32_t kClockTolerance = 86'400;  // s
constexpr std::size_t kTailDigits = 6;
constexpr std::size_t kShortestGuess = 6;

// Octets that can part the records or fields of a report file, and those that the file would change.
constexpr std::string_view kSeparators = ";|";
constexpr std::string_view kUnfit("\r\n\x1a\0", 4);

bool Contains(std::string_view octets, char octet) { return octets.find(octet) != std::string_view::npos; }

// A separator's octet parts nothing while it stands alone inside an id.
bool IsUnfit(std::string_view id, std::size_t at) {
    const char octet = id[at];
    if (!Contains(kSeparators, octet)) return Contains(kUnfit, octet);
    return at == 0 || at + 1 == id.size() || id[at - 1] == octet || id[at + 1] == octet;
}

// The octet that "%XX" stands for in a report file; only the unfit ones and "%" are written so.
std::optional<char> Escaped(std::string_view text) {
    if (text.size() < 3 || text[0] != '%') return std::nullopt;
    const char octet = static_cast<char>(hex::Value(text[1]) << 4 | hex::Value(text[2]));
    std::string written = "%";
    hex::Append(written, static_cast<std::uint8_t>(octet));
    const bool known = octet == '%' || Contains(kSeparators, octet) || Contains(kUnfit, octet);
    return known && text.starts_with(written) ? std::optional(octet) : std::nullopt;
}

void AppendId(std::string& text, std::string_view id) {
    for (std::size_t at = 0; at < id.size(); ++at) {
        if (!IsUnfit(id, at) && !Escaped(id.substr(at))) {
            text += id[at];
        } else {
            text += '%';
            hex::Append(text, static_cast<std::uint8_t>(id[at]));
        }
    }
}

std::string IdOf(std::string_view field) {
    std::string id;
    for (std::size_t at = 0; at < field.size(); ++at) {
        const auto octet = Escaped(field.substr(at));
        id += octet.value_or(field[at]);
        if (octet) at += 2;
    }
    return id;
}

void AppendLine(std::string& text, const CSmsDeliveryReport& report) {
    AppendId(text, report.reference);
    text += kFieldEnd;
    AppendId(text, report.providerReference);
    for (const std::int32_t number :
         {report.status, report.completedTime, report.statusCode, report.extra, report.createdTime}) {
        text.append(kFieldEnd).append(std::to_string(number));
    }
}

// The lines of a report file, brought into the order of their references. Their texts lie one behind the
// other in pieces.
class Lines {
  public:
    void Add(std::span<const CSmsDeliveryReport> reports) {
        std::string& text = texts_.emplace_back();
        for (const CSmsDeliveryReport& report : reports) {
            const std::size_t at = text.size();
            AppendLine(text, report);
            lines_.push_back({StartOf(report.reference), static_cast<std::uint32_t>(texts_.size() - 1),
                              static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(text.size() - at)});
        }
    }

    void Sort() {
        std::ranges::sort(lines_, [this](const Line& left, const Line& right) {
            return left.start != right.start ? left.start < right.start : KeyOf(left) < KeyOf(right);
        });
    }

    bool WriteTo(const TextSink& sink) const {
        std::string piece;
        for (const Line& line : lines_) {
            if (&line != lines_.data()) piece += kRecordEnd;
            piece += TextOf(line);
            if (piece.size() < kWritePiece) continue;
            if (!sink(piece)) return false;
            piece.clear();
        }
        return sink(piece);
    }

  private:
    struct Line {
        std::uint64_t start;  // the reference's first octets, which mostly decide
        std::uint32_t text, at, size;
    };

    static std::uint64_t StartOf(std::string_view reference) {
        std::uint64_t start = 0;
        for (std::size_t i = 0; i < sizeof start; ++i)
            start = start << 8 | (i < reference.size() ? static_cast<std::uint8_t>(reference[i]) : 0U);
        return start;
    }
    std::string_view TextOf(const Line& line) const {
        return std::string_view(texts_[line.text]).substr(line.at, line.size);
    }
    std::string_view KeyOf(const Line& line) const {
        return TextOf(line).substr(0, TextOf(line).find(kFieldEnd));
    }

    std::deque<std::string> texts_;
    std::vector<Line> lines_;
};

bool NamesAMessage(std::string_view providerReference) {
    return !providerReference.empty() && providerReference != kNoProviderReference;
}

// The last six digits of a number behind a 1, which tells how many there are; 0 for none.
std::uint32_t TailOf(std::string_view recipient) {
    const std::string digits = OnlyDigits(ParseRecipient(recipient).address);
    if (digits.empty()) return 0;
    std::uint32_t tail = 1;
    for (const char c : digits.substr(digits.size() - std::min(digits.size(), kTailDigits)))
        tail = 10 * tail + hex::Value(c);
    return tail;
}

}  // namespace

// --- places, texts and indexes

std::string_view CSmsDeliveryReports::TextOf(Key key, std::uint32_t place) const {
    const Record& record = records_[place];
    const bool elsewhere =
        key == Key::kReference ? record.reference.IsElsewhere() : record.provider.IsElsewhere();
    if (elsewhere) return longTexts_[static_cast<std::size_t>(key)].at(place);
    return key == Key::kReference ? record.reference.View() : record.provider.View();
}

void CSmsDeliveryReports::PutText(Key key, std::uint32_t place, std::string_view text) {
    auto& longTexts = longTexts_[static_cast<std::size_t>(key)];
    if (!longTexts.empty()) longTexts.erase(place);
    const auto put = [&](auto& packed) {
        if (packed.Fits(text)) {
            packed.Store(text);
        } else {
            packed.MarkElsewhere();
            longTexts.emplace(place, text);
        }
    };
    key == Key::kReference ? put(records_[place].reference) : put(records_[place].provider);
}

std::optional<std::uint32_t> CSmsDeliveryReports::PlaceOf(Key key, std::string_view text) const {
    return PlaceOf(key, text, LooseHash(text));
}

std::optional<std::uint32_t> CSmsDeliveryReports::PlaceOf(Key key, std::string_view text,
                                                          std::uint32_t hash) const {
    return IndexOf(key).Find(hash, [&](std::uint32_t place) { return TextOf(key, place) == text; });
}

void CSmsDeliveryReports::FindLoosely(std::string_view providerReference, Candidates& found) const {
    (void)IndexOf(Key::kProvider).Find(LooseHash(providerReference), [&](std::uint32_t place) {
        if (!LooselyEqual(TextOf(Key::kProvider, place), providerReference)) return false;
        found.areSeveral = found.areSeveral || (found.place && *found.place != place);
        found.place = place;
        return found.areSeveral;
    });
}

CSmsDeliveryReport CSmsDeliveryReports::ReportAt(std::uint32_t place) const {
    const Record& record = records_[place];
    return {std::string(TextOf(Key::kReference, place)),
            std::string(TextOf(Key::kProvider, place)),
            record.status,
            record.completedTime,
            record.statusCode,
            record.extra,
            record.createdTime};
}

std::uint32_t CSmsDeliveryReports::Insert(std::string_view reference, std::int32_t createdTime) {
    const std::uint32_t hash = LooseHash(reference);
    if (const auto older = PlaceOf(Key::kReference, reference, hash)) Erase(*older);
    return InsertNew(reference, hash, createdTime);
}

std::uint32_t CSmsDeliveryReports::InsertNew(std::string_view reference, std::uint32_t hash,
                                             std::int32_t createdTime) {
    oldest_ = std::min(oldest_, createdTime);
    auto place = static_cast<std::uint32_t>(records_.size());
    if (freePlaces_.empty()) {
        records_.emplace_back();
    } else {
        place = freePlaces_.back();
        freePlaces_.pop_back();
    }
    records_[place].createdTime = createdTime;
    records_[place].isHeld = true;
    PutText(Key::kReference, place, reference);
    IndexOf(Key::kReference).Insert(hash, place);
    return place;
}

void CSmsDeliveryReports::Erase(std::uint32_t place) {
    NameProvider(place, {});
    IndexOf(Key::kReference).Erase(LooseHash(TextOf(Key::kReference, place)), place);
    PutText(Key::kReference, place, {});
    records_[place] = {};
    freePlaces_.push_back(place);
}

void CSmsDeliveryReports::NameProvider(std::uint32_t place, std::string_view providerReference) {
    HashIndex& index = IndexOf(Key::kProvider);
    const auto withdraw = [&](std::uint32_t named) {
        index.Erase(LooseHash(TextOf(Key::kProvider, named)), named);
    };
    if (NamesAMessage(TextOf(Key::kProvider, place))) withdraw(place);
    PutText(Key::kProvider, place, providerReference);
    if (!NamesAMessage(providerReference)) return;
    // Of messages with the same provider reference the one that was named last is found.
    const std::uint32_t hash = LooseHash(providerReference);
    if (const auto older = PlaceOf(Key::kProvider, providerReference, hash)) withdraw(*older);
    index.Insert(hash, place);
}

// The server has named the message.
void CSmsDeliveryReports::TakeProviderReference(std::uint32_t place, std::string_view providerReference) {
    NameProvider(place, providerReference);
    if (!NamesAMessage(providerReference)) return;
    providerReferenceLength_ = providerReference.size();
    newestNamed_ = std::max(newestNamed_, records_[place].createdTime);
}

void CSmsDeliveryReports::PutStatus(Record& record, std::int32_t status, std::int32_t statusCode) const {
    record.status = status;
    record.statusCode = statusCode;
    record.completedTime = IsCompletedStatus(status) ? static_cast<std::int32_t>(clock_->Now()) : 0;
}

// --- what happens to a message

void CSmsDeliveryReports::PutSent(Record& record, ReportWanted wanted) const {
    record.isSent = true;
    switch (wanted) {
        case ReportWanted::kSubmitRequested:
            record.status = sms::asDELIVERYSTATUS_SUBMITREQUESTED;
            break;
        case ReportWanted::kNo:
            record.status = sms::asDELIVERYSTATUS_SUBMITTED;
            record.completedTime = record.createdTime;
            break;
        case ReportWanted::kYes:
            record.status = sms::asDELIVERYSTATUS_ENROUTE;
            break;
    }
}

void CSmsDeliveryReports::RecordSent(std::string_view reference, ReportWanted wanted,
                                     std::string_view recipient) {
    Assert(!reference.empty(), kSource, __LINE__);
    const auto now = static_cast<std::int32_t>(clock_->Now());
    const std::scoped_lock guard(lock_);
    Record& record = records_[Insert(reference, now)];
    record.recipientTail = TailOf(recipient);
    PutSent(record, wanted);
}

bool CSmsDeliveryReports::RecordNew(std::string_view reference, ReportWanted wanted) {
    const auto now = static_cast<std::int32_t>(clock_->Now());
    const std::uint32_t hash = LooseHash(reference);
    const std::scoped_lock guard(lock_);
    if (PlaceOf(Key::kReference, reference, hash)) return false;
    PutSent(records_[InsertNew(reference, hash, now)], wanted);
    return true;
}

void CSmsDeliveryReports::RecordProviderReference(std::string_view reference,
                                                  std::string_view providerReference) {
    Assert(!reference.empty(), kSource, __LINE__);
    const std::scoped_lock guard(lock_);
    if (const auto place = PlaceOf(Key::kReference, reference))
        TakeProviderReference(*place, providerReference);
}

// A few at a time, so that a sender never waits for long.
void CSmsDeliveryReports::RecordAnswers(std::span<const SubmitAnswer> answers) {
    while (!answers.empty()) {
        const auto few = answers.first(std::min(answers.size(), kAnswersAtOnce));
        answers = answers.subspan(few.size());
        const std::scoped_lock guard(lock_);
        for (const SubmitAnswer& answer : few) {
            const auto place = PlaceOf(Key::kReference, answer.reference);
            if (!place) continue;
            PutStatus(records_[*place], answer.status, 0);
            TakeProviderReference(*place, answer.providerReference);
        }
    }
}

void CSmsDeliveryReports::Update(std::string_view reference, std::int32_t status, std::int32_t completedTime,
                                 std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    auto place = PlaceOf(Key::kReference, reference);
    if (!place) place = Insert(reference, static_cast<std::int32_t>(clock_->Now()));
    Record& record = records_[*place];
    record.status = status;
    record.completedTime = IsCompletedStatus(status) ? completedTime : 0;
    record.statusCode = statusCode;
}

bool CSmsDeliveryReports::IsOfAnother(std::string_view reference, std::string_view recipient,
                                      std::int32_t completedTime) const {
    const std::uint32_t tail = TailOf(recipient);
    const std::scoped_lock guard(lock_);
    const auto place = PlaceOf(Key::kReference, reference);
    if (!place) return false;
    const Record& record = records_[*place];
    const bool isEarlier = completedTime != 0 &&
                           std::int64_t{completedTime} + kClockTolerance < std::int64_t{record.createdTime};
    return isEarlier || (tail != 0 && record.recipientTail != 0 && tail != record.recipientTail);
}

void CSmsDeliveryReports::SetStatus(std::string_view reference, std::int32_t status,
                                    std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    if (const auto place = PlaceOf(Key::kReference, reference))
        PutStatus(records_[*place], status, statusCode);
}

// The id of a receipt as an answer writes it. What is no decimal number names nothing where receipts are
// decimal, unless its "0x" says what it is.
std::optional<std::string> CSmsDeliveryReports::AnswerForm(std::string_view receiptId) const {
    if (receiptFormat_ != sms::asSMPPDELIVERYREPORTFORMAT_DEC) return std::string(receiptId);
    const std::string_view bare = BareId(receiptId);
    if (bare.size() != Trim(receiptId).size()) return Upper(bare);
    return HexOfDecimal(bare);
}

// Better open than wrong: a receipt that could be for several messages is for none.
std::optional<std::uint32_t> CSmsDeliveryReports::PlaceOfReceipt(const SmsReceipt& receipt,
                                                                 ReceiptMatch match) const {
    if (BareId(receipt.id).empty()) return std::nullopt;
    if (receipt.isPlainId) {
        if (const auto place = PlaceOf(Key::kProvider, receipt.id)) return place;
    }
    const std::optional<std::string> id = AnswerForm(receipt.id);
    if (!id) return std::nullopt;
    std::string padded = *id;
    if (padded.size() < providerReferenceLength_)
        padded.insert(0, providerReferenceLength_ - padded.size(), '0');
    if (const auto place = PlaceOf(Key::kProvider, padded)) return place;
    if (const auto place = PlaceOf(Key::kProvider, *id)) return place;  // the server's ids grow longer
    if (match == ReceiptMatch::kExact) return std::nullopt;
    Candidates found;
    FindLoosely(*id, found);
    const bool mayGuess =
        match == ReceiptMatch::kGuessed && receiptFormat_ != sms::asSMPPDELIVERYREPORTFORMAT_DEC;
    return found.place || !mayGuess ? found.Only() : GuessedPlaceOf(receipt.id);
}

std::optional<std::uint32_t> CSmsDeliveryReports::GuessedPlaceOf(std::string_view id) const {
    Candidates found;
    for (const auto& other : {HexOfDecimal(BareId(id)), DecimalOfHex(BareId(id))}) {
        if (other) FindLoosely(*other, found);
    }
    const auto place = found.Only();
    if (!place) return std::nullopt;
    const std::string_view named = TextOf(Key::kProvider, *place);
    const bool isWritten = std::min(BareId(id).size(), BareId(named).size()) >= kShortestGuess;
    const bool isLarge = std::max(SignificantLength(id), SignificantLength(named)) >= kShortestGuess;
    return isWritten && isLarge ? place : std::nullopt;
}

std::array<std::uint32_t, 2> CSmsDeliveryReports::AnswerHashes(const SmsReceipt& receipt) const {
    const std::scoped_lock guard(lock_);
    return {LooseHash(receipt.id), LooseHash(AnswerForm(receipt.id).value_or(receipt.id))};
}

std::optional<std::string> CSmsDeliveryReports::ApplyReceipt(const SmsReceipt& receipt, ReceiptMatch match) {
    const std::scoped_lock guard(lock_);
    const auto place = PlaceOfReceipt(receipt, match);
    if (!place) return std::nullopt;
    Record& record = records_[*place];
    record.status = receipt.status;
    record.completedTime = receipt.completedTime;
    record.statusCode = receipt.statusCode;
    return std::string(TextOf(Key::kReference, *place));
}

bool CSmsDeliveryReports::KeepForeign(const SmsReceipt& receipt) {
    const std::scoped_lock guard(lock_);
    auto place = PlaceOf(Key::kReference, receipt.id);
    if (place && records_[*place].isSent) return false;
    if (!place) place = Insert(receipt.id, static_cast<std::int32_t>(clock_->Now()));
    Record& record = records_[*place];
    record.status = receipt.status;
    record.completedTime = receipt.completedTime;
    record.statusCode = receipt.statusCode;
    return true;
}

std::optional<CSmsDeliveryReport> CSmsDeliveryReports::Query(std::string_view reference) const {
    const std::scoped_lock guard(lock_);
    const auto place = PlaceOf(Key::kReference, reference);
    if (!place) return std::nullopt;
    return ReportAt(*place);
}

std::optional<CSmsDeliveryReport> CSmsDeliveryReports::QueryWhole(std::string_view references,
                                                                  char separator) const {
    std::optional<CSmsDeliveryReport> whole;
    for (const std::string_view reference : Split(references, {&separator, 1})) {
        const auto part = Query(reference);
        if (!part) return std::nullopt;
        if (!whole) {
            whole = part;
            continue;
        }
        const std::int32_t latest = std::max(whole->completedTime, part->completedTime);
        const bool open = IsCompletedStatus(whole->status) && !IsCompletedStatus(part->status);
        const bool worse = IsCompletedStatus(whole->status) == IsCompletedStatus(part->status) &&
                           whole->status == sms::asDELIVERYSTATUS_DELIVERED &&
                           part->status != sms::asDELIVERYSTATUS_DELIVERED;
        if (open || worse) whole = part;
        whole->completedTime = latest;
    }
    whole->reference = references;
    if (!IsCompletedStatus(whole->status)) whole->completedTime = 0;
    return whole;
}

void CSmsDeliveryReports::Remove(std::string_view reference) {
    const std::scoped_lock guard(lock_);
    if (const auto place = PlaceOf(Key::kReference, reference)) Erase(*place);
}

void CSmsDeliveryReports::RemoveOlderThan(std::int32_t seconds) {
    const std::scoped_lock guard(lock_);
    const auto limit = static_cast<std::int32_t>(clock_->Now()) - seconds;
    if (oldest_ >= limit) return;
    oldest_ = INT32_MAX;
    for (std::uint32_t place = 0; place < records_.size(); ++place) {
        const Record& record = records_[place];
        if (!record.isHeld) continue;
        if (record.createdTime < limit) {
            Erase(place);
        } else {
            oldest_ = std::min(oldest_, record.createdTime);
        }
    }
}

void CSmsDeliveryReports::Clear() {
    const std::scoped_lock guard(lock_);
    records_.clear();
    freePlaces_.clear();
    for (auto& texts : longTexts_) texts.clear();
    for (HashIndex& index : indexes_) index.Clear();
    providerReferenceLength_ = 0;
    newestNamed_ = INT32_MIN;
    oldest_ = INT32_MAX;
}

std::size_t CSmsDeliveryReports::Count() const {
    const std::scoped_lock guard(lock_);
    return records_.size() - freePlaces_.size();
}

void CSmsDeliveryReports::SetReceiptFormat(std::int32_t format) {
    const std::scoped_lock guard(lock_);
    receiptFormat_ = format;
}

// --- report files

// Copies the reports in some places from `place` on, which moves behind them. False at the end.
bool CSmsDeliveryReports::CopySlice(std::uint32_t& place, std::vector<CSmsDeliveryReport>& slice) const {
    slice.clear();
    const std::scoped_lock guard(lock_);
    const std::size_t end = std::min<std::size_t>(records_.size(), place + kSaveSlice);
    for (; place < end; ++place) {
        if (records_[place].isHeld) slice.push_back(ReportAt(place));
    }
    return place < records_.size();
}

// A report that changes meanwhile is written as it was or as it is.
bool CSmsDeliveryReports::Write(const TextSink& sink) const {
    Lines lines;
    std::vector<CSmsDeliveryReport> slice;
    slice.reserve(kSaveSlice);
    std::uint32_t place = 0;
    for (bool isMore = true; isMore;) {
        isMore = CopySlice(place, slice);
        lines.Add(slice);
    }
    lines.Sort();
    return lines.WriteTo(sink);
}

std::string CSmsDeliveryReports::SaveText() const {
    std::string text;
    (void)Write([&text](std::string_view piece) {
        text += piece;
        return true;
    });
    return text;
}

void CSmsDeliveryReports::Add(std::string_view piece, bool swapped) {
    std::vector<std::string_view> fields = Split(piece, kFieldEnd);
    fields.resize(std::max<std::size_t>(fields.size(), 7));
    if (swapped) std::swap(fields[0], fields[1]);
    const std::uint32_t place = Insert(IdOf(fields[0]), ToInt(fields[6]));
    Record& record = records_[place];
    record.isSent = true;  // as far as the file tells
    record.status = ToInt(fields[2]);
    record.completedTime = ToInt(fields[3]);
    record.statusCode = ToInt(fields[4]);
    record.extra = ToInt(fields[5]);
    const std::string providerReference = IdOf(fields[1]);
    const auto other = PlaceOf(Key::kProvider, providerReference);
    if (other && records_[*other].createdTime > record.createdTime) {
        PutText(Key::kProvider, place, providerReference);  // a newer message has been given the same
    } else if (record.createdTime >= newestNamed_) {
        TakeProviderReference(place, providerReference);
    } else {
        NameProvider(place, providerReference);
    }
}

// Reading ends at the first empty record.
std::size_t CSmsDeliveryReports::AddWhole(std::string_view text, bool swapped, bool isLast) {
    const std::scoped_lock guard(lock_);
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find(kRecordEnd, at);
        if (end == std::string_view::npos && !isLast) break;
        const std::string_view piece = text.substr(at, end - at);
        if (piece.empty()) return std::string_view::npos;
        Add(piece, swapped);
        at = end == std::string_view::npos ? text.size() : end + kRecordEnd.size();
    }
    return at;
}

void CSmsDeliveryReports::LoadText(std::string_view text, bool swapped) {
    (void)AddWhole(text, swapped, true);
}

ResultCode CSmsDeliveryReports::Save(const std::string& file) const {
    const bool saved = ReplaceTextFile(
        file, [this](const TextSink& sink) { return Write(sink); }, *clock_);
    return saved ? result::Success : result::ReportsSaveFailed;
}

ResultCode CSmsDeliveryReports::Load(const std::string& file, bool swapped) {
    std::string rest;          // the start of a record whose end is still to come
    std::size_t searched = 0;  // no record ends before
    bool ended = false;
    const bool read = ReadTextPieces(file, [&](std::string_view piece) {
        if (ended) return;
        rest += piece;
        if (rest.find(kRecordEnd, searched) != std::string::npos) {
            const std::size_t taken = AddWhole(rest, swapped, false);
            ended = taken == std::string::npos;
            if (ended) return;
            rest.erase(0, taken);
        }
        searched = rest.empty() ? 0 : rest.size() - 1;
    });
    if (!read) return result::ReportsLoadFailed;
    if (!ended) (void)AddWhole(rest, swapped, true);
    return result::Success;
}
