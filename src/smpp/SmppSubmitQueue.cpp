#include "smpp/SmppSubmitQueue.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t kBlockSize = 65536;

// Stands before each entry's reference and PDU.
struct EntryHead {
    std::uint32_t pduSize;
    std::uint32_t referenceSize;
    bool wantsReport;
};

EntryHead HeadAt(const char* entry) {
    EntryHead head{};
    std::memcpy(&head, entry, sizeof head);
    return head;
}

}  // namespace

void SmppSubmitQueue::Push(const SmppQueuedSubmit& submit) {
    const std::size_t size = sizeof(EntryHead) + submit.reference.size() + submit.pdu.size();
    if (blocks_.empty() || blocks_.back().octets.capacity() - blocks_.back().octets.size() < size) {
        if (IsEmpty()) blocks_.clear();
        blocks_.emplace_back().octets.reserve(std::max(kBlockSize, size));
    }
    const EntryHead head{static_cast<std::uint32_t>(submit.pdu.size()),
                         static_cast<std::uint32_t>(submit.reference.size()), submit.wantsReport};
    std::string& octets = blocks_.back().octets;
    octets.append(reinterpret_cast<const char*>(&head), sizeof head);
    octets.append(submit.reference).append(submit.pdu);
    ++size_;
}

SmppQueuedSubmit SmppSubmitQueue::Front() const {
    const Block& block = blocks_.front();
    const EntryHead head = HeadAt(block.octets.data() + block.read);
    const std::string_view rest = std::string_view(block.octets).substr(block.read + sizeof head);
    return {rest.substr(head.referenceSize, head.pduSize), rest.substr(0, head.referenceSize),
            head.wantsReport};
}

void SmppSubmitQueue::Pop() {
    --size_;
    Block& block = blocks_.front();
    const EntryHead head = HeadAt(block.octets.data() + block.read);
    block.read += sizeof head + head.referenceSize + head.pduSize;
    if (block.read < block.octets.size()) return;
    if (blocks_.size() > 1) {
        blocks_.pop_front();
    } else {
        block.octets.clear();
        block.read = 0;
    }
}

void SmppSubmitQueue::Append(SmppSubmitQueue& other) {
    if (IsEmpty()) {
        std::swap(*this, other);
        return;
    }
    if (other.IsEmpty()) return;
    size_ += std::exchange(other.size_, 0);
    for (Block& block : other.blocks_) {
        const std::string_view rest = std::string_view(block.octets).substr(block.read);
        std::string& last = blocks_.back().octets;
        if (last.capacity() - last.size() >= rest.size()) {
            last.append(rest);
        } else {
            blocks_.push_back(std::move(block));
        }
    }
    if (other.blocks_.size() > 1) other.blocks_.resize(1);
    other.blocks_.front().octets.clear();
    other.blocks_.front().read = 0;
}
