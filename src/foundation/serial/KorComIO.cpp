#include "foundation/serial/KorComIO.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {
constexpr std::uint32_t kSettleTime = 500;  // after opening a port
constexpr std::uint32_t kLineWait = 100;    // the longest wait for one more octet of a line
constexpr std::uint32_t kBytesWait = 10;    // the same when reading octets
constexpr std::uint32_t kFileNotFound = 2;
constexpr std::uint32_t kAccessDenied = 5;
constexpr std::uint32_t kBlockedWriteLimit = 5000;  // plus the delay of each character, or its wire time
constexpr std::uint32_t kLeastWriteLimit = 500;     // a driver may be slow where the line is not
constexpr std::uint32_t kBitsPerOctet = 11;
constexpr std::uint32_t kSlowestLine = 300;  // bits per second; what a line of unknown speed may have
constexpr int kMostReads = 64;               // in which what was received is taken
}  // namespace

CKorComIO::CKorComIO(std::string className, SerialOpener& opener, Clock& clock)
    : CKorBase(std::move(className), clock), opener_(&opener) {}

ResultCode CKorComIO::OpenPort(const SerialSettings& settings) {
    if (IsOpen()) return result::PortAlreadyOpen;
    if (settings.speed == 1) return result::PortInvalidSpeed;
    std::unique_ptr<SerialDevice> device;
    std::uint32_t systemError = 0;
    const ResultCode code = opener_->OpenPort(settings, device, systemError);
    if (code == result::PortOpenFailed && systemError != kFileNotFound && systemError != kAccessDenied) {
        Log(logmask::kLog | logmask::kActivity,
            "Unknown error occured while opening serial port  : [0x%08X]\n",
            static_cast<unsigned>(systemError));
    }
    if (const ResultCode opened = Opened(code, settings, std::move(device)); opened != result::Success)
        return opened;
    GetClock().Sleep(kSettleTime);
    Purge();
    SetDtr(true);
    SetRts(true);
    return result::Success;
}

ResultCode CKorComIO::OpenTelephony(const SerialSettings& settings) {
    if (IsOpen()) return result::PortAlreadyOpen;
    if (settings.device.empty()) return result::TelephonyDeviceNotFound;
    std::unique_ptr<SerialDevice> device;
    const ResultCode code = opener_->OpenTelephony(settings, device);
    if (const ResultCode opened = Opened(code, settings, std::move(device)); opened != result::Success)
        return opened;
    SetDtr(true);
    SetRts(true);
    return result::Success;
}

ResultCode CKorComIO::Opened(ResultCode code, const SerialSettings& settings,
                             std::unique_ptr<SerialDevice> device) {
    if (code != result::Success) return code;
    device_ = std::move(device);
    receivedAt_ = receivedEnd_ = 0;
    writeDelay_ = settings.writeDelay;
    characterDelay_ = settings.characterDelay;
    speed_ = settings.speed;
    heardAt_ = GetClock().Ticks();
    return result::Success;
}

void CKorComIO::Close() {
    if (!IsOpen()) return;
    SetDtr(false);
    SetRts(false);
    Purge();
    device_.reset();
}

// What the octets take on the line, in ms.
std::uint32_t CKorComIO::WireTime(std::size_t octets) const {
    const std::uint64_t speed = speed_ != 0 ? speed_ : kSlowestLine;
    return static_cast<std::uint32_t>((octets * kBitsPerOctet * 1000 + speed - 1) / speed);
}

std::uint32_t CKorComIO::WriteString(std::string_view text, char terminator, std::uint32_t timeout) {
    if (!IsOpen()) return timeout;
    std::string line(text.substr(0, kLongestText));
    if (!line.empty() && line.back() != kCtrlZ) line.push_back(terminator);
    if (writeDelay_ != 0) GetClock().Sleep(writeDelay_);
    if (characterDelay_ != 0) {
        WriteSlowly(line);
        return timeout;
    }
    const std::uint32_t wire = WireTime(line.size());
    const Timer timer(GetClock(), Timer::kForever);
    (void)device_->Write(line, wire + std::clamp(timeout, kLeastWriteLimit, kBlockedWriteLimit));
    const std::uint32_t blocked = timer.Elapsed() > wire ? timer.Elapsed() - wire : 0;
    return timeout == Timer::kForever ? timeout : timeout - std::min(timeout, blocked);
}

void CKorComIO::WriteSlowly(std::string_view octets) {
    const Timer timer(GetClock(),
                      kBlockedWriteLimit + static_cast<std::uint32_t>(octets.size()) * characterDelay_);
    for (std::size_t i = 0; i < octets.size() && !timer.Expired();) {
        if (device_->Write(octets.substr(i, 1), timer.Remaining())) ++i;
        GetClock().Sleep(characterDelay_);
    }
}

ResultCode CKorComIO::WriteBytes(std::string_view octets) {
    if (!IsOpen()) return result::PortNotOpen;
    (void)device_->Write(octets, WireTime(octets.size()) + kBlockedWriteLimit);
    return result::Success;
}

// Takes in what the line has, waiting for a first octet; false when nothing came.
bool CKorComIO::Fill(std::uint32_t wait) {
    const int size = device_->Read(received_, wait);
    receivedAt_ = 0;
    receivedEnd_ = size > 0 ? static_cast<std::size_t>(size) : 0;
    if (size > 0) heardAt_ = GetClock().Ticks();
    if (size < 0) GetClock().Sleep(wait);  // a dead line is not asked in a tight loop
    return size > 0;
}

ResultCode CKorComIO::ReadBytes(std::string& octets, std::size_t count, std::uint32_t timeout,
                                const Enough& enough) {
    octets.clear();
    if (!IsOpen()) return result::PortNotOpen;
    const Timer timer(GetClock(), timeout);
    while (octets.size() < count) {
        if (receivedAt_ == receivedEnd_) {
            if (Fill(std::min(kBytesWait, timer.Remaining()))) continue;
            if (timer.Expired()) break;
            continue;
        }
        const std::size_t size = std::min(count - octets.size(), receivedEnd_ - receivedAt_);
        octets.append(&received_[receivedAt_], size);
        receivedAt_ += size;
        if (enough && enough(octets)) break;
    }
    return octets.empty() && count != 0 ? result::PortNothingReceived : result::Success;
}

ResultCode CKorComIO::ReadString(std::string& line, std::size_t maximum, std::uint32_t timeout,
                                 std::string_view lineEnds, std::string_view prompt) {
    line.clear();
    if (!IsOpen()) return result::PortNotOpen;
    (void)ReadOn(line, maximum, timeout, lineEnds, prompt);
    line = Trim(line);
    return line.empty() ? result::PortNothingReceived : result::Success;
}

bool CKorComIO::ReadOn(std::string& line, std::size_t maximum, std::uint32_t timeout,
                       std::string_view lineEnds, std::string_view prompt) {
    if (!IsOpen()) return false;
    const Timer timer(GetClock(), timeout);
    while (line.size() < maximum) {
        if (receivedAt_ == receivedEnd_) {
            if (!prompt.empty() && Trim(line) == prompt) return true;
            if (timer.Expired()) return false;
            (void)Fill(std::min(kLineWait, timer.Remaining()));
            continue;
        }
        const std::size_t room = std::min(receivedEnd_ - receivedAt_, maximum - line.size());
        const std::string_view there(&received_[receivedAt_], room);
        const std::size_t size = std::min(there.find_first_of(lineEnds), room);
        line.append(there.substr(0, size));
        receivedAt_ += size;
        if (size == room) continue;
        ++receivedAt_;
        if (!Trim(line).empty()) return true;
        line.clear();
        if (timer.Expired()) return false;  // a flood of empty lines
    }
    return true;
}

std::string CKorComIO::TakeReceived() {
    std::string octets;
    if (!IsOpen()) return octets;
    int reads = 0;
    do {
        octets.append(&received_[receivedAt_], receivedEnd_ - receivedAt_);
    } while (reads++ < kMostReads && Fill(0));
    receivedAt_ = receivedEnd_ = 0;
    return octets;
}

void CKorComIO::Purge() {
    receivedAt_ = receivedEnd_ = 0;
    if (IsOpen()) device_->Purge();
}

void CKorComIO::SetDtr(bool on) {
    if (IsOpen()) device_->SetDtr(on);
}

void CKorComIO::SetRts(bool on) {
    if (IsOpen()) device_->SetRts(on);
}
