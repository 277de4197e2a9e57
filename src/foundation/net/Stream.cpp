#include "foundation/net/Stream.h"

#include <algorithm>

namespace {

constexpr std::size_t kGrowth = 1024;

int TimedOut(const Timer& total, const Timer& idle, int otherwise) {
    if (total.Expired()) return tcp::kTotalTimedOut;
    return idle.Expired() ? tcp::kIdleTimedOut : otherwise;
}

// A running match of the terminator over octets that come piece by piece.
class TerminatorSearch {
  public:
    explicit TerminatorSearch(const std::string& terminator) : terminator_(&terminator) {}

    // Goes on behind what was searched before.
    bool FoundIn(const std::string& octets) {
        while (matched_ < terminator_->size() && at_ < octets.size()) {
            matched_ = octets[at_++] == (*terminator_)[matched_] ? matched_ + 1 : 0;
        }
        return matched_ != 0 && matched_ == terminator_->size();
    }
    // Behind the terminator that was found.
    std::size_t End() const { return at_; }

  private:
    const std::string* terminator_;
    std::size_t at_ = 0;
    std::size_t matched_ = 0;
};

}  // namespace

int Stream::Disconnect() {
    lines_.clear();
    Close();
    return tcp::kSuccess;
}

int Stream::SendSome(std::string_view octets, std::size_t& sent) {
    sent = 0;
    if (!IsConnected()) return tcp::kNotConnected;
    if (octets.empty()) return tcp::kSuccess;
    const int moved = Write(octets.data(), octets.size());
    if (moved > 0) sent = static_cast<std::size_t>(moved);
    if (moved >= 0 || moved == -net::kWouldBlock) return tcp::kSuccess;
    if (moved == -net::kAborted) return tcp::kAborted;
    return moved == -net::kReset ? tcp::kClosedByPeer : moved;
}

int Stream::Send(std::string_view octets, std::uint32_t total, std::uint32_t idle, std::size_t& sent) {
    sent = 0;
    const Timer whole(*clock_, total);
    Timer quiet(*clock_, idle);
    if (octets.empty() && IsConnected()) return tcp::kSuccess;
    int code = IsConnected() ? tcp::kSuccess : tcp::kNotConnected;
    while (code == tcp::kSuccess && sent < octets.size() && !whole.Expired() && !quiet.Expired()) {
        std::size_t moved = 0;
        code = SendSome(octets.substr(sent), moved);
        sent += moved;
        if (moved > 0) {
            quiet = Timer(*clock_, idle);
        } else if (code == tcp::kAborted || code == tcp::kClosedByPeer) {
            Disconnect();
        } else if (code != tcp::kSuccess) {
            return code;
        } else {
            clock_->Sleep(kPollPause);
        }
    }
    return TimedOut(whole, quiet, code);
}

int Stream::SendLine(std::string_view text, std::uint32_t total, std::uint32_t idle) {
    if (!IsConnected()) return tcp::kNotConnected;
    std::size_t sent = 0;
    return Send(std::string(text) + terminator_, total, idle, sent);
}

int Stream::ReceiveRaw(char* buffer, std::size_t size, std::size_t& received) {
    received = 0;
    if (!IsConnected()) return tcp::kNotConnected;
    const int moved = Read(buffer, size);
    if (moved > 0) {
        received = static_cast<std::size_t>(moved);
        return tcp::kSuccess;
    }
    if (moved == 0) {
        Disconnect();
        return tcp::kClosedByPeer;
    }
    if (moved == -net::kWouldBlock) return tcp::kSuccess;
    if (moved == -net::kAborted || moved == -net::kReset) {
        Disconnect();
        return tcp::kAborted;
    }
    return -moved;
}

int Stream::Receive(char* buffer, std::size_t size, std::size_t& received) {
    if (lines_.empty()) return ReceiveRaw(buffer, size, received);
    received = std::min(size, lines_.size());
    lines_.copy(buffer, received);
    lines_.erase(0, received);
    return tcp::kSuccess;
}

int Stream::ReceiveWithin(char* buffer, std::size_t size, std::uint32_t timeout, std::size_t& received) {
    int code = tcp::kSuccess;
    const bool came = Await(timeout, [&] {
        code = Receive(buffer, size, received);
        return code != tcp::kSuccess || received > 0;
    });
    return came ? code : tcp::kTotalTimedOut;
}

int Stream::ReceiveLine(std::string& line, std::uint32_t total, std::uint32_t idle) {
    line.clear();
    const Timer whole(*clock_, total);
    Timer quiet(*clock_, idle);
    TerminatorSearch search(terminator_);
    int code = IsConnected() ? tcp::kSuccess : tcp::kNotConnected;
    while (code == tcp::kSuccess) {
        if (search.FoundIn(lines_)) {
            line = lines_.substr(0, search.End() - terminator_.size());
            lines_.erase(0, search.End());
            return tcp::kSuccess;
        }
        const std::size_t held = lines_.size();
        if (held >= longestLine_) return tcp::kBufferFull;
        lines_.resize(held + kGrowth);
        std::size_t received = 0;
        code = ReceiveRaw(&lines_[held], kGrowth, received);
        if (code != tcp::kSuccess && !IsConnected()) break;
        lines_.resize(held + received);
        if (received > 0) {
            quiet = Timer(*clock_, idle);
            continue;
        }
        if (whole.Expired() || quiet.Expired()) break;
        clock_->Sleep(kPollPause);
    }
    return TimedOut(whole, quiet, code);
}

bool Stream::WaitForData(std::uint32_t timeout) {
    if (!IsConnected()) return false;
    net::Readiness found = net::Readiness::kNothing;
    (void)Await(timeout, [&] { return (found = Look()) != net::Readiness::kNothing; });
    return found == net::Readiness::kData;
}
