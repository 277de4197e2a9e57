// The message and its slides, and what they are encoded as.
#include "foundation/ErrorTexts.h"
#include "mms/MMSECodec.h"
#include "mms/MmsContentTypes.h"
#include "mms/MmsMessage.h"
#include "mms/MmsSlide.h"
#include "support/Octets.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <gtest/gtest.h>
#include <set>

namespace {

CMmsMessageSlide SlideOf(std::vector<CMmsMessagePart> parts) { return {0, 5, std::move(parts)}; }
CMmsMessagePart Part(const char* type, const char* location, const char* data, std::uint32_t charset = 0) {
    return {type, std::string("<") + location + ">", location, "", data, charset};
}

class Message : public testing::Test {
  protected:
    Message() {
        (void)message.AddRecipient("+31612345678", 0);
        message.AddSlide(SlideOf({Part("image/jpeg", "a.jpg", "JPEG")}));
    }

    // "{T}" stands for the transaction id.
    std::string Expected(std::string pattern) const {
        for (std::size_t at = 0; (at = pattern.find("{T}")) != std::string::npos;) {
            pattern.replace(at, 3, message.TransactionId);
        }
        return HexOf(OctetText(pattern));
    }
    std::string Encoded() {
        EXPECT_EQ(message.Encode(), result::Success);
        return HexOf(message.EncodedMessage);
    }

    VirtualClock clock;
    CMmsMessage message{clock};
};

constexpr const char* kSmilHead =
    "'<smil>' 0D0A '<head>' 0D0A '<layout>' 0D0A "
    "'<region id=\"Image\" height=\"100%\" width=\"100%\" fit=\"meet\" />' 0D0A "
    "'<region id=\"Text\" height=\"100%\" width=\"100%\" fit=\"scroll\" />' 0D0A "
    "'</layout>' 0D0A '</head>' 0D0A '<body>' 0D0A ";

TEST_F(Message, IsEncodedOctetByOctet) {
    message.SetFrom("+31600000001");
    message.Subject = u"Hi";
    (void)message.AddRecipient("a@b.org", 1);
    (void)message.AddRecipient("10.0.0.1", 2);
    message.ValidityPeriod = 1440;
    message.Class = 3;
    message.Priority = 2;
    message.RequestReadReceipt = true;
    const std::string unit = Encoded();
    EXPECT_EQ(unit, Expected(std::string(
                                 "8C80 98 '{T}' 00 8D90 85 04 6553F100 89 18 80 '+31600000001/TYPE=PLMN' 00 "
                                 "96 'Hi' 00 97 '+31612345678/TYPE=PLMN' 00 82 'a@b.org' 00 "
                                 "81 '10.0.0.1/TYPE=IPv4' 00 88 06 80 04 65554280 8A83 8F82 8681 9080 "
                                 "84 1F 24 B3 8A '<{T}.smil>' 00 89 'application/smil' 00 "
                                 "02 10 04 9E C0 22 'a.jpg' 00 8E 'a.jpg' 00 'JPEG' "
                                 "45 8171 1F 22 'application/smil' 00 85 '{T}.smil' 00 81 EA "
                                 "C0 22 '<{T}.smil>' 00 8E '{T}.smil' 00 ") +
                             kSmilHead +
                             "'<par dur=\"5s\">' 0D0A '<img src=\"a.jpg\"  />' 0D0A '</par>' 0D0A "
                             "'</body>' 0D0A '</smil>' 0D0A"));
    EXPECT_EQ(message.TransactionId.size(), 8U);
    const std::string first = message.TransactionId;
    (void)Encoded();
    EXPECT_NE(message.TransactionId, first);  // the clock stands still
}

TEST_F(Message, WritesTheFieldsThatAreSet) {
    const auto has = [this](const std::string& pattern) {
        return Encoded().find(Expected(pattern)) != std::string::npos;
    };
    const std::string start = "8D90 85 04 6553F100 ";
    const std::string rest = " 97 '+31612345678/TYPE=PLMN' 00 8A80 8F81 8681 9081 84";
    EXPECT_TRUE(has(start + "89 01 81" + rest));
    message.From = std::string(29, 'f');  // one octet of length, where a length quote would be due
    EXPECT_TRUE(has(start + "89 1F 80 '" + message.From + "' 00" + rest));
    message.From = std::string(300, 'f');
    EXPECT_TRUE(has(start + "89 2E 80 '" + message.From + "' 00" + rest));
    message.From.clear();
    message.Subject = u"\u00C4234567890123456789";  // 20 octets
    EXPECT_TRUE(has(start + "89 01 81 96 17 EA 7F C384 '234567890123456789' 00" + rest));
    message.Subject = u"\u00C42345678901234567890123456789";  // 30 octets
    EXPECT_TRUE(has(start + "89 01 81 96 1F 21 EA 7F C384 '2345678901234567890123456789' 00" + rest));
    message.Subject.assign(40, u' ');
    EXPECT_TRUE(has(start + "89 01 81 96 '" + std::string(40, ' ') + "' 00" + rest));
    message.Subject = u"\t";
    EXPECT_TRUE(has(start + "89 01 81 96 04 EA 7F 09 00" + rest));
    message.Subject.clear();
    message.Class = -1;  // any number, one octet
    message.Priority = 256;
    EXPECT_TRUE(has(" 00 8A7F 8F80 8681 9081 84"));
}

TEST_F(Message, RefusesASubjectAbove40CharactersAndKeepsItsUnit) {
    const std::string before = Encoded();
    message.Subject.assign(41, u's');
    EXPECT_EQ(message.Encode(), result::MmsSubjectTooLong);
    EXPECT_EQ(HexOf(message.EncodedMessage), before);
}

TEST_F(Message, NamesTheTypesOfItsParts) {
    struct Row {
        CMmsMessagePart part;
        const char* headers;
    };
    CMmsMessagePart drm = Part("application/vnd.oma.drm.message", "a.dm", "x");
    drm.drmBoundary = "B";
    CMmsMessagePart bare = Part("image/png", "", "x");
    bare.contentId.clear();
    for (const Row& row : {
             Row{Part("text/plain", "t", "x", 65001), "83 C022 't' 00 8E 't' 00"},
             Row{Part("text/plain", "t", "x", 28592), "03 83 81 85 C022 't' 00 8E 't' 00"},
             Row{Part("text/html", "t", "x", 1252), "03 82 81 84 C022 't' 00 8E 't' 00"},
             Row{Part("Text/Plain", "t", "x", 1252), "'Text/Plain' 00 C022 't' 00 8E 't' 00"},
             Row{Part("audio/mp4", "t", "x"), "'audio/mp4' 00 C022 't' 00 8E 't' 00"},
             Row{Part("multipart/byteranges", "t", "x"), "'multipart/byteranges' 00 C022 't' 00 8E 't' 00"},
             Row{Part("multipart/byterantes", "t", "x"), "8E C022 't' 00 8E 't' 00"},
             Row{Part("", "t", "x"), "00 C022 't' 00 8E 't' 00"},
             Row{Part("image/png", "", "x"), "A0 C022 00"},
             Row{bare, "A0"},
             Row{drm,
                 "'application/vnd.oma.drm.message' 00 'boundary' 00 'B' 00 C022 'a.dm' 00 8E 'a.dm' 00"},
         }) {
        message.Slides = {SlideOf({row.part})};
        const std::string headers = OctetText(row.headers);
        const std::string entry =
            std::string("\x02") + static_cast<char>(headers.size()) + "\x01" + headers + "x";
        EXPECT_NE(Encoded().find(HexOf(entry)), std::string::npos) << row.headers;
    }
}

// The count is one octet, and lengths take as many as they need.
TEST_F(Message, TakesManyAndLargeParts) {
    message.Slides.clear();
    CMmsMessageSlide slide = SlideOf({});
    for (std::size_t size : {127U, 128U, 16383U, 16384U, 2097152U}) {
        slide.parts.push_back(Part("image/gif", "n", ""));
        slide.parts.back().data.assign(size, 'd');
    }
    slide.parts.resize(126, Part("image/gif", "n", "x"));
    message.AddSlide(slide);
    const std::string octets = (void(Encoded()), message.EncodedMessage);
    for (const char* lengths : {"08 7F 9D", "08 8100 9D", "08 FF7F 9D", "08 818000 9D", "08 81808000 9D"}) {
        EXPECT_NE(octets.find(OctetText(lengths)), std::string::npos) << lengths;
    }
    CMMSECodec unit;
    EXPECT_EQ(unit.Decode(octets), result::Success);
    ASSERT_EQ(unit.Parts().size(), 127U);
    EXPECT_EQ(unit.Parts()[4].data.size(), 2097152U);
    EXPECT_EQ(unit.Parts()[126].type.type, "application/smil");
}

TEST_F(Message, TakesManyRecipientsAndLongAddresses) {
    for (int i = 0; i < 10'000; ++i)
        (void)message.AddRecipient("+316" + std::to_string(10'000'000 + i), i % 3);
    EXPECT_EQ(message.AddRecipient(std::string(65536, '1'), 0), result::InvalidMmsRecipient);
    EXPECT_EQ(message.AddRecipient("dl:" + std::string(65536, 'x'), 0), result::Success);
    message.SetFrom(std::string(65536, 'f'));
    (void)Encoded();
    message.SetFrom("");
    (void)Encoded();
    const std::size_t count = message.Recipients[0].Addresses().size();
    EXPECT_EQ(message.Decode(), result::Success);
    EXPECT_EQ(message.Recipients[0].Addresses().size(), count);
    EXPECT_EQ(message.Recipients[0].Addresses().back().size(), 65539U);
}

// A text with a zero octet does not begin another field.
TEST_F(Message, TextsEndAtAZeroOctet) {
    message.From = std::string("a\0\x97victim", 9);
    (void)message.AddRecipient(std::string("dl:x\0\x96", 6), 0);
    message.Slides[0].parts[0].contentLocation = std::string("n\0\x8Em", 4);
    (void)Encoded();
    EXPECT_EQ(message.Decode(), result::Success);
    EXPECT_EQ(message.From, "a");
    EXPECT_EQ(message.Recipients[0].Addresses(), (std::vector<std::string>{"+31612345678", "dl:x"}));
    EXPECT_EQ(message.Slides[0].parts[0].contentLocation, "n");
}

TEST_F(Message, ChecksInItsOrder) {
    CMmsMessage empty(clock);
    EXPECT_EQ(empty.Encode(), result::NoRecipient);
    EXPECT_EQ(empty.AddRecipient("a@b", 2), result::Success);
    EXPECT_EQ(empty.Encode(), result::MmsNoSlides);
    empty.AddSlide(SlideOf({}));
    EXPECT_EQ(empty.Encode(), result::MmsNoSlides);
    empty.AddSlide(SlideOf({Part("image/gif", "g", "x")}));
    EXPECT_EQ(empty.Encode(), result::Success);
    EXPECT_EQ(empty.Slides[0].id, 2);  // the empty one has used up the first number
}

TEST(MmsRecipients, AreTakenByKindAndList) {
    struct Row {
        const char* address;
        std::int32_t type;
        ResultCode code;
        const char* entry;
    };
    for (const Row& row : {
             Row{"", 0, result::Success, ""},
             Row{"", 3, result::NoRecipient, ""},
             Row{"hello", 0, result::InvalidMmsRecipient, ""},
             Row{"hello", 3, result::InvalidMmsRecipient, ""},
             Row{"+31612345678", 3, result::NoRecipient, ""},
             Row{"+31612345678", -1, result::NoRecipient, ""},
             Row{"+31612345678", 0, result::Success, "+31612345678/TYPE=PLMN"},
             Row{"x123", 1, result::Success, "x123/TYPE=PLMN"},  // the first character is not looked at
             Row{"123", 1, result::InvalidMmsRecipient, ""},
             Row{"dl:friends", 0, result::Success, "dl:friends/TYPE=PLMN"},
             Row{"a@b", 2, result::Success, "a@b"},
             Row{"a@", 2, result::InvalidMmsRecipient, ""},
             Row{"10.0.0.255", 2, result::Success, "10.0.0.255/TYPE=IPv4"},
             Row{"10.0.0.256", 2, result::InvalidMmsRecipient, ""},
         }) {
        CMmsMessage message;
        EXPECT_EQ(message.AddRecipient(row.address, row.type), row.code) << row.address;
        std::string all;
        for (const CMmsRecipients& list : message.Recipients) {
            for (const std::string& address : list.Addresses()) all += address;
        }
        EXPECT_EQ(all, row.entry);
    }
    for (const auto& [from, kept] : {
             std::pair{"+31612345678", "+31612345678/TYPE=PLMN"},
             std::pair{"S1234", "S1234/TYPE=PLMN"},
             std::pair{"31612345678", "31612345678/TYPE=PLMN"},
             std::pair{"X1234", "X1234"},
             std::pair{"dl:x", "dl:x/TYPE=PLMN"},
             std::pair{"10.0.0.1", "10.0.0.1/TYPE=IPv4"},
             std::pair{"a@b.org", "a@b.org"},
             std::pair{"Shop", "Shop"},
             std::pair{"", ""},
         }) {
        CMmsMessage message;
        message.SetFrom(from);
        EXPECT_EQ(message.From, kept);
    }
}

TEST(MmsRecipients, AreGivenTheFirstOneTwice) {
    CMmsMessage message;
    (void)message.AddRecipient("a@b", 0);
    (void)message.AddRecipient("c@d", 0);
    (void)message.AddRecipient("e@f", 1);
    std::string said;
    const auto next = [&](auto step, std::int32_t type) {
        std::string address;
        const ResultCode code = (message.*step)(type, address);
        said += address + '=' + std::to_string(code.Number()) + ' ';
    };
    next(&CMmsMessage::NextRecipient, 1);
    next(&CMmsMessage::FirstRecipient, 0);
    for (int i = 0; i < 3; ++i) next(&CMmsMessage::NextRecipient, 0);
    next(&CMmsMessage::FirstRecipient, 0);
    next(&CMmsMessage::NextRecipient, 1);
    next(&CMmsMessage::NextRecipient, 0);  // one place for all lists
    next(&CMmsMessage::FirstRecipient, 2);
    next(&CMmsMessage::FirstRecipient, 3);
    EXPECT_EQ(said, "e@f=0 a@b=0 a@b=0 c@d=0 =34160 a@b=0 e@f=0 c@d=0 =34160 =34160 ");
}

TEST_F(Message, ClearLeavesTheProtocol) {
    message.Protocol = 7;
    message.Subject = u"s";
    message.Settings = {.schema = 5, .version = 6, .variation = 1};
    (void)Encoded();
    message.Clear();
    EXPECT_EQ(std::tuple(message.Protocol, message.Priority, message.NextSlideId, message.EncodedMessage,
                         message.Slides.size(), message.TransactionId),
              std::tuple(7, 1, 1, "", 0U, ""));
    const MmsSettings& settings = message.Settings;
    EXPECT_EQ(std::tuple(settings.schema, settings.version, settings.variation), std::tuple(2, 0, 0));
}

TEST_F(Message, SlidesAreWalked) {
    message.AddSlide({9, 7, {Part("image/gif", "g", "x")}});
    EXPECT_EQ(message.NextSlide()->id, 1);
    EXPECT_EQ(message.NextSlide()->id, 2);
    EXPECT_EQ(message.NextSlide(), nullptr);
    EXPECT_EQ(message.FirstSlide()->id, 1);
    EXPECT_EQ(message.NextSlide()->duration, 7);
}

TEST_F(Message, PresentationShowsEachPartByItsType) {
    CMmsMessageSlide slide{0, -7, {}};
    for (const char* type :
         {"text/plain", "TEXT/PLAIN; x", "image/gif", "audio/amr", "video/3gpp", "text/html", ""}) {
        slide.parts.push_back(Part(type, "n", "x"));
    }
    slide.parts.push_back(Part("image/gif", "a\"/><b&'", "x"));  // no element of its own
    message.Slides = {slide};
    (void)Encoded();
    EXPECT_EQ(message.Smil.data, OctetText(kSmilHead) +
                                     "<par dur=\"-7s\">\r\n<text src=\"n\" />\r\n<text src=\"n\" />\r\n"
                                     "<img src=\"n\"  />\r\n<audio src=\"n\" />\r\n<video src=\"n\" />\r\n"
                                     "<ref src=\"n\" />\r\n<ref src=\"n\" />\r\n"
                                     "<img src=\"a&quot;/&gt;&lt;b&amp;&apos;\"  />\r\n"
                                     "</par>\r\n</body>\r\n</smil>\r\n");
}

TEST_F(Message, FilesAreSavedAndLoaded) {
    const TemporaryFolder folder;
    const std::string file = folder.File("m.mms");
    message.SetFrom("a@b");
    EXPECT_EQ(message.SaveToFile(file, 2), result::Success);
    EXPECT_EQ(message.FileFormat, 1);
    EXPECT_EQ(TemporaryFolder::Read(file), message.EncodedMessage);
    EXPECT_TRUE(message.EncodedMessage.starts_with("\x8C\x84"));
    EXPECT_EQ(message.SaveToFile(file, 7), result::Success);
    EXPECT_TRUE(message.EncodedMessage.starts_with("\x8C\x80"));
    EXPECT_EQ(message.SaveToFile(folder.File("none/m"), 1), result::MmsSaveFailed);
    EXPECT_EQ(message.SaveToFile("", 1), result::MmsSaveFailed);
    EXPECT_EQ(message.SaveToFile(file + std::string("\0x", 2), 1), result::MmsSaveFailed);

    CMmsMessage loaded(clock);
    EXPECT_EQ(loaded.LoadFromFile(file), result::Success);
    EXPECT_EQ(loaded.From, "a@b");
    EXPECT_EQ(loaded.CustomSmil, message.Smil.data);
    ASSERT_EQ(loaded.FirstSlide()->parts.size(), 1U);
    EXPECT_EQ(loaded.Slides[0].parts[0].data, "JPEG");
    EXPECT_EQ(loaded.LoadFromFile(folder.File("none")), result::MmsInvalidAttachment);
    EXPECT_EQ(loaded.From, "a@b");
    const std::string whole = TemporaryFolder::Read(file);
    TemporaryFolder::Write(file, whole.substr(0, whole.size() - 100));
    EXPECT_EQ(loaded.LoadFromFile(file), result::MmscCorrupt);
    EXPECT_EQ(loaded.From, "a@b");
    TemporaryFolder::Write(file, "");
    EXPECT_EQ(loaded.LoadFromFile(file), result::MmscCorrupt);

    TemporaryFolder::Write(file, "<smil>\r\nmine\r\n</smil>");
    EXPECT_EQ(message.LoadCustomSmil(folder.File("none")), result::MmsInvalidSmil);
    EXPECT_EQ(message.LoadCustomSmil(""), result::MmsInvalidSmil);
    std::filesystem::resize_file((TemporaryFolder::Write(folder.File("large"), "\r\n"), folder.File("large")),
                                 kLargestMmsFile + 1);
    EXPECT_EQ(message.LoadCustomSmil(folder.File("large")), result::MmsInvalidSmil);
    EXPECT_EQ(message.LoadFromFile(folder.File("large")), result::MmsInvalidAttachment);
    EXPECT_EQ(message.LoadCustomSmil(file), result::Success);
    EXPECT_EQ(message.Encode(), result::Success);
    EXPECT_EQ(message.Smil.data, "<smil>\nmine\n</smil>");
}

// --- slides

class Slide : public testing::Test {
  protected:
    VirtualClock clock;
    CMmsSlide slide{clock};
    TemporaryFolder folder;
};

TEST_F(Slide, TextsAreUtf8WithAZeroOctetAndANameOfTheirOwn) {
    std::set<std::string> names;
    for (int i = 0; i < 10'000; ++i) slide.AddText(u"Gr\u00FC\u00DFe");
    EXPECT_EQ(clock.Slept(), 500'000U);
    for (const CMmsMessagePart& part : slide.Slide().parts) names.insert(part.contentLocation);
    EXPECT_EQ(names.size(), 10'000U);
    const CMmsMessagePart& text = *slide.Text(0);
    EXPECT_EQ(text.data, std::string("Gr\xC3\xBC\xC3\x9F"
                                     "e\0",
                                     8));
    EXPECT_EQ(std::tuple(text.contentType, text.charset, text.contentId, text.contentLocation.size()),
              std::tuple("text/plain", 65001U, '<' + text.contentLocation + '>', 12U));
}

TEST_F(Slide, AttachmentsAreReadWhole) {
    const std::string octets = OctetText("00 FF 0D 0A 1A 00 80");
    TemporaryFolder::Write(folder.File("a.jpg"), octets);
    TemporaryFolder::Write(folder.File("empty.jpg"), "");
    std::filesystem::create_directory(folder.File("folder.jpg"));
    std::filesystem::resize_file((TemporaryFolder::Write(folder.File("limit"), ""), folder.File("limit")),
                                 kLargestMmsFile);
    std::filesystem::resize_file((TemporaryFolder::Write(folder.File("large"), ""), folder.File("large")),
                                 kLargestMmsFile + 1);
    for (const auto& [name, code] : {
             std::pair{"a.jpg", result::Success},
             std::pair{"limit", result::Success},
             std::pair{"large", result::MmsInvalidAttachment},
             std::pair{"empty.jpg", result::MmsInvalidAttachment},
             std::pair{"folder.jpg", result::MmsInvalidAttachment},
             std::pair{"none.jpg", result::MmsInvalidAttachment},
         }) {
        EXPECT_EQ(slide.AddAttachment(folder.File(name)), code) << name;
    }
    EXPECT_EQ(slide.AddAttachment(""), result::Success);
    EXPECT_EQ(slide.AddAttachment(folder.File("a.jpg") + std::string("\0.png", 5)),
              result::MmsInvalidAttachment);
    ASSERT_EQ(slide.AttachmentCount(), 2U);
    EXPECT_EQ(slide.Attachment(0)->data, octets);
    EXPECT_EQ(slide.Attachment(1)->data.size(), kLargestMmsFile);
    EXPECT_EQ(CMmsSlide::Save(*slide.Attachment(0), folder.File("copy")), result::Success);
    EXPECT_EQ(TemporaryFolder::Read(folder.File("copy")), octets);
    EXPECT_EQ(CMmsSlide::Save(*slide.Attachment(0), folder.File("no/copy")), result::MmsSaveFailed);
}

TEST_F(Slide, CountsTextsAndAttachmentsApart) {
    slide.AddAttachmentData("C:\\folder\\b.gif", "GIF");
    slide.AddText(u"one");
    slide.AddAttachmentData("note.txt", "a file of text");
    slide.AddAttachmentData("", "nothing");
    slide.AddAttachmentData("noextension", "");
    EXPECT_EQ(std::pair(slide.AttachmentCount(), slide.TextCount()),
              std::pair(std::size_t{2}, std::size_t{2}));
    EXPECT_EQ(slide.Attachment(0)->contentLocation, "b.gif");
    EXPECT_EQ(slide.Attachment(0)->contentId, "<b.gif>");
    EXPECT_EQ(slide.Attachment(1)->contentType, "");
    EXPECT_EQ(slide.Text(1)->data, "a file of text");
    for (const std::int32_t index : {2, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(slide.Attachment(index), nullptr);
        EXPECT_EQ(slide.Text(index), nullptr);
    }
}

TEST(MmsContentType, OfAFileName) {
    for (const auto& [name, type] : {
             std::pair{"a.jpg", "image/jpeg"}, std::pair{"a.b.jpeg", "image/jpeg"},
             std::pair{"a.JPG", "application/octet-stream"}, std::pair{"a.vcs", "text/x-vcalendarwav"},
             std::pair{"a.wav", "application/octet-stream"},  // where no type is registered
             std::pair{"a.audio/wav", "wbmp"}, std::pair{"a.wbmp", "image/vnd.wap.wbmp"},
             std::pair{"a.wma", "audio/x-ms-wma"}, std::pair{"a.wmlc", "application/vnd.wap.wmlc"},
             std::pair{"a.wml", "text/vnd.wap.wml"}, std::pair{"a.3gp", "video/3gpp"},
             std::pair{"a.video/3gpp", "application/octet-stream"},                 // nothing follows it
             std::pair{"a.image/svg+xml", "tif"}, std::pair{"a.audio/mp4", "png"},  // the last match counts
             std::pair{"a.", "application/octet-stream"}, std::pair{"a", ""}, std::pair{"", ""},
             std::pair{"C:\\x.gif\\a", "application/octet-stream"},  // the dot of the folder counts
         }) {
        EXPECT_EQ(ContentTypeOfFile(name), type) << name;
    }
}

// --- DRM messages

constexpr const char* kConstraintStart = "<o-ex:constraint>\r\n";
constexpr const char* kConstraintEnd = "</o-ex:constraint>\r\n";

std::string Rights(const std::string& operation, const std::string& contentId,
                   const std::string& constraint) {
    return "<o-ex:rights>\r\n  xmlns:o-ex=\"http://odrl.net/1.1/ODRL-EX\"\r\n"
           "  xmlns:o-dd=\"http://odrl.net/1.1/ODRL-DD\"\r\n>\r\n"
           "<o-ex:context>\r\n<o-dd:version>1.0</o-dd:version>\r\n</o-ex:context>\r\n"
           "<o-ex:agreement>\r\n<o-ex:asset>\r\n<o-ex:context>\r\n<o-dd:uid>cid:" +
           contentId +
           "</o-dd:uid>\r\n</o-ex:context>\r\n</o-ex:asset>\r\n<o-ex:permission>\r\n<o-dd:" + operation +
           ">\r\n" + kConstraintStart + constraint + kConstraintEnd + "</o-dd:" + operation +
           ">\r\n</o-ex:permission>\r\n</o-ex:agreement>\r\n</o-ex:rights>\r\n";
}

TEST_F(Slide, ProtectedAttachmentsBecomeDrmMessages) {
    TemporaryFolder::Write(folder.File("a.jpg"), "JPEG");
    struct Row {
        CMmsPermission permission;
        const char* operation;
        const char* constraint;
    };
    for (const Row& row : {
             Row{{0, 3, 0, "", ""}, "", ""},
             Row{{5, 3, 0, "", ""}, "", ""},
             Row{{-1, 3, 0, "", ""}, "", ""},
             Row{{1, 3, 9, "", ""}, "play", "<o-dd:count>3</od-dd:count>\r\n"},
             Row{{2, 0, 9, "2026-01-01", ""}, "display", "<o-dd:interval>P9D</od-dd:interval>\r\n"},
             Row{{3, 3, 9, "2026-01-01", "2026-12-31"},
                 "execute",
                 "<o-dd:datetime>\r\n<o-dd:start>2026-01-01T00:00:00</o-dd:start>\r\n"
                 "<o-dd:end>2026-12-31T23:59:59</o-dd:end>\r\n</o-dd:datetime>\r\n"},
             Row{{4, 0, 0, "", "</o-dd:end>"}, "print", ""},
             Row{{4, 0, 0, "<", "&"},
                 "print",
                 "<o-dd:datetime>\r\n<o-dd:start>&lt;T00:00:00</o-dd:start>\r\n"
                 "<o-dd:end>&amp;T23:59:59</o-dd:end>\r\n</o-dd:datetime>\r\n"},
         }) {
        slide.Clear();
        slide.Protect(row.permission);
        ASSERT_EQ(slide.AddAttachment(folder.File("a.jpg")), result::Success);
        const CMmsMessagePart& part = *slide.Attachment(0);
        const std::string name = folder.File("a.jpg");  // no backslash in it
        ASSERT_TRUE(part.drmBoundary.starts_with("drm-boundary-"));
        const std::string contentId = name + '@' + part.drmBoundary.substr(13);
        EXPECT_EQ(part.data,
                  "--" + part.drmBoundary +
                      "\r\nContent-type: application/vnd.oma.drm.rights+xml\r\n"
                      "Content-Transfer-Encoding: binary\r\n\r\n" +
                      (*row.operation != 0 ? Rights(row.operation, contentId, row.constraint) : "") +
                      "\r\n\r\n--" + part.drmBoundary + "\r\nContent-type: image/jpeg\r\nContent-ID: <" +
                      contentId + ">\r\nContent-Transfer-Encoding: binary\r\n\r\n\r\n--" + part.drmBoundary +
                      "--\r\n");
        EXPECT_EQ(std::tuple(part.contentType, part.contentLocation, part.contentId),
                  std::tuple("application/vnd.oma.drm.message", name + ".dm", '<' + name + ".dm>"));
    }
    EXPECT_EQ(clock.Slept(), 80U);
    EXPECT_EQ(slide.AddAttachment(folder.File("a.jpg")), result::Success);  // goes on until Clear
    EXPECT_NE(slide.Attachment(1)->drmBoundary, slide.Attachment(0)->drmBoundary);
    EXPECT_EQ(slide.AddAttachment(folder.File("none")), result::MmsInvalidAttachment);
    slide.AddAttachmentData("b.jpg", "x");
    EXPECT_EQ(slide.Attachment(2)->drmBoundary, "");
    slide.Clear();
    EXPECT_EQ(slide.AddAttachment(folder.File("a.jpg")), result::Success);
    EXPECT_EQ(slide.Attachment(0)->data, "JPEG");
}

}  // namespace
