// The received-message store: takes messages and parts as they arrive, in any order, and gives whole
// messages.
#pragma once
#include "foundation/Clock.h"
#include "foundation/MachineSettings.h"
#include "foundation/ResultCode.h"
#include "sms/MmsNotificationDecoder.h"
#include "sms/SmsMessageX.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class CSmsMessagesX {
  public:
    // `decoder` reads MMS notifications; without one, each counts as one that cannot be decoded.
    explicit CSmsMessagesX(Clock& clock = SystemClock(),
                           std::int32_t segmentationTimeout = MachineSegmentationTimeout(),
                           MmsNotificationDecoder* decoder = nullptr);

    // As the constructor's; before messages arrive.
    void SetNotificationDecoder(MmsNotificationDecoder& decoder) { decoder_ = &decoder; }

    // Appends a record and gives it the next id. A part whose numbering cannot be (number 0, or above the
    // count) counts as a single message, as 3GPP TS 23.040 section 9.2.3.24.1 asks.
    void Add(CSmsMessageX record);

    // Completes what can be completed. First, Next and Count do this by themselves.
    void Process();

    // 0 and a copy of the message, or 33060.
    ResultCode First(CSmsMessageX& message);
    ResultCode Next(CSmsMessageX& message);

    // The index-th complete message, from 0, as of the last pass; 33060 when there is none.
    ResultCode ByIndex(std::size_t index, CSmsMessageX& message) const;

    std::size_t Count();         // complete messages, after a pass
    std::size_t Stored() const;  // complete messages and waiting parts
    // Whether a message or a part that is held lies, alone or among others, at this place.
    bool HoldsLocation(std::string_view location) const;
    void Remove(std::size_t index);
    void RemoveRead();  // the messages that First and Next have given
    void Clear();

  private:
    using Sequence = std::uint64_t;  // the place of a record in arrival order
    struct Key {
        std::string sender, recipient;
        std::uint32_t reference;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    struct Group {
        std::map<std::uint32_t, std::set<Sequence>> parts;  // by part number, in arrival order
        std::uint32_t smallestCount = 0;
        bool changed = false;
    };
    using Groups = std::unordered_map<Key, Group, KeyHash>;
    struct Part {
        CSmsMessageX record;
        Groups::value_type* group;
        std::int64_t due;
    };

    using PartPlace = std::map<Sequence, Part>::iterator;

    void Pass();
    std::vector<Sequence> Candidates();
    std::vector<Sequence> AllParts();
    bool HasAllParts(const Group& group, std::uint32_t count) const;
    void CombineFrom(Sequence sequence);
    void Combine(PartPlace trigger, bool withGaps);
    void RemovePart(PartPlace part);
    void RecogniseNotification(CSmsMessageX& record);
    std::int64_t DueTime(std::int32_t timeSecs) const;

    Clock* clock_;
    std::int32_t segmentationTimeout_;
    MmsNotificationDecoder* decoder_;
    mutable std::mutex passLock_;     // one pass at a time; taken before the other
    std::deque<CSmsMessageX> fresh_;  // complete, but not yet given; of the pass alone
    mutable std::mutex lock_;         // of all that follows
    std::uint32_t nextId_ = 1;
    Sequence nextSequence_ = 0;
    std::deque<CSmsMessageX>
        complete_;          // in list order: what a pass completes always follows what was complete
    std::size_t next_ = 0;  // what Next returns
    std::deque<CSmsMessageX> arrived_;  // single messages since the last pass
    std::map<Sequence, Part> parts_;
    Groups groups_;
    std::vector<Groups::value_type*> changed_;
    bool incomplete_ = false;  // the last pass did not come to its end
    std::set<std::pair<std::int64_t, Sequence>> due_;
};
