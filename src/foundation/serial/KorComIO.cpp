#include "foundation/serial/KorComIO.h"

#include "foundation/Text.h"

#include <algorithm>

namespace {
constexpr std::uint32_t kSettleTime = 500;  // after opening a port
constexpr std::uint32_t kLineWait = 100;    // the longest wait for one more octet of a line
constexpr std::uint32_t kBytesWait = 10;    // the same when reading octets
constexpr std::uint32_t kFileNotFound = 2;
constexpr std::uint32_t kAccessDenied = 5;
constexpr std::uint32_t kSlowWriteLimit = 5000;  // plus the delay of each character
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
    return result::Success;
}

void CKorComIO::Close() {
    if (!IsOpen()) return;
    SetDtr(false);
    SetRts(false);
    Purge();
    device_.reset();
}

void CKorComIO::WriteString(std::string_view text, char terminator) {
    if (!IsOpen()) return;
    std::string line(text.substr(0, kLongestText));
    if (!line.empty() && line.back() != kCtrlZ) line.push_back(terminator);
    if (writeDelay_ != 0) GetClock().Sleep(writeDelay_);
    if (characterDelay_ == 0) {
        (void)device_->Write(line);
        return;
    }
    const Timer timer(GetClock(),
                      kSlowWriteLimit + static_cast<std::uint32_t>(line.size()) * characterDelay_);
    for (std::size_t i = 0; i < line.size() && !timer.Expired();) {
        if (device_->Write(std::span(line).subspan(i, 1))) ++i;
        GetClock().Sleep(characterDelay_);
    }
}

ResultCode CKorComIO::WriteBytes(std::string_view octets) {
    if (!IsOpen()) return result::PortNotOpen;
    (void)device_->Write(octets);
    return result::Success;
}

// Takes in what the line has, waiting for a first octet; false when nothing came.
bool CKorComIO::Fill(std::uint32_t wait) {
    const int size = device_->Read(received_, wait);
    receivedAt_ = 0;
    receivedEnd_ = size > 0 ? static_cast<std::size_t>(size) : 0;
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
                                 char terminator, std::string_view prompt) {
    line.clear();
    lineEnded_ = false;
    if (!IsOpen()) return result::PortNotOpen;
    const Timer timer(GetClock(), timeout);
    const auto finish = [&line] {
        line = Trim(line);
        return !line.empty();
    };
    while (line.size() < maximum) {
        if (receivedAt_ == receivedEnd_) {
            lineEnded_ = !prompt.empty() && Trim(line) == prompt;
            if (lineEnded_) break;
            if (timer.Expired()) break;
            (void)Fill(std::min(kLineWait, timer.Remaining()));
            continue;
        }
        const char* const begin = &received_[receivedAt_];
        const std::size_t room = std::min(receivedEnd_ - receivedAt_, maximum - line.size());
        const char* const end = std::find(begin, begin + room, terminator);
        line.append(begin, end);
        receivedAt_ += static_cast<std::size_t>(end - begin);
        if (end == begin + room) continue;
        ++receivedAt_;
        lineEnded_ = finish();
        if (lineEnded_) return result::Success;
        if (timer.Expired()) break;  // a flood of empty lines
    }
    return finish() ? result::Success : result::PortNothingReceived;
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
