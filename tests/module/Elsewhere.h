// An apartment of its own, with one object that is handed out.
#pragma once
#include "Com.h"

#include <functional>
#include <thread>

template <class Interface>
class Elsewhere {
  public:
    // `fill` runs in the object's apartment.
    explicit Elsewhere(const wchar_t* progId, std::function<void(Interface*)> fill = {}) {
        ready_ = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        thread_ = std::thread([this, progId, fill = std::move(fill)] {
            const ComApartment apartment;
            id_ = ::GetCurrentThreadId();
            const auto object = Create<Interface>(progId);
            if (fill) fill(object.get());
            ::CoMarshalInterThreadInterfaceInStream(__uuidof(Interface), object.get(), &stream_);
            MSG queued;
            ::PeekMessageW(&queued, nullptr, 0, 0, PM_NOREMOVE);
            ::SetEvent(ready_);
            while (::GetMessageW(&queued, nullptr, 0, 0) > 0) ::DispatchMessageW(&queued);
        });
        ::WaitForSingleObject(ready_, INFINITE);
    }
    Elsewhere(const Elsewhere&) = delete;
    Elsewhere& operator=(const Elsewhere&) = delete;
    ~Elsewhere() {
        ::PostThreadMessageW(id_, WM_QUIT, 0, 0);
        thread_.join();
        ::CloseHandle(ready_);
    }

    // A proxy for the calling apartment.
    Com<Interface> Proxy() {
        Com<Interface> object;
        ::CoGetInterfaceAndReleaseStream(stream_, __uuidof(Interface),
                                         reinterpret_cast<void**>(object.out()));
        return object;
    }

  private:
    HANDLE ready_;
    DWORD id_ = 0;
    IStream* stream_ = nullptr;
    std::thread thread_;
};
