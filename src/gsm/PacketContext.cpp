#include "gsm/PacketContext.h"

#include "foundation/Text.h"
#include "gsm/AtValues.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::uint32_t kErrorModeTime = 2000;  // ms
constexpr std::uint32_t kQueryTime = 2500;
constexpr std::uint32_t kAttachTime = 20'000;  // the device may have to find the network first
constexpr std::string_view kHeader = "+CGDCONT:";

// The values behind the header of each line that has it.
std::vector<std::vector<AtField>> Contexts(std::string_view reply) {
    std::vector<std::vector<AtField>> contexts;
    for (const std::string_view line : Split(reply, "\r\n")) {
        const std::size_t at = FindNoCase(line, kHeader);
        if (at != std::string_view::npos) contexts.push_back(AtFields(line.substr(at + kHeader.size())));
    }
    return contexts;
}

bool SameText(std::string_view a, std::string_view b) {
    return a.size() == b.size() && FindNoCase(a, b) == 0;
}

// The ids of the first line for IP, else of the first line.
std::vector<AtRange> OfferedIds(std::string_view reply) {
    const auto contexts = Contexts(reply);
    const auto forIp = std::ranges::find_if(contexts, [](const std::vector<AtField>& fields) {
        return fields.size() > 1 && SameText(fields[1].text, "IP");
    });
    const auto line = forIp != contexts.end() ? forIp : contexts.begin();
    if (line == contexts.end() || line->empty()) return {};
    std::vector<AtRange> ids;
    for (const AtField& id : AtFields(line->front().text)) {
        const AtRange range = RangeOf(id.text);
        if (range.last >= range.first && range.last > 0)
            ids.push_back({std::max(range.first, 1), range.last});
    }
    return ids;
}

// Of each range only as many ids are looked at as can be in use.
std::uint32_t FreeId(const std::vector<AtRange>& offered, const std::vector<std::int32_t>& inUse) {
    std::int64_t lowest = 0;
    for (const AtRange& range : offered) {
        std::int64_t id = range.first;
        while (id <= range.last && std::ranges::find(inUse, id) != inUse.end()) ++id;
        if (id <= range.last && (lowest == 0 || id < lowest)) lowest = id;
    }
    if (lowest == 0 && !offered.empty()) lowest = offered.back().last;
    return static_cast<std::uint32_t>(lowest);
}

// The reply, also when it has many lines.
ResultCode Ask(CGsmDevice& device, std::string_view command, std::string& reply) {
    AtExchange exchange = device.Collect(command, kQueryTime);
    reply = std::move(exchange.reply);
    return exchange.outcome.code;
}

ResultCode Choose(CGsmDevice& device, std::string_view accessPoint, PacketContext& context) {
    std::string offered;
    if (const ResultCode code = Ask(device, "AT+CGDCONT=?", offered); code != result::Success) return code;
    std::string inUse;
    if (const ResultCode code = Ask(device, "AT+CGDCONT?", inUse); code != result::Success) return code;
    context = ChoosePacketContext(offered, inUse, accessPoint);
    return context.id != 0 || context.isDefined ? result::Success : result::ModemUnexpectedResponse;
}

}  // namespace

PacketContext ChoosePacketContext(std::string_view offered, std::string_view inUse,
                                  std::string_view accessPoint) {
    constexpr std::size_t kAccessPoint = 2;  // behind id and kind
    std::vector<std::int32_t> ids;
    for (const std::vector<AtField>& fields : Contexts(inUse)) {
        if (fields.empty()) continue;
        ids.push_back(ToInt(fields[0].text));
        // Names of access points are those of hosts: letters of either case are the same.
        if (ids.back() >= 0 && fields.size() > kAccessPoint &&
            SameText(fields[kAccessPoint].text, accessPoint)) {
            return {static_cast<std::uint32_t>(ids.back()), true};
        }
    }
    return {FreeId(OfferedIds(offered), ids), false};
}

ResultCode PreparePacketContext(CGsmDevice& device, std::string_view accessPoint, std::uint32_t& id) {
    const AtExchange errorMode = device.Exchange("AT+CMEE=1", kErrorModeTime);
    if (errorMode.outcome.code == result::ModemNoResponse) return errorMode.outcome.code;
    PacketContext context;
    if (const ResultCode code = Choose(device, accessPoint, context); code != result::Success) return code;
    id = context.id;
    if (!context.isDefined) {
        const std::string command = "AT+CGDCONT=" + std::to_string(id) + ",\"IP\"";
        const ResultCode code = device.Command(Quoted(command + ",", accessPoint));
        if (code != result::Success) return code;
    }
    // What else the two are answered, dialling tells whether the network can be had: some devices know
    // neither.
    const ResultCode attached = device.Exchange("AT+CGATT=1", kAttachTime).outcome.code;
    if (attached == result::NoSim || attached == result::PinRequired) return attached;
    (void)device.Command("AT&W");
    return result::Success;
}
