// The server at the other end of a Stream, in virtual time: rows of what it expects and what it gives.
#pragma once
#include "foundation/net/Stream.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class ScriptedPeer : public Stream {
  public:
    // What it does `after` so many ms from the line, or from what it did before. One piece is what one read
    // gives, or less.
    struct Act {
        enum class Kind { kSay, kFlood, kClose, kReset };
        std::uint32_t after = 0;
        std::string octets;
        Kind kind = Kind::kSay;
    };
    // A line, or several with their ends between them but for the last, and the answer. An empty first row is
    // played upon connecting.
    struct Row {
        std::string expects;
        std::vector<Act> acts;
    };

    // As what a row expects: a text of any lines up to one that is only a dot.
    static constexpr const char* kUpToDot = "\r\n.";

    static Act Says(std::string octets, std::uint32_t after = 0) { return {after, std::move(octets)}; }
    // Says the octets again and again, every `every` ms.
    static Act Floods(std::string octets, std::uint32_t every = 0) {
        return {every, std::move(octets), Act::Kind::kFlood};
    }
    static Act Closes(std::uint32_t after = 0) { return {after, {}, Act::Kind::kClose}; }
    static Act Resets(std::uint32_t after = 0) { return {after, {}, Act::Kind::kReset}; }
    // Each octet in a piece of its own.
    static std::vector<Act> Dribbles(std::string_view octets, std::uint32_t every) {
        std::vector<Act> acts;
        for (const char octet : octets) acts.push_back(Says(std::string(1, octet), every));
        return acts;
    }

    ScriptedPeer(VirtualClock& clock, std::vector<Row> rows)
        : Stream(clock), clock_(&clock), rows_(rows.begin(), rows.end()) {}
    ~ScriptedPeer() override { EXPECT_TRUE(rows_.empty()) << "never said: " << rows_.front().expects; }

    std::string heard;               // every octet that was sent to it
    std::size_t room = 100'000'000;  // octets that it still takes
    std::uint32_t writeTime = 0;     // ms that each taking takes
    std::size_t mostTaken = room;    // octets that one taking takes
    int connectOutcome = tcp::kSuccess;
    std::uint32_t connectTime = 0;

    int Connect(const std::string& /*host*/, std::uint16_t /*port*/, std::uint32_t timeout) override {
        clock_->Sleep(std::min(connectTime, timeout));
        if (connectTime > timeout) return tcp::kConnectTimedOut;
        connected_ = connectOutcome == tcp::kSuccess;
        if (connected_ && !rows_.empty() && rows_.front().expects.empty()) Play();
        return connectOutcome;
    }
    bool IsConnected() const override { return connected_; }

  private:
    struct Due {
        std::uint32_t at;
        Act act;
        std::size_t taken = 0;  // octets of it that were read
    };

    int Write(const char* data, std::size_t size) override {
        if (IsDue() && due_.front().act.kind == Act::Kind::kReset) return -net::kReset;
        clock_->Sleep(writeTime);
        size = std::min({size, room, mostTaken});
        if (size == 0) return -net::kWouldBlock;
        room -= size;
        heard.append(data, size);
        pending_.append(data, size);
        while (!pending_.empty()) {
            const std::string wanted = rows_.empty() ? std::string() : rows_.front().expects + "\r\n";
            if (!rows_.empty() && rows_.front().expects == kUpToDot) {
                const std::size_t end = pending_.find(wanted);
                if (end == std::string::npos) break;
                pending_.erase(0, end + wanted.size());
                Play();
                continue;
            }
            if (wanted.starts_with(pending_) && pending_ != wanted) break;  // more is to come
            if (rows_.empty() || !pending_.starts_with(wanted)) {
                ADD_FAILURE() << "said: " << pending_ << "\nexpected: " << wanted;
                pending_.clear();
                break;
            }
            pending_.erase(0, wanted.size());
            Play();
        }
        return static_cast<int>(size);
    }

    int Read(char* data, std::size_t size) override {
        if (!IsDue()) return -net::kWouldBlock;
        Due& next = due_.front();
        switch (next.act.kind) {
            case Act::Kind::kClose:
                return 0;
            case Act::Kind::kReset:
                return -net::kReset;
            default:
                break;
        }
        const std::size_t count = next.act.octets.copy(data, size, next.taken);
        if (next.act.kind == Act::Kind::kFlood) {
            std::string& octets = next.act.octets;
            std::rotate(octets.begin(), octets.begin() + static_cast<std::ptrdiff_t>(count), octets.end());
            next.at = clock_->Ticks() + next.act.after;
        } else if ((next.taken += count) == next.act.octets.size()) {
            due_.pop_front();
        }
        return static_cast<int>(count);
    }

    net::Readiness Look() override {
        if (!IsDue()) return net::Readiness::kNothing;
        const Act::Kind kind = due_.front().act.kind;
        return kind == Act::Kind::kClose || kind == Act::Kind::kReset ? net::Readiness::kEnded
                                                                      : net::Readiness::kData;
    }
    void Close() override {
        connected_ = false;
        due_.clear();
    }

    bool IsDue() const {
        return !due_.empty() && static_cast<std::int32_t>(clock_->Ticks() - due_.front().at) >= 0;
    }
    void Play() {
        std::uint32_t at = clock_->Ticks();
        if (!due_.empty()) at = std::max(at, due_.back().at);
        for (Act& act : rows_.front().acts) {
            at += act.after;
            due_.push_back({at, std::move(act)});
        }
        rows_.pop_front();
    }

    VirtualClock* clock_;
    std::deque<Row> rows_;
    std::deque<Due> due_;
    std::string pending_;
    bool connected_ = false;
};
