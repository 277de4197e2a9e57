// The hash index, the queue of submissions and the window against plain containers, over random operations.
#include "foundation/HashIndex.h"
#include "smpp/SmppSubmitQueue.h"
#include "smpp/SmppWindow.h"

#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace {

TEST(HashIndex, FindsWhatWasInsertedAndNotErasedAlsoWhenHashesCollide) {
    for (const std::uint32_t distinctHashes : {1U, 7U, 5000U}) {
        std::mt19937 random(distinctHashes);
        HashIndex index;
        std::multimap<std::uint32_t, std::uint32_t> expected;  // hash, place
        for (std::uint32_t place = 0; place < 2000; ++place) {
            const std::uint32_t hash = static_cast<std::uint32_t>(random() % distinctHashes) * 0x10001U;
            index.Insert(hash, place);
            expected.emplace(hash, place);
            if (random() % 3 == 0) {
                const auto victim = std::next(expected.begin(), static_cast<int>(random() % expected.size()));
                index.Erase(victim->first, victim->second);
                index.Erase(victim->first, victim->second);  // what is not there is left alone
                EXPECT_FALSE(
                    index.Find(victim->first, [&](std::uint32_t found) { return found == victim->second; }));
                expected.erase(victim);
            }
        }
        for (const auto& entry : expected) {
            EXPECT_TRUE(index.Find(entry.first, [&](std::uint32_t found) { return found == entry.second; }));
        }
        index.Clear();
        EXPECT_FALSE(index.Find(0, [](std::uint32_t) { return true; }));
    }
}

TEST(SubmitQueue, KeepsOrderThroughBlocksAndTakeovers) {
    std::mt19937 random(1);
    SmppSubmitQueue intake;
    SmppSubmitQueue queue;
    std::deque<std::string> expected;
    int next = 0;
    for (int round = 0; round < 2000; ++round) {
        for (auto pushes = random() % 5; pushes > 0; --pushes) {
            const std::string pdu =
                std::to_string(next) + std::string(random() % 20 == 0 ? 70'000 : random() % 900, 'x');
            intake.Push({pdu, std::to_string(next), next % 2 == 0});
            expected.push_back(pdu);
            ++next;
        }
        if (random() % 2 == 0) {
            queue.Append(intake);
            ASSERT_TRUE(intake.IsEmpty());
        }
        for (auto pops = random() % 5; pops > 0 && !queue.IsEmpty(); --pops) {
            const SmppQueuedSubmit front = queue.Front();
            ASSERT_EQ(front.pdu, expected.front());
            ASSERT_TRUE(front.pdu.starts_with(front.reference));
            ASSERT_EQ(front.wantsReport, std::stoi(std::string(front.reference)) % 2 == 0);
            queue.Pop();
            expected.pop_front();
        }
    }
    queue.Append(intake);
    for (; !queue.IsEmpty(); queue.Pop(), expected.pop_front())
        ASSERT_EQ(queue.Front().pdu, expected.front());
    EXPECT_TRUE(expected.empty());
}

TEST(Window, CompletesEachOnceAndExpiresWhatWaitedTooLong) {
    std::mt19937 random(2);
    SmppWindow window;
    std::map<std::uint32_t, std::uint32_t> expected;  // sequence, since
    std::uint32_t now = 0xFFFFFF00U;                  // the tick count wraps on the way
    for (std::uint32_t sequence = 1; sequence < 3000; ++sequence) {
        now += static_cast<std::uint32_t>(random() % 3);
        window.Offer({std::to_string(sequence), false, sequence, now});
        expected[sequence] = now;
        if (random() % 8 != 0) {
            const auto some = std::next(expected.begin(), static_cast<int>(random() % expected.size()));
            const auto completed = window.Complete(some->first);
            ASSERT_TRUE(completed);
            EXPECT_EQ(completed->reference, std::to_string(some->first));
            EXPECT_FALSE(window.Complete(some->first));
            expected.erase(some);
        }
        window.Expire(now, 100, [&](const SmppInFlight& submit) {
            EXPECT_GE(now - submit.since, 100U);
            EXPECT_EQ(expected.erase(submit.sequence), 1U);
        });
        ASSERT_EQ(window.Size(), expected.size());
        for (const auto& [held, since] : expected) ASSERT_LT(now - since, 100U) << held;
    }
}

}  // namespace
