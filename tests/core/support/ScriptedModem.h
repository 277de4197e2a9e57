// A modem in virtual time: answers written octets by rules, and lets every time-out cost nothing.
#pragma once
#include "foundation/serial/SerialDevice.h"
#include "support/VirtualClock.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

class ScriptedModem : public SerialOpener {
  public:
    explicit ScriptedModem(VirtualClock& clock) : clock_(&clock) {}

    // What is answered to each occurrence of a command (the last answer is repeated). A command is what ends
    // in a carriage return or Ctrl-Z, without it. Commands without a rule get "\r\nOK\r\n".
    void On(const std::string& command, std::vector<std::string> answers) {
        rules_[command] = std::move(answers);
    }
    // The same for an answer that comes in pieces, each so many ms after the command.
    using Pieces = std::vector<std::pair<std::uint32_t, std::string>>;
    void OnInPieces(const std::string& command, Pieces pieces) { inPieces_[command] = std::move(pieces); }
    void Otherwise(std::string answer) { otherwise_ = {std::move(answer)}; }
    void OtherwiseInTurn(std::vector<std::string> answers) { otherwise_ = std::move(answers); }
    void Give(const std::string& octets) { incoming_ += octets; }
    // Octets that come so many ms from now.
    void GiveAfter(std::uint32_t milliseconds, std::string octets) {
        late_.emplace(clock_->Slept() + milliseconds, std::move(octets));
    }
    // Answers go out this many octets a read; 0 = all at once.
    void Fragment(std::size_t size) { fragment_ = size; }

    // What was typed without an end.
    void Forget() { pending_.clear(); }

    std::vector<std::string> commands;  // as received
    std::string written;                // every octet
    SerialSettings settings;            // of the last opening
    int openings = 0;
    int closings = 0;
    std::uint32_t quiet = 0;  // ms from the last octet written to the last closing
    bool viaTelephony = false;
    bool dtr = false, rts = false;  // as last set
    ResultCode openResult = result::Success;
    std::uint32_t systemError = 2;
    bool dead = false;             // reads and writes fail
    std::uint32_t blockedFor = 0;  // ms in which the next write is not taken
    bool echo = false;             // commands and data are echoed
    bool endless = false;          // gives `flood` without end
    std::string flood;

    ResultCode OpenPort(const SerialSettings& wanted, std::unique_ptr<SerialDevice>& device,
                        std::uint32_t& error) override {
        error = systemError;
        return Open(wanted, device, false);
    }
    ResultCode OpenTelephony(const SerialSettings& wanted, std::unique_ptr<SerialDevice>& device) override {
        return Open(wanted, device, true);
    }

  private:
    class Line : public SerialDevice {
      public:
        explicit Line(ScriptedModem& modem) : modem_(&modem) {}
        ~Line() override {
            ++modem_->closings;
            modem_->quiet = modem_->clock_->Slept() - modem_->writtenAt_;
        }
        bool Write(std::span<const char> octets, std::uint32_t limit) override {
            return modem_->Take({octets.data(), octets.size()}, limit);
        }
        int Read(std::span<char> buffer, std::uint32_t wait) override { return modem_->Read(buffer, wait); }
        void Purge() override { modem_->incoming_.clear(); }
        void SetDtr(bool on) override { modem_->dtr = on; }
        void SetRts(bool on) override { modem_->rts = on; }

      private:
        ScriptedModem* modem_;
    };

    ResultCode Open(const SerialSettings& wanted, std::unique_ptr<SerialDevice>& device, bool telephony) {
        ++openings;
        settings = wanted;
        viaTelephony = telephony;
        if (openResult == result::Success) device = std::make_unique<Line>(*this);
        return openResult;
    }

    bool Take(const std::string& octets, std::uint32_t limit) {
        if (dead) return false;
        const std::uint32_t blocked = std::min(std::exchange(blockedFor, 0), limit);
        clock_->Sleep(blocked);
        if (blocked != 0 && blocked == limit) return false;
        written += octets;
        writtenAt_ = clock_->Slept();
        for (const char octet : octets) {
            if (octet != '\r' && octet != '\x1a') {
                pending_ += octet;
                continue;
            }
            commands.push_back(pending_);
            if (echo) incoming_ += pending_ + octet;
            Answer(pending_);
            pending_.clear();
        }
        return true;
    }

    void Answer(const std::string& command) {
        if (const auto pieces = inPieces_.find(command); pieces != inPieces_.end()) {
            for (const auto& [when, octets] : pieces->second) GiveAfter(when, octets);
            return;
        }
        const auto rule = rules_.find(command);
        std::vector<std::string>& answers = rule == rules_.end() ? otherwise_ : rule->second;
        incoming_ += answers.front();
        if (answers.size() > 1) answers.erase(answers.begin());
    }

    int Read(std::span<char> buffer, std::uint32_t wait) {
        if (dead) return -1;
        if (endless && incoming_.empty() && wait > 0) {
            clock_->Sleep(1);
            incoming_ = flood;
        }
        if (incoming_.empty() && !late_.empty() && late_.begin()->first <= clock_->Slept() + wait) {
            const std::uint64_t due = late_.begin()->first;
            if (due > clock_->Slept()) clock_->Sleep(static_cast<std::uint32_t>(due - clock_->Slept()));
            incoming_ = std::move(late_.begin()->second);
            late_.erase(late_.begin());
        }
        if (incoming_.empty()) {
            clock_->Sleep(wait);
            return 0;
        }
        std::size_t size = std::min(buffer.size(), incoming_.size());
        if (fragment_ != 0) size = std::min(size, fragment_);
        incoming_.copy(buffer.data(), size);
        incoming_.erase(0, size);
        return static_cast<int>(size);
    }

    VirtualClock* clock_;
    std::map<std::string, std::vector<std::string>> rules_;
    std::vector<std::string> otherwise_{"\r\nOK\r\n"};
    std::string pending_;
    std::uint32_t writtenAt_ = 0;  // when the last octet was
    std::string incoming_;
    std::map<std::string, Pieces> inPieces_;
    std::multimap<std::uint64_t, std::string> late_;  // octets by when they come
    std::size_t fragment_ = 0;
};
