// The platform behind a dial-up connection, in virtual time: what its functions answer, and what they were
// asked.
#pragma once
#include "foundation/ras/RasPlatform.h"
#include "support/VirtualClock.h"

#include <arpa/inet.h>
#include <deque>
#include <memory>
#include <string>
#include <vector>

// What the tests set up and look at; it outlives the connection.
struct RasScript {
    struct Status {
        std::uint32_t state = ras::kConnected;
        std::uint32_t code = ras::kOk;
    };
    // A list, and the sizes of its buffer that it finds too small, asking for the next.
    struct Buffer {
        std::deque<std::uint32_t> needs;
        std::uint32_t code = ras::kOk;
    };

    explicit RasScript(VirtualClock& clock) : clock(&clock) {}

    VirtualClock* clock;
    bool isComplete = true;  // all functions are there
    std::uint32_t propertiesCode = 0, parametersCode = 0, getCode = 0, dialCode = 0, hangUpCode = 0;
    std::uint32_t routeCode = 0;
    std::uint32_t dialTime = 0;                       // ms
    ras::Handle handle = 7;                           // that dialling gives
    std::deque<Status> states = {{}};                 // for each question; the last one for ever
    std::deque<Status> statesAfterHangUp = {{0, 6}};  // an invalid handle
    std::vector<ras::Adapter> adapters;
    std::vector<ras::Route> routes;
    Buffer adapterBuffer, routeBuffer;
    ras::DialParameters stored;  // what the phonebook knows of any entry

    // Left behind.
    std::vector<std::string> calls;  // by name
    std::vector<std::string> entryNames;
    std::vector<ras::EntryProperties> properties;
    std::vector<ras::DialParameters> written, dialled;
    std::vector<ras::Handle> hungUp;
    std::vector<std::uint32_t> askedAt;  // ticks, for each question about the state
    std::vector<std::uint32_t> sizes;    // of buffers for adapters
    std::vector<ras::Route> created;
};

class ScriptedRas final : public RasPlatform {
  public:
    explicit ScriptedRas(RasScript& script) : script_(&script) {}

    bool Load() override {
        script_->calls.emplace_back("Load");
        return script_->isComplete;
    }
    std::uint32_t SetEntryProperties(const std::string& entry, const ras::EntryProperties& what) override {
        script_->calls.emplace_back("SetEntryProperties");
        script_->entryNames.push_back(entry);
        script_->properties.push_back(what);
        return script_->propertiesCode;
    }
    std::uint32_t SetDialParameters(const ras::DialParameters& parameters) override {
        script_->calls.emplace_back("SetDialParameters");
        script_->written.push_back(parameters);
        return script_->parametersCode;
    }
    std::uint32_t GetDialParameters(ras::DialParameters& parameters) override {
        script_->calls.emplace_back("GetDialParameters");
        const std::string entry = parameters.entry;
        parameters = script_->stored;
        parameters.entry = entry;
        return script_->getCode;
    }
    std::uint32_t Dial(const ras::DialParameters& parameters, ras::Handle& connection) override {
        script_->calls.emplace_back("Dial");
        script_->dialled.push_back(parameters);
        script_->clock->Sleep(script_->dialTime);
        connection = script_->handle;
        isHungUp_ = false;
        return script_->dialCode;
    }
    std::uint32_t GetState(ras::Handle, std::uint32_t& state) override {
        script_->askedAt.push_back(script_->clock->Ticks());
        auto& states = isHungUp_ ? script_->statesAfterHangUp : script_->states;
        const RasScript::Status status = states.front();
        if (states.size() > 1) states.pop_front();
        state = status.state;
        return status.code;
    }
    std::uint32_t HangUp(ras::Handle connection) override {
        script_->calls.emplace_back("HangUp");
        script_->hungUp.push_back(connection);
        isHungUp_ = true;
        return script_->hangUpCode;
    }
    std::uint32_t GetAdapters(std::uint32_t& size, std::vector<ras::Adapter>& adapters) override {
        script_->sizes.push_back(size);
        return Fill(script_->adapterBuffer, ras::kBufferOverflow, script_->adapters, size, adapters);
    }
    std::uint32_t GetRoutes(std::uint32_t& size, std::vector<ras::Route>& routes) override {
        return Fill(script_->routeBuffer, ras::kInsufficientBuffer, script_->routes, size, routes);
    }
    std::uint32_t CreateRoute(const ras::Route& route) override {
        script_->calls.emplace_back("CreateRoute");
        script_->created.push_back(route);
        return script_->routeCode;
    }
    std::uint32_t ToAddress(const std::string& text) override { return ::inet_addr(text.c_str()); }

  private:
    template <class Row>
    static std::uint32_t Fill(RasScript::Buffer& buffer, std::uint32_t tooSmall, const std::vector<Row>& all,
                              std::uint32_t& size, std::vector<Row>& rows) {
        if (!buffer.needs.empty() && size < buffer.needs.front()) {
            size = buffer.needs.front();
            if (buffer.needs.size() > 1) buffer.needs.pop_front();
            return tooSmall;
        }
        if (buffer.code == ras::kOk) rows = all;
        return buffer.code;
    }

    RasScript* script_;
    bool isHungUp_ = false;
};
