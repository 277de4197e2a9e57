// A server at the other end of a Stream that says anything, in pieces of any size.
#pragma once
#include "foundation/net/Stream.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <string>
#include <utility>

// Gives the octets piece by piece, whatever is said to it, and then silence or the end.
class AnyServer final : public Stream {
  public:
    AnyServer(VirtualClock& clock, std::string octets, std::size_t piece, bool ends)
        : Stream(clock), octets_(std::move(octets)), piece_(piece), ends_(ends) {}

    std::string heard;

    int Connect(const std::string&, std::uint16_t, std::uint32_t) override {
        connected_ = true;
        return tcp::kSuccess;
    }
    bool IsConnected() const override { return connected_; }

  private:
    int Write(const char* data, std::size_t size) override {
        heard.append(data, size);
        due_ = std::min(octets_.size(), due_ + piece_);
        return static_cast<int>(size);
    }
    int Read(char* data, std::size_t size) override {
        if (due_ == 0) due_ = std::min(octets_.size(), piece_);
        if (at_ == due_ && at_ == octets_.size() && ends_) return 0;
        if (at_ == due_) return -net::kWouldBlock;
        const std::size_t count = octets_.copy(data, std::min(size, due_ - at_), at_);
        at_ += count;
        return static_cast<int>(count);
    }
    net::Readiness Look() override {
        if (at_ < due_ || due_ == 0) return net::Readiness::kData;
        return at_ == octets_.size() && ends_ ? net::Readiness::kEnded : net::Readiness::kNothing;
    }
    void Close() override { connected_ = false; }

    std::string octets_;
    std::size_t piece_;
    bool ends_;
    std::size_t at_ = 0, due_ = 0;
    bool connected_ = false;
};
