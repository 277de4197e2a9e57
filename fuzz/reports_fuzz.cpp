// The report file loader: what it has loaded it can save, load again and save alike.
#include "Fuzz.h"
#include "sms/SmsDeliveryReports.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CSmsDeliveryReports reports;
    reports.LoadText(TextOf(data, size), size % 2 != 0);
    const std::string saved = reports.SaveText();
    CSmsDeliveryReports again;
    again.LoadText(saved);
    if (again.SaveText() != saved || again.Count() != reports.Count()) std::abort();
    (void)again.ApplyReceipt({std::string(TextOf(data, size)), 2}, ReceiptMatch::kGuessed);
    return 0;
}
