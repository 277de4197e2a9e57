#include "mms/MmsPermission.h"

#include "foundation/XmlText.h"
#include "mms/MmsConstants.h"

#include <array>

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// By operation; what has no name here, the forward lock above all, has an empty rights object.
constexpr auto kOperations = std::to_array<std::string_view>({{}, "play", "display", "execute", "print"});

std::string_view OperationName(std::int32_t operation) {
    const bool known = operation >= 0 && static_cast<std::size_t>(operation) < kOperations.size();
    return known ? kOperations[static_cast<std::size_t>(operation)] : std::string_view();
}

class Lines {
  public:
    template <class... Pieces>
    void Add(const Pieces&... pieces) {
        ((text_ += pieces), ...);
        text_ += kLineEnd;
    }
    std::string Take() { return std::move(text_); }

  private:
    std::string text_;
};

// The closing tags of count and interval are misspelled: kept so.
void AddConstraint(Lines& lines, const CMmsPermission& permission) {
    if (!permission.BeginDate.empty() && !permission.EndDate.empty()) {
        lines.Add("<o-dd:datetime>");
        lines.Add("<o-dd:start>", xml::Escape(permission.BeginDate), "T00:00:00</o-dd:start>");
        lines.Add("<o-dd:end>", xml::Escape(permission.EndDate), "T23:59:59</o-dd:end>");
        lines.Add("</o-dd:datetime>");
    } else if (permission.Times != 0) {
        lines.Add("<o-dd:count>", std::to_string(permission.Times), "</od-dd:count>");
    } else if (permission.Days != 0) {
        lines.Add("<o-dd:interval>P", std::to_string(permission.Days), "D</od-dd:interval>");
    }
}

// The namespaces stand outside the opening tag: kept so.
std::string RightsObject(const CMmsPermission& permission, std::string_view contentId) {
    const std::string_view operation = OperationName(permission.Operation);
    if (operation.empty()) return {};
    Lines lines;
    lines.Add("<o-ex:rights>");
    lines.Add("  xmlns:o-ex=\"http://odrl.net/1.1/ODRL-EX\"");
    lines.Add("  xmlns:o-dd=\"http://odrl.net/1.1/ODRL-DD\"");
    lines.Add(">");
    lines.Add("<o-ex:context>");
    lines.Add("<o-dd:version>1.0</o-dd:version>");
    lines.Add("</o-ex:context>");
    lines.Add("<o-ex:agreement>");
    lines.Add("<o-ex:asset>");
    lines.Add("<o-ex:context>");
    lines.Add("<o-dd:uid>cid:", xml::Escape(contentId), "</o-dd:uid>");
    lines.Add("</o-ex:context>");
    lines.Add("</o-ex:asset>");
    lines.Add("<o-ex:permission>");
    lines.Add("<o-dd:", operation, ">");
    lines.Add("<o-ex:constraint>");
    AddConstraint(lines, permission);
    lines.Add("</o-ex:constraint>");
    lines.Add("</o-dd:", operation, ">");
    lines.Add("</o-ex:permission>");
    lines.Add("</o-ex:agreement>");
    lines.Add("</o-ex:rights>");
    return lines.Take();
}

}  // namespace

std::string DrmMessage(const CMmsPermission& permission, const DrmContent& content) {
    Lines lines;
    lines.Add("--", content.boundary);
    lines.Add("Content-type: application/vnd.oma.drm.rights+xml");
    lines.Add("Content-Transfer-Encoding: binary");
    lines.Add();
    lines.Add(RightsObject(permission, content.contentId));
    lines.Add();
    lines.Add("--", content.boundary);
    lines.Add("Content-type: ", content.contentType);
    lines.Add("Content-ID: <", content.contentId, ">");
    lines.Add("Content-Transfer-Encoding: binary");
    lines.Add();
    // The content itself does not stand here: its section has always been empty, and is kept so.
    lines.Add();
    lines.Add("--", content.boundary, "--");
    return lines.Take();
}
