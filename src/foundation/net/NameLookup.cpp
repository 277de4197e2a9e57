#include "foundation/net/NameLookup.h"

#include "foundation/Addresses.h"
#include "foundation/net/SocketApi.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

struct NameLookup::Shared {
    std::mutex lock;
    std::condition_variable ended;
    bool hasEnded = false;
    HostAddress found;

    void End(HostAddress answer) {
        const std::lock_guard guard(lock);
        found = std::move(answer);
        hasEnded = true;
        ended.notify_all();
    }
};

NameLookup::NameLookup(const std::string& host, const Platform& platform)
    : shared_(std::make_shared<Shared>()) {
    if (address::IsIPv4(host)) {
        shared_->End(platform(host));
        return;
    }
    try {
        std::thread([shared = shared_, host, platform] { shared->End(platform(host)); }).detach();
    } catch (const std::system_error&) {  // no further thread can be had
        shared_->End(platform(host));
    }
}

bool NameLookup::EndsWithin(std::chrono::milliseconds time) const {
    std::unique_lock guard(shared_->lock);
    return shared_->ended.wait_for(guard, time, [this] { return shared_->hasEnded; });
}

const HostAddress& NameLookup::Found() const { return shared_->found; }

// The socket library stays started for as long as this takes, whatever its caller does meanwhile.
HostAddress NameLookup::AskPlatform(const std::string& host) {
    HostAddress answer;
    answer.error = net::Start();
    if (answer.error != 0) return answer;
    answer.error = net::Resolve(host, answer.address, answer.text);
    net::Stop();
    return answer;
}
