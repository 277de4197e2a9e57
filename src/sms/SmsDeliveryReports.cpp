#include "sms/SmsDeliveryReports.h"

#include "foundation/Text.h"
#include "foundation/TextFile.h"
#include "frame/ErrorTexts.h"

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

// An identifier without regard to case and leading zeros.
std::string Loose(std::string_view id) {
    const std::size_t first = id.find_first_not_of('0');
    return first == std::string_view::npos ? "0" : Upper(id.substr(first));
}

}  // namespace

void CSmsDeliveryReports::RecordSent(const std::string& reference, ReportWanted wanted) {
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

void CSmsDeliveryReports::Insert(CSmsDeliveryReport report) {
    oldest_ = std::min(oldest_, report.createdTime);
    // References mostly ascend, so that the end is the first place to look.
    const auto before = reports_.size();
    std::string key = report.reference;
    const auto place = reports_.try_emplace(reports_.end(), std::move(key));
    if (reports_.size() == before) ForgetProvider(place->second);
    place->second = std::move(report);
}

void CSmsDeliveryReports::ForgetProvider(const CSmsDeliveryReport& report) {
    if (report.providerReference.empty()) return;
    const auto exact = byProvider_.find(report.providerReference);
    if (exact != byProvider_.end() && exact->second == report.reference) byProvider_.erase(exact);
    const auto loose = byLooseId_.find(Loose(report.providerReference));
    if (loose != byLooseId_.end() && loose->second == report.reference) byLooseId_.erase(loose);
}

void CSmsDeliveryReports::NameProvider(CSmsDeliveryReport& report, const std::string& providerReference) {
    ForgetProvider(report);
    report.providerReference = providerReference;
    providerReferenceLength_ = providerReference.size();
    byProvider_[providerReference] = report.reference;
    byLooseId_[Loose(providerReference)] = report.reference;
}

void CSmsDeliveryReports::RecordProviderReference(const std::string& reference,
                                                  const std::string& providerReference) {
    const std::scoped_lock guard(lock_);
    const auto report = reports_.find(reference);
    if (report != reports_.end()) NameProvider(report->second, providerReference);
}

void CSmsDeliveryReports::RecordAnswer(const std::string& reference, std::int32_t status,
                                       const std::string& providerReference) {
    const std::scoped_lock guard(lock_);
    const auto report = reports_.find(reference);
    if (report == reports_.end()) return;
    report->second.status = status;
    report->second.statusCode = 0;
    report->second.completedTime = IsCompletedStatus(status) ? static_cast<std::int32_t>(clock_->Now()) : 0;
    if (!providerReference.empty()) NameProvider(report->second, providerReference);
}

void CSmsDeliveryReports::Update(const std::string& reference, std::int32_t status,
                                 std::int32_t completedTime, std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    auto report = reports_.find(reference);
    if (report == reports_.end()) {
        CSmsDeliveryReport fresh;
        fresh.reference = reference;
        fresh.createdTime = static_cast<std::int32_t>(clock_->Now());
        oldest_ = std::min(oldest_, fresh.createdTime);
        report = reports_.emplace(reference, std::move(fresh)).first;
    }
    report->second.status = status;
    report->second.completedTime = IsCompletedStatus(status) ? completedTime : 0;
    report->second.statusCode = statusCode;
}

void CSmsDeliveryReports::SetStatus(const std::string& reference, std::int32_t status,
                                    std::int32_t statusCode) {
    const std::scoped_lock guard(lock_);
    const auto report = reports_.find(reference);
    if (report == reports_.end()) return;
    report->second.status = status;
    report->second.statusCode = statusCode;
    report->second.completedTime = IsCompletedStatus(status) ? static_cast<std::int32_t>(clock_->Now()) : 0;
}

// The documented look-up first: the id as the receipt writes it (converted to hexadecimal when receipts are
// decimal), padded to the length of the ids the server gave. Then, for servers that write one id in two ways,
// without regard to case, leading zeros and base.
CSmsDeliveryReport* CSmsDeliveryReports::FindByProvider(std::string_view id) {
    const auto reportOf = [this](const std::string& reference) -> CSmsDeliveryReport* {
        const auto report = reports_.find(reference);
        return report != reports_.end() ? &report->second : nullptr;
    };
    const auto asDecimal = Number(id, 10);
    std::string wanted = receiptFormat_ == sms::asSMPPDELIVERYREPORTFORMAT_DEC && asDecimal
                             ? HexText(*asDecimal)
                             : std::string(id);
    if (wanted.size() < providerReferenceLength_)
        wanted.insert(0, providerReferenceLength_ - wanted.size(), '0');
    if (const auto exact = byProvider_.find(wanted); exact != byProvider_.end())
        return reportOf(exact->second);

    std::array<std::string, 3> others{Loose(id), {}, {}};
    if (asDecimal) others[1] = HexText(*asDecimal);
    if (const auto asHex = Number(id, 16)) others[2] = std::to_string(*asHex);
    for (const std::string& other : others) {
        const auto loose = byLooseId_.find(other);
        if (loose != byLooseId_.end()) return reportOf(loose->second);
    }
    return nullptr;
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
    const auto report = reports_.find(reference);
    if (report == reports_.end()) return std::nullopt;
    return report->second;
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
    const auto report = reports_.find(reference);
    if (report == reports_.end()) return;
    ForgetProvider(report->second);
    reports_.erase(report);
}

void CSmsDeliveryReports::RemoveOlderThan(std::int32_t seconds) {
    const std::scoped_lock guard(lock_);
    const auto limit = static_cast<std::int32_t>(clock_->Now()) - seconds;
    if (oldest_ >= limit) return;
    oldest_ = INT32_MAX;
    for (auto report = reports_.begin(); report != reports_.end();) {
        if (report->second.createdTime < limit) {
            ForgetProvider(report->second);
            report = reports_.erase(report);
        } else {
            oldest_ = std::min(oldest_, report->second.createdTime);
            ++report;
        }
    }
}

void CSmsDeliveryReports::Clear() {
    const std::scoped_lock guard(lock_);
    reports_.clear();
    byProvider_.clear();
    byLooseId_.clear();
    providerReferenceLength_ = 0;
}

std::size_t CSmsDeliveryReports::Count() const {
    const std::scoped_lock guard(lock_);
    return reports_.size();
}

void CSmsDeliveryReports::SetReceiptFormat(std::int32_t format) {
    const std::scoped_lock guard(lock_);
    receiptFormat_ = format;
}

std::string CSmsDeliveryReports::SaveText() const {
    const std::scoped_lock guard(lock_);
    std::string text;
    for (const auto& [reference, report] : reports_) {
        if (!text.empty()) text += "||";
        text.append(reference).append(";;").append(report.providerReference);
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
        report.providerReference = fields[1];
        report.status = ToInt(fields[2]);
        report.completedTime = ToInt(fields[3]);
        report.statusCode = ToInt(fields[4]);
        report.extra = ToInt(fields[5]);
        report.createdTime = ToInt(fields[6]);
        const std::string reference = report.reference;
        const std::string provider = report.providerReference;
        Insert(std::move(report));
        if (provider.empty()) continue;
        byProvider_[provider] = reference;
        byLooseId_[Loose(provider)] = reference;
    }
}

std::int32_t CSmsDeliveryReports::Save(const std::string& file) const {
    return ReplaceTextFile(file, SaveText()) ? result::Success : result::ReportsSaveFailed;
}

std::int32_t CSmsDeliveryReports::Load(const std::string& file, bool swapped) {
    const auto text = ReadTextFile(file, kLargestFile);
    if (!text) return result::ReportsLoadFailed;
    LoadText(*text, swapped);
    return result::Success;
}
