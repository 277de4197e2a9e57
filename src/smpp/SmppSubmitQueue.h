// Encoded submit_sm PDUs in the order of their queuing. They lie one behind the other in large blocks, so
// that a queued message costs its octets and no allocation of its own.
#pragma once
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

// One encoded submit_sm with what its answer will need. The texts are valid until the next change of the
// queue.
struct SmppQueuedSubmit {
    std::string_view pdu;
    std::string_view reference;
    bool wantsReport = false;
};

class SmppSubmitQueue {
  public:
    bool IsEmpty() const { return size_ == 0; }
    std::size_t Size() const { return size_; }
    void Push(const SmppQueuedSubmit& submit);
    SmppQueuedSubmit Front() const;
    void Pop();

    // Takes all of the other queue behind its own; the other is empty afterwards.
    void Append(SmppSubmitQueue& other);

  private:
    struct Block {
        std::string octets;
        std::size_t read = 0;
    };
    std::deque<Block> blocks_;  // only an only block may be read to its end
    std::size_t size_ = 0;      // messages
};
