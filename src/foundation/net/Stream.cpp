#include "foundation/net/Stream.h"

#include <algorithm>

namespace {

constexpr std::size_t kGrowth = 1024;

int TimedOut(const Timer& total, const Timer& idle, int otherwise) {
    if (total.Expired()) return tcp::kTotalTimedOut;
    return idle.Expired() ? tcp::kIdleTimedOut : otherwise;
}

}  // namespace

int Stream::Disconnect() {
    lines_.clear();
    Close();
    return tcp::kSuccess;
}

int Stream::Send(std::string_view octets, std::uint32_t total, std::uint32_t idle, std::size_t& sent) {
    sent = 0;
    const Timer whole(*clock_, total);
    Timer quiet(*clock_, idle);
    int code = IsConnected() ? tcp::kSuccess : tcp::kNotConnected;
    while (code == tcp::kSuccess && sent < octets.size()) {
        const int moved = Write(octets.data() + sent, octets.size() - sent);
        if (moved > 0) {
            sent += static_cast<std::size_t>(moved);
            quiet = Timer(*clock_, idle);
            continue;
        }
        if (moved == -net::kAborted || moved == -net::kReset) {
            Disconnect();
            code = moved == -net::kAborted ? tcp::kAborted : tcp::kClosedByPeer;
        } else if (moved != 0 && moved != -net::kWouldBlock) {
            return moved;
        } else if (whole.Expired() || quiet.Expired()) {
            break;
        } else {
            clock_->Sleep(kPollPause);
        }
    }
    return sent == octets.size() ? code : TimedOut(whole, quiet, code);
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
    std::size_t searched = 0;
    int code = IsConnected() ? tcp::kSuccess : tcp::kNotConnected;
    while (code == tcp::kSuccess) {
        const std::size_t from = searched - std::min(searched, terminator_.size());
        const std::size_t end = terminator_.empty() ? std::string::npos : lines_.find(terminator_, from);
        if (end != std::string::npos) {
            line = lines_.substr(0, end);
            lines_.erase(0, end + terminator_.size());
            return tcp::kSuccess;
        }
        searched = lines_.size();
        if (searched >= longestLine_) return tcp::kBufferFull;
        lines_.resize(searched + kGrowth);
        std::size_t received = 0;
        code = ReceiveRaw(&lines_[searched], kGrowth, received);
        if (code != tcp::kSuccess && !IsConnected()) break;
        lines_.resize(searched + received);
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
