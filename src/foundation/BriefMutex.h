// A mutex for work that is done sooner than a thread falls asleep and wakes: who finds it taken tries again
// for some microseconds before it sleeps.
#pragma once
#include <mutex>

class BriefMutex {
  public:
    void lock() {
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            if (mutex_.try_lock()) return;
        }
        mutex_.lock();
    }
    bool try_lock() { return mutex_.try_lock(); }
    void unlock() { mutex_.unlock(); }

  private:
    static constexpr int kAttempts = 100;
    std::mutex mutex_;
};
