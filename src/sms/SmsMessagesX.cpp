#include "sms/SmsMessagesX.h"

#include "Common/Wsp/MmsNumbers.h"
#include "Common/Wsp/PushHeader.h"
#include "foundation/ErrorTexts.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <utility>

namespace {

constexpr std::u16string_view kMissingPart = u"* Missing Part *";
constexpr std::size_t kContentTypeAt = 3;

std::string LowOctets(std::u16string_view text) {
    std::string octets(text.size(), '\0');
    std::ranges::transform(text, octets.begin(), [](char16_t c) { return static_cast<char>(c & 0xFF); });
    return octets;
}

std::string NotificationText(const MmsNotification& unit) {
    if (unit.messageType == mms::type::kNotificationInd) {
        return "M-NOTIFICATION-IND URL=" + unit.contentLocation + " ID=" + unit.transactionId +
               " FROM=" + unit.from + " SIZE=" + std::to_string(unit.messageSize) +
               " EXPIRATION=" + std::to_string(unit.expiry);
    }
    if (unit.messageType == mms::type::kDeliveryInd) {
        std::array<char, 4> status{};
        std::snprintf(status.data(), status.size(), "%02X", unit.status);
        return "M-DELIVERY-IND ID=" + unit.messageId + " TO=" + unit.to + " DATE=" + unit.date +
               " STATUS=" + status.data();
    }
    return "WAP/WSP message";
}

}  // namespace

std::size_t CSmsMessagesX::KeyHash::operator()(const Key& key) const {
    const std::hash<std::string_view> hash;
    return hash(key.sender) * 31 + hash(key.recipient) * 17 + key.reference;
}

CSmsMessagesX::CSmsMessagesX(Clock& clock, std::int32_t segmentationTimeout, MmsNotificationDecoder* decoder)
    : clock_(&clock), segmentationTimeout_(segmentationTimeout), decoder_(decoder) {}

// The moment from which the part is older than the time-out: the age is a signed 32-bit difference to the
// message's own time stamp.
std::int64_t CSmsMessagesX::DueTime(std::int32_t timeSecs) const {
    const std::int64_t now = clock_->Now();
    const auto age =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(now) - static_cast<std::uint32_t>(timeSecs));
    return now + (std::int64_t{segmentationTimeout_} - age) + 1;
}

void CSmsMessagesX::Add(CSmsMessageX record) {
    const std::scoped_lock guard(lock_);
    record.Id = nextId_++;
    record.State = MessageState::kPending;
    if (record.PartNumber == 0 || record.PartNumber > record.PartCount) record.SetSinglePart();
    if (record.PartCount == 1) {
        arrived_.push_back(std::move(record));
        return;
    }
    const auto [entry, isNew] = groups_.try_emplace({record.Sender, record.Recipient, record.PartReference});
    Group& group = entry->second;
    group.smallestCount = isNew ? record.PartCount : std::min(group.smallestCount, record.PartCount);
    group.parts[record.PartNumber].insert(nextSequence_);
    if (!group.changed) {
        group.changed = true;
        changed_.push_back(&*entry);
    }
    const std::int64_t due = DueTime(record.TimeSecs);
    due_.emplace(due, nextSequence_);
    parts_.emplace_hint(parts_.end(), nextSequence_, Part{std::move(record), &*entry, due});
    ++nextSequence_;
}

bool CSmsMessagesX::HasAllParts(const Group& group, std::uint32_t count) const {
    if (group.parts.size() < count) return false;
    const auto end = group.parts.upper_bound(count);
    return std::distance(group.parts.begin(), end) == static_cast<std::ptrdiff_t>(count);
}

// One pass has the outcome of walking all waiting records in arrival order, but only touches those that can
// change: single messages, groups that gained a part, and parts whose time has come. Each step either happens
// or does not; after one that could not, the next pass looks at every part.
void CSmsMessagesX::Pass() {
    {
        const std::scoped_lock guard(lock_);
        const bool all = std::exchange(incomplete_, true);
        const std::vector<Sequence> candidates = all ? AllParts() : Candidates();
        for (; !arrived_.empty(); arrived_.pop_front()) fresh_.push_back(std::move(arrived_.front()));
        for (const Sequence sequence : candidates) CombineFrom(sequence);
        incomplete_ = false;
    }
    // The decoder may take its time: whoever adds messages does not wait for it.
    for (CSmsMessageX& record : fresh_) {
        if (record.State == MessageState::kPending) RecogniseNotification(record);
        record.State = MessageState::kComplete;
    }
    const std::scoped_lock guard(lock_);
    for (; !fresh_.empty(); fresh_.pop_front()) complete_.push_back(std::move(fresh_.front()));
}

// A message takes the oldest part of each number, which need not be the one that triggers it; that one goes
// on until it is used too or has to wait.
void CSmsMessagesX::CombineFrom(Sequence sequence) {
    for (;;) {
        const auto trigger = parts_.find(sequence);
        if (trigger == parts_.end()) return;
        const Part& part = trigger->second;
        const bool whole = HasAllParts(part.group->second, part.record.PartCount);
        if (!whole && part.due > clock_->Now()) return;
        Combine(trigger, !whole);
    }
}

std::vector<CSmsMessagesX::Sequence> CSmsMessagesX::AllParts() {
    for (Groups::value_type* entry : changed_) entry->second.changed = false;
    changed_.clear();
    std::vector<Sequence> all;
    for (const auto& [sequence, part] : parts_) all.push_back(sequence);
    return all;
}

std::vector<CSmsMessagesX::Sequence> CSmsMessagesX::Candidates() {
    std::vector<Sequence> candidates;
    for (Groups::value_type* entry : changed_) {
        Group& group = entry->second;
        group.changed = false;
        if (group.parts.size() < group.smallestCount) continue;
        for (const auto& [number, sequences] : group.parts) {
            candidates.insert(candidates.end(), sequences.begin(), sequences.end());
        }
    }
    changed_.clear();
    const std::int64_t now = clock_->Now();
    for (auto due = due_.begin(); due != due_.end() && due->first <= now; ++due)
        candidates.push_back(due->second);
    std::ranges::sort(candidates);
    return candidates;
}

void CSmsMessagesX::Combine(PartPlace trigger, bool withGaps) {
    CSmsMessageX whole;
    const CSmsMessageX& from = trigger->second.record;
    whole.TimeSecs = from.TimeSecs;
    whole.Sender = from.Sender;
    whole.Recipient = from.Recipient;
    whole.SMSC = from.SMSC;
    whole.Format = from.Format;
    whole.PartCount = 1;
    if (!withGaps) {  // a message completed by the time-out keeps no time text, no arrival and no ports
        whole.ReceivedTime = from.ReceivedTime;
        whole.Time = from.Time;
        whole.SourcePort = from.SourcePort;
        whole.DestinationPort = from.DestinationPort;
    }
    Group& group = trigger->second.group->second;
    std::vector<PartPlace> used;  // what is not used goes on waiting
    for (std::uint32_t number = 1; number <= from.PartCount; ++number) {
        const auto found = group.parts.find(number);
        if (found == group.parts.end()) {
            whole.Data += kMissingPart;
            continue;
        }
        used.push_back(parts_.find(*found->second.begin()));
        whole.Data += used.back()->second.record.Data;
        whole.StorageLocation += used.back()->second.record.StorageLocation;
    }
    whole.Id = nextId_++;
    fresh_.push_back(std::move(whole));
    for (const PartPlace& part : used) RemovePart(part);
}

void CSmsMessagesX::RemovePart(PartPlace part) {
    Groups::value_type* entry = part->second.group;
    Group& group = entry->second;
    const auto numbered = group.parts.find(part->second.record.PartNumber);
    numbered->second.erase(part->first);
    if (numbered->second.empty()) group.parts.erase(numbered);
    due_.erase({part->second.due, part->first});
    parts_.erase(part);
    if (!group.parts.empty()) return;
    if (group.changed) std::erase(changed_, entry);
    groups_.erase(groups_.find(entry->first));
}

void CSmsMessagesX::RecogniseNotification(CSmsMessageX& record) {
    if (record.DestinationPort != wapport::kPush ||
        (record.SourcePort != wapport::kConnectionlessWsp && record.SourcePort != 0)) {
        return;
    }
    const std::string octets = LowOctets(record.Data);
    if (octets.size() <= kContentTypeAt) return;
    const std::string_view content = std::string_view(octets).substr(kContentTypeAt);
    if (content.find(mms::kContentType) == std::string_view::npos &&
        static_cast<std::uint8_t>(content.front()) != mms::kContentTypeCode) {
        return;
    }
    const std::size_t pduAt = static_cast<std::uint8_t>(octets[2]) + kContentTypeAt;
    std::optional<MmsNotification> unit;
    if (decoder_ != nullptr && pduAt < octets.size())
        unit = decoder_->Decode(std::string_view(octets).substr(pduAt),
                                record.TimeSecs > 0 ? record.TimeSecs : clock_->Now());
    const std::string text = NotificationText(unit.value_or(MmsNotification{}));
    record.Data.assign(text.begin(), text.end());
    record.SourcePort = 0;
    record.DestinationPort = 0;
    record.Format = sms::asMESSAGEFORMAT_NOTIFICATION_MMS;
}

void CSmsMessagesX::Process() {
    const std::scoped_lock pass(passLock_);
    Pass();
}

ResultCode CSmsMessagesX::First(CSmsMessageX& message) {
    Process();
    const std::scoped_lock guard(lock_);
    next_ = 0;
    if (complete_.empty()) return result::NoMoreMessages;
    message = CSmsMessageX(complete_[next_++]);
    return result::Success;
}

ResultCode CSmsMessagesX::Next(CSmsMessageX& message) {
    Process();
    const std::scoped_lock guard(lock_);
    if (next_ >= complete_.size()) return result::NoMoreMessages;
    message = CSmsMessageX(complete_[next_++]);
    return result::Success;
}

ResultCode CSmsMessagesX::ByIndex(std::size_t index, CSmsMessageX& message) const {
    const std::scoped_lock guard(lock_);
    if (index >= complete_.size()) return result::NoMoreMessages;
    message = CSmsMessageX(complete_[index]);
    return result::Success;
}

std::size_t CSmsMessagesX::Count() {
    Process();
    const std::scoped_lock guard(lock_);
    return complete_.size();
}

std::size_t CSmsMessagesX::Stored() const {
    const std::scoped_lock guard(passLock_, lock_);
    return complete_.size() + fresh_.size() + arrived_.size() + parts_.size();
}

bool CSmsMessagesX::HoldsLocation(std::string_view location) const {
    const auto lies = [location](const CSmsMessageX& record) {
        return record.StorageLocation.find(location) != std::string::npos;
    };
    const std::scoped_lock guard(passLock_, lock_);
    return std::ranges::any_of(complete_, lies) || std::ranges::any_of(fresh_, lies) ||
           std::ranges::any_of(arrived_, lies) ||
           std::ranges::any_of(parts_, [&](const auto& part) { return lies(part.second.record); });
}

void CSmsMessagesX::Remove(std::size_t index) {
    const std::scoped_lock guard(lock_);
    if (index >= complete_.size()) return;
    complete_.erase(complete_.begin() + static_cast<std::ptrdiff_t>(index));
    if (index < next_) --next_;
}

void CSmsMessagesX::RemoveRead() {
    const std::scoped_lock guard(lock_);
    complete_.erase(complete_.begin(), complete_.begin() + static_cast<std::ptrdiff_t>(next_));
    next_ = 0;
}

void CSmsMessagesX::Clear() {
    const std::scoped_lock guard(passLock_, lock_);
    fresh_.clear();
    incomplete_ = false;
    complete_.clear();
    next_ = 0;
    arrived_.clear();
    parts_.clear();
    groups_.clear();
    changed_.clear();
    due_.clear();
}
