#include "sms/SmsDeliveryReports.h"

#include "foundation/ErrorTexts.h"
#include "foundation/Text.h"
#include "foundation/TextFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace {

constexpr std::size_t kLargestFile = std::size_t{256} << 20;

// The 64-bit number that the whole text is in the given base, if it is one.
std::optional<std::uint64_t> Number(std::string_view text, int base) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string HexText(std::uint64_t value) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%llX", static_cast<unsigned long long>(value));
    return text.data();
}

// An identifier without regard to case and leading zeros: its characters, one by one.
class LooseId {
  public:
    explicit LooseId(std::string_view id) : rest_(id) {
        while (rest_.size() > 1 && rest_.front() == '0') rest_.remove_prefix(1);
    }
    std::size_t size() const { return rest_.size(); }
    char operator[](std::size_t at) const { return UpperChar(rest_[at]); }

  private:
    std::string_view rest_;
};

template <class Text>
std::uint32_t HashCharacters(const Text& text) {
    std::uint64_t hash = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        hash = (hash ^ static_cast<std::uint8_t>(text[i])) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
    }
    return static_cast<std::uint32_t>(hash);
}

bool LooselyEqual(std::string_view left, std::string_view right) {
    const LooseId a(left);
    const LooseId b(right);
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

}  // namespace

// --- places and indexes

std::uint32_t CSmsDeliveryReports::HashOf(Key key, std::string_view text) {
    return key == Key::kProvider ? HashCharacters(LooseId(text)) : HashCharacters(text);
}

const std::string& CSmsDeliveryReports::TextOf(Key key, std::uint32_t place) const {
    const CSmsDeliveryReport& report = records_[place].report;
    return key == Key::kReference ? report.reference : report.providerReference;
}

std::optional<std::uint32_t> CSmsDeliveryReports::PlaceOf(Key key, std::string_view text, Match match) const {
    return IndexOf(key).Find(HashOf(key, text), [&](std::uint32_t place) {
        const std::string& held = TextOf(key, place);
        return match == Match::kLoose ? LooselyEqual(held, text) : held == text;
    });
}

void CSmsDeliveryReports::Enter(Key key, std::uint32_t place) {
    IndexOf(key).Insert(HashOf(key, TextOf(key, place)), place);
}

void CSmsDeliveryReports::Withdraw(Key key, std::uint32_t place) {
    IndexOf(key).Erase(HashOf(key, TextOf(key, place)), place);
}

CSmsDeliveryReport* CSmsDeliveryReports::Find(std::string_view reference) {
    const auto place = PlaceOf(Key::kReference, reference);
    return place ? &records_[*place].report : nullptr;
}

std::uint32_t CSmsDeliveryReports::Insert(CSmsDeliveryReport report) {
    oldest_ = std::min(oldest_, report.createdTime);
    if (const auto older = PlaceOf(Key::kReference, report.reference)) Erase(*older);
    auto place = static_cast<std::uint32_t>(records_.size());
    if (freePlaces_.empty()) {
        records_.emplace_back();
    } else {
        place = freePlaces_.back();
        freePlaces_.pop_back();
    }
    records_[place] = {std::move(report), true};
    Enter(Key::kReference, place);
    return place;
}

void CSmsDeliveryReports::Erase(std::uint32_t place) {
    if (!records_[place].report.providerReference.empty()) Withdraw(Key::kProvider, place);
    Withdraw(Key::kReference, place);
    records_[place] = {};
    freePlaces_.push_back(place);
}

void CSmsDeliveryReports::NameProvider(std::uint32_t place, std::string_view providerReference) {
    CSmsDeliveryReport& report = records_[place].report;
    if (!report.providerReference.empty()) Withdraw(Key::kProvider, place);
    report.providerReference = providerReference;
    if (providerReference.empty()) return;
    // Of messages with the same provider reference the newest is found.
    if (const auto older = PlaceOf(Key::kProvider, providerReference)) Withdraw(Key::kProvider, *older);
    Enter(Key::kProvider, place);
}

void CSmsDeliveryReports::PutStatus(CSmsDeliveryReport& report, std::int32_t status,
                                    std::int32_t statusCode) const {
    report.status = status;
    report.statusCode = statusCode;
    report.completedTime = IsCompletedStatus(status) ? static_cast<std::int32_t>(clock_->Now()) : 0;
}

// --- what happens to a message

void CSmsDeliveryReports::RecordSent(std::string_view reference, ReportWanted wanted) {
    CSmsDeliveryReport report;
    report.reference = reference;
    report.createdTime = static_cast<std::int32_t>(clock_->Now());
    switch (wanted) {
        case ReportWanted::kSubmitRequested:
            report.status = sms::asDELIVERYSTATUS_SUBMITREQUESTED;
            break;
        case ReportWanted::kNo:
            report.status = sms::asDELIVERYSTATUS_SUBMITTED;
            report.completedTime = report.createdTime;
            break;
        case ReportWanted::kYes:
            report.status = sms::asDELIVERYSTATUS_ENROUTE;
            break;
    }
    const std::scoped_lock guard(lock_);
    Insert(std::move(report));
}

void CSmsDeliveryReports::RecordProviderReference(std::string_view reference,
                                                  std::string_view providerReference) {
    const std::scoped_lock guard(lock_);
    const auto place = PlaceOf(Key::kReference, reference);
    if (!place) return;
    providerReferenceLength_ = providerReference.size();
    NameProvider(*place, providerReference);
}

void CSmsDeliveryReports::RecordAnswers(std::span<const SubmitAnswer> answers) {
    const std::scoped_lock guard(lock_);
    for (const SubmitAnswer& answer : answers) {
        const auto place = PlaceOf(Key::kReference, answer.reference);
        if (!place) continue;
        PutStatus(records_[*place].report, answer.status, 0);
        if (answer.providerReference.empty()) continue;
        providerReferenceLength_ = answer.providerReference.size();
        NameProvider(*place, answer.providerReference);
    }
}

void CSmsDeliveryReports::Update(std::string_view reference, std::int32_t status, std::int32_t completedTime,
                                 std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    CSmsDeliveryReport* report = Find(reference);
    if (report == nullptr) {
        CSmsDeliveryReport fresh;
        fresh.reference = reference;
        fresh.createdTime = static_cast<std::int32_t>(clock_->Now());
        report = &records_[Insert(std::move(fresh))].report;
    }
    report->status = status;
    report->completedTime = IsCompletedStatus(status) ? completedTime : 0;
    report->statusCode = statusCode;
}

void CSmsDeliveryReports::SetStatus(std::string_view reference, std::int32_t status,
                                    std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    if (CSmsDeliveryReport* report = Find(reference)) PutStatus(*report, status, statusCode);
}

// The documented look-up first: the id as the receipt writes it (converted to hexadecimal when receipts are
// decimal), padded to the length of the ids the server gave. Then, for servers that write one id in two ways,
// without regard to case, leading zeros and base.
CSmsDeliveryReport* CSmsDeliveryReports::FindByProvider(std::string_view id) {
    const auto asDecimal = Number(id, 10);
    std::string wanted = receiptFormat_ == sms::asSMPPDELIVERYREPORTFORMAT_DEC && asDecimal
                             ? HexText(*asDecimal)
                             : std::string(id);
    if (wanted.size() < providerReferenceLength_)
        wanted.insert(0, providerReferenceLength_ - wanted.size(), '0');
    if (const auto exact = PlaceOf(Key::kProvider, wanted)) return &records_[*exact].report;

    const auto loose = [this](std::string_view other) {
        return PlaceOf(Key::kProvider, other, Match::kLoose);
    };
    auto place = loose(id);
    if (!place && asDecimal) place = loose(HexText(*asDecimal));
    if (!place) {
        if (const auto asHex = Number(id, 16)) place = loose(std::to_string(*asHex));
    }
    return place ? &records_[*place].report : nullptr;
}

std::optional<std::string> CSmsDeliveryReports::ApplyReceipt(const SmsReceipt& receipt) {
    const std::scoped_lock guard(lock_);
    CSmsDeliveryReport* report = FindByProvider(receipt.id);
    if (report == nullptr) return std::nullopt;
    report->status = receipt.status;
    report->completedTime = receipt.completedTime;
    report->statusCode = receipt.statusCode;
    return report->reference;
}

std::optional<CSmsDeliveryReport> CSmsDeliveryReports::Query(std::string_view reference) const {
    const std::scoped_lock guard(lock_);
    const auto place = PlaceOf(Key::kReference, reference);
    if (!place) return std::nullopt;
    return records_[*place].report;
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
        if (record.report.createdTime < limit) {
            Erase(place);
        } else {
            oldest_ = std::min(oldest_, record.report.createdTime);
        }
    }
}

void CSmsDeliveryReports::Clear() {
    const std::scoped_lock guard(lock_);
    records_.clear();
    freePlaces_.clear();
    for (HashIndex& index : indexes_) index.Clear();
    providerReferenceLength_ = 0;
}

std::size_t CSmsDeliveryReports::Count() const {
    const std::scoped_lock guard(lock_);
    return records_.size() - freePlaces_.size();
}

void CSmsDeliveryReports::SetReceiptFormat(std::int32_t format) {
    const std::scoped_lock guard(lock_);
    receiptFormat_ = format;
}

std::string CSmsDeliveryReports::SaveText() const {
    const std::scoped_lock guard(lock_);
    std::vector<const CSmsDeliveryReport*> sorted;
    for (const Record& record : records_) {
        if (record.isHeld) sorted.push_back(&record.report);
    }
    std::ranges::sort(sorted, {}, &CSmsDeliveryReport::reference);
    std::string text;
    for (const CSmsDeliveryReport* held : sorted) {
        const CSmsDeliveryReport& report = *held;
        if (!text.empty()) text += "||";
        text.append(report.reference).append(";;").append(report.providerReference);
        for (const std::int32_t number :
             {report.status, report.completedTime, report.statusCode, report.extra, report.createdTime}) {
            text.append(";;").append(std::to_string(number));
        }
    }
    return text;
}

void CSmsDeliveryReports::LoadText(std::string_view text, bool swapped) {
    const std::scoped_lock guard(lock_);
    while (!text.empty()) {
        const std::size_t end = text.find("||");
        const std::string_view piece = text.substr(0, end);
        if (piece.empty()) return;
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 2);
        std::vector<std::string_view> fields = Split(piece, ";;");
        fields.resize(std::max<std::size_t>(fields.size(), 7));
        if (swapped) std::swap(fields[0], fields[1]);
        CSmsDeliveryReport report;
        report.reference = fields[0];
        report.status = ToInt(fields[2]);
        report.completedTime = ToInt(fields[3]);
        report.statusCode = ToInt(fields[4]);
        report.extra = ToInt(fields[5]);
        report.createdTime = ToInt(fields[6]);
        NameProvider(Insert(std::move(report)), fields[1]);
    }
}

ResultCode CSmsDeliveryReports::Save(const std::string& file) const {
    return ReplaceTextFile(file, SaveText()) ? result::Success : result::ReportsSaveFailed;
}

ResultCode CSmsDeliveryReports::Load(const std::string& file, bool swapped) {
    const auto text = ReadTextFile(file, kLargestFile);
    if (!text) return result::ReportsLoadFailed;
    LoadText(*text, swapped);
    return result::Success;
}
