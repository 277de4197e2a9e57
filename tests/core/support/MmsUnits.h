// MMS units as phones and centres send them, written by hand after OMA MMS encapsulation 1.0 to 1.3 and
// WAP-230, in the notation of support/Octets.h, and what there is to read in them.
#pragma once
#include <array>

struct MmsUnitRow {
    const char* name;
    const char* unit;
    const char* dump;
};

inline constexpr auto kMmsUnits = std::to_array<MmsUnitRow>({
    {"m-send-req of a phone, SMIL first",
     "8C80 98 'T1' 00 8D90 89 01 81 97 '+31612345678/TYPE=PLMN' 00 96 'Hi' 00 "
     "84 18 B3 8A '<s>' 00 89 'application/smil' 00 02 "
     "1F 07 'application/smil' 00 C0 22 '<s>' 00 8E 's.smil' 00 '<smil/>' "
     "0B 05 03 83 81 EA 8E 't.txt' 00 'Hello'",
     "X-Mms-Message-Type: 80\nX-Mms-Transaction-Id: \"T1\"\nX-Mms-MMS-Version: 90\nFrom: 81\n"
     "To: \"+31612345678/TYPE=PLMN\"\nSubject: \"Hi\"\n"
     "Content-Type: \"application/vnd.wap.multipart.related\"\n"
     "Part \"application/smil\" id=\"<s>\" location=\"s.smil\" 7 octets\n"
     "Part \"text/plain\" charset=106 id=\"\" location=\"t.txt\" 5 octets\n"},
    {"m-retrieve-conf with UTF-8 in From and Subject, a part named by its content type",
     "8C84 98 'r7' 00 8D91 8B 'mid@mmsc' 00 85 04 6553F100 89 08 80 06 EA 'Zo' C3AB 00 "
     "97 'a@example.org' 00 82 'b@example.org' 00 96 08 EA 7F C39C 'ber' 00 8A80 8F82 8680 9081 "
     "84 A3 01 0C 04 08 9E 85 'p.jpg' 00 AE 01 81 FFD8FFE0",
     "X-Mms-Message-Type: 84\nX-Mms-Transaction-Id: \"r7\"\nX-Mms-MMS-Version: 91\nMessage-ID: \"mid@mmsc\"\n"
     "Date: 1700000000\nFrom: 80 \"Zo\\xC3\\xAB\" charset=106\nTo: \"a@example.org\"\nCc: \"b@example.org\"\n"
     "Subject: \"\\xC3\\x9Cber\" charset=106\nX-Mms-Message-Class: 80\nX-Mms-Priority: 82\n"
     "X-Mms-Delivery-Report: 80\nX-Mms-Read-Report: 81\n"
     "Content-Type: \"application/vnd.wap.multipart.mixed\"\n"
     "Part \"image/jpeg\" id=\"\" location=\"p.jpg\" 4 octets\n"},
    {"m-notification-ind with a relative expiry",
     "8C82 98 'n1' 00 8D92 89 18 80 '+31612345678/TYPE=PLMN' 00 8A80 8E 02 7530 88 05 81 03 03F480 "
     "83 'http://mmsc/n1' 00",
     "X-Mms-Message-Type: 82\nX-Mms-Transaction-Id: \"n1\"\nX-Mms-MMS-Version: 92\n"
     "From: 80 \"+31612345678/TYPE=PLMN\"\nX-Mms-Message-Class: 80\nX-Mms-Message-Size: 30000\n"
     "X-Mms-Expiry: 81 259200\nX-Mms-Content-Location: \"http://mmsc/n1\"\n"},
    {"m-notification-ind with a class as text, a short size, bare UTF-8 and a needless quote",
     "8C82 98 'n2' 00 8D90 8A 'personal' 00 8E85 88 04 81 02 0E10 96 C39C 'ber' 00 83 7F 'http://x' 00",
     "X-Mms-Message-Type: 82\nX-Mms-Transaction-Id: \"n2\"\nX-Mms-MMS-Version: 90\n"
     "X-Mms-Message-Class: \"personal\"\nX-Mms-Message-Size: 5\nX-Mms-Expiry: 81 3600\n"
     "Subject: \"\\xC3\\x9Cber\"\nX-Mms-Content-Location: \"http://x\"\n"},
    {"m-send-conf", "8C81 98 'T1' 00 8D90 9280 93 'Ok' 00 8B 'MSG-1' 00",
     "X-Mms-Message-Type: 81\nX-Mms-Transaction-Id: \"T1\"\nX-Mms-MMS-Version: 90\n"
     "X-Mms-Response-Status: 80\nX-Mms-Response-Text: \"Ok\"\nMessage-ID: \"MSG-1\"\n"},
    {"m-send-conf of a refusal, its text with a charset", "8C81 98 'T2' 00 8D93 92E2 93 08 83 'Denied' 00",
     "X-Mms-Message-Type: 81\nX-Mms-Transaction-Id: \"T2\"\nX-Mms-MMS-Version: 93\n"
     "X-Mms-Response-Status: E2\nX-Mms-Response-Text: \"Denied\" charset=3\n"},
    {"m-delivery-ind", "8C86 8D90 8B 'MSG-1' 00 97 '+31600000001/TYPE=PLMN' 00 85 04 6553F100 9581",
     "X-Mms-Message-Type: 86\nX-Mms-MMS-Version: 90\nMessage-ID: \"MSG-1\"\n"
     "To: \"+31600000001/TYPE=PLMN\"\nDate: 1700000000\nX-Mms-Status: 81\n"},
    {"m-read-rec-ind", "8C87 8D91 8B 'MSG-1' 00 97 'a@example.org' 00 89 01 81 85 04 6553F100 9B80",
     "X-Mms-Message-Type: 87\nX-Mms-MMS-Version: 91\nMessage-ID: \"MSG-1\"\nTo: \"a@example.org\"\nFrom: 81\n"
     "Date: 1700000000\nX-Mms-Read-Status: 80\n"},
    {"m-acknowledge-ind", "8C85 98 'r7' 00 8D90 9180",
     "X-Mms-Message-Type: 85\nX-Mms-Transaction-Id: \"r7\"\nX-Mms-MMS-Version: 90\n"
     "X-Mms-Report-Allowed: 80\n"},
    {"m-retrieve-conf of a message that is gone", "8C84 98 'r8' 00 8D91 99E2 9A 'Gone' 00 85 04 6553F100",
     "X-Mms-Message-Type: 84\nX-Mms-Transaction-Id: \"r8\"\nX-Mms-MMS-Version: 91\n"
     "X-Mms-Retrieve-Status: E2\nX-Mms-Retrieve-Text: \"Gone\"\nDate: 1700000000\n"},
    {"m-retrieve-conf of a forwarded message: fields of 1.2, unknown ones, names, a multipart inside",
     "8C84 8D93 A0 05 81 'a@b' 00 A1 06 81 04 6553F100 A4 03 80 'x' 00 C1 03 AABBCC C280 'X-Vendor' 00 'v1' "
     "00 "
     "AE 02 0102 AA 03 82 01 05 A881 85 04 6553F100 "
     "84 A3 02 01 06 A6 01 01 02 83 'Hi' 01 01 83 '?'",
     "X-Mms-Message-Type: 84\nX-Mms-MMS-Version: 93\nX-Mms-Previously-Sent-By: 1 \"a@b\"\n"
     "X-Mms-Previously-Sent-Date: 1 1700000000\nX-Mms-MM-Flags: \"x\"\nField C1:\nField C2:\n"
     "X-Vendor: \"v1\"\nContent:\nX-Mms-Mbox-Totals: 2 5\nX-Mms-Attributes: 81\nDate: 1700000000\n"
     "Content-Type: \"application/vnd.wap.multipart.mixed\"\n"
     "Part \"application/vnd.wap.multipart.alternative\" id=\"\" location=\"\" 6 octets\n"
     "Part \"text/plain\" id=\"\" location=\"\" 1 octets\n"},
    {"m-send-req with length quotes, a type as text, a count that is one too high, a disposition as text",
     "8C80 98 't' 00 8D90 89 1F 20 80 'someone.with.a.long.name@e.org' 00 97 'a@b' 00 "
     "84 1F 28 'application/vnd.wap.multipart.related' 00 81 EA 03 "
     "16 06 'image/gif' 00 AE 'attachment' 00 'GIF89a' "
     "0C 01 04 83 81 01 6A C0 22 'id2' 22 00 'x'",
     "X-Mms-Message-Type: 80\nX-Mms-Transaction-Id: \"t\"\nX-Mms-MMS-Version: 90\n"
     "From: 80 \"someone.with.a.long.name@e.org\"\nTo: \"a@b\"\n"
     "Content-Type: \"application/vnd.wap.multipart.related\"\n"
     "Part \"image/gif\" id=\"\" location=\"\" 6 octets\n"
     "Part \"text/plain\" charset=106 id=\"id2\" location=\"\" 1 octets\n"},
    {"m-retrieve-conf with one text for a body, an absolute expiry and names of parts by header",
     "8C84 8D90 88 06 80 04 6553F100 84 0A 83 81 EA 85 'n.txt' 00 'Only text'",
     "X-Mms-Message-Type: 84\nX-Mms-MMS-Version: 90\nX-Mms-Expiry: 80 1700000000\n"
     "Content-Type: \"text/plain\"\nPart \"text/plain\" charset=106 id=\"\" location=\"n.txt\" 9 octets\n"},
    {"m-retrieve-conf whose parts have their parameters spelled out",
     "8C84 8D90 84 0B B3 'start' 00 '<s>' 00 03 "
     "19 01 14 83 'charset' 00 'iso-8859-2' 00 C0 22 'i' 00 B1 "
     "0D 01 0C 9E 'name' 00 'a.jpg' 00 'x' "
     "19 01 9E AE 16 'attachment' 00 'filename' 00 'b' 00 'y'",
     "X-Mms-Message-Type: 84\nX-Mms-MMS-Version: 90\n"
     "Content-Type: \"application/vnd.wap.multipart.related\"\n"
     "Part \"text/plain\" charset=5 id=\"i\" location=\"\" 1 octets\n"
     "Part \"image/jpeg\" id=\"\" location=\"a.jpg\" 1 octets\n"
     "Part \"image/jpeg\" id=\"\" location=\"b\" 1 octets\n"},
    {"m-retrieve-conf whose count is 0, with named headers, a code page shift and a disposition with a file "
     "name",
     "8C84 8D90 7F01 9081 84 B3 00 "
     "1B 02 9D 'Content-ID' 00 '<i>' 00 'Date' 00 'now' 00 81 82 'ok' "
     "0E 01 83 AE 0B 81 86 'photo.tx' 00 'y'",
     "X-Mms-Message-Type: 84\nX-Mms-MMS-Version: 90\nX-Mms-Read-Report: 81\n"
     "Content-Type: \"application/vnd.wap.multipart.related\"\n"
     "Part \"image/gif\" id=\"<i>\" location=\"\" 2 octets\n"
     "Part \"text/plain\" id=\"\" location=\"photo.tx\" 1 octets\n"},
});
