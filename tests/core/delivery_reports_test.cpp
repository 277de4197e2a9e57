// The delivery-report store and its files.
#include "foundation/BinaryFile.h"
#include "foundation/TextFile.h"
#include "sms/SmsDeliveryReports.h"
#include "support/TemporaryFolder.h"
#include "support/VirtualClock.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sys/resource.h>
#include <thread>

namespace {

TEST(DeliveryReports, StartAsTheSenderAskedFor) {
    VirtualClock clock;
    CSmsDeliveryReports reports(clock);
    reports.RecordSent("a", ReportWanted::kNo);
    reports.RecordSent("b", ReportWanted::kYes);
    reports.RecordSent("c", ReportWanted::kSubmitRequested);
    EXPECT_EQ(reports.Query("a")->status, 11);
    EXPECT_EQ(reports.Query("a")->completedTime, 1'700'000'000);
    EXPECT_EQ(reports.Query("b")->status, 1);
    EXPECT_EQ(reports.Query("b")->completedTime, 0);
    EXPECT_EQ(reports.Query("c")->status, 10);
    EXPECT_FALSE(reports.Query("d"));
}

constexpr std::int32_t kHex = 0;
constexpr std::int32_t kDec = 1;
using Match = ReceiptMatch;

SmsReceipt Receipt(std::string id, bool isPlain = false) {
    SmsReceipt receipt{std::move(id), 2, 1700000000, 3};
    receipt.isPlainId = isPlain;
    return receipt;
}

std::string ReceiverOf(CSmsDeliveryReports& reports, const std::string& id, Match match) {
    return reports.ApplyReceipt(Receipt(id), match).value_or("none");
}

void Send(CSmsDeliveryReports& reports, const std::string& reference, const std::string& provider) {
    reports.RecordSent(reference, ReportWanted::kYes);
    reports.RecordProviderReference(reference, provider);
}

TEST(DeliveryReports, MatchReceiptsAsFarAsIsAllowed) {
    const std::string longDecimal = "123456789012345678901234567890";
    const std::string longHex = "18EE90FF6C373E0EE4E3F0AD2";
    struct Row {
        const char* provider;
        std::int32_t format;
        std::string receiptId;
        Match needed;
        bool found = true;
        bool isPlain = false;
    };
    for (const Row& row : {
             Row{"0000007B", kDec, "123", Match::kExact},  // converted, padded to the submitted length
             Row{"0000007b", kDec, "00123", Match::kLoose},
             Row{"007B", kDec, " 123 ", Match::kExact},
             Row{"7B", kDec, "0x7b", Match::kExact},
             Row{"7B", kDec, "7B", Match::kGuessed, false},  // never unconverted
             Row{"123", kDec, "123", Match::kGuessed, false},
             Row{"123", kDec, "123", Match::kExact, true, true},  // but as it stands in a parameter
             Row{"7B", kDec, "123", Match::kExact, true, true},
             Row{longHex.c_str(), kDec, longDecimal, Match::kExact},  // of any length
             Row{"7B", kHex, "7B", Match::kExact},
             Row{"0000007B", kHex, "7B", Match::kExact},
             Row{"7B", kHex, "0000007b", Match::kLoose},
             Row{"7B", kHex, " 0x7B", Match::kLoose},
             Row{"0x7B", kHex, "7B", Match::kLoose},
             Row{"abc-XYZ", kHex, "ABC-xyz", Match::kLoose},
             Row{"10", kHex, "16", Match::kGuessed, false},  // too short to guess
             Row{"186A0", kHex, "100000", Match::kGuessed, false},
             Row{"00000010", kHex, "0000016", Match::kGuessed, false},
             Row{"000186a0", kHex, "100000", Match::kGuessed},
             Row{"0012D687", kHex, "1234567", Match::kGuessed},
             Row{"1234567", kHex, "12d687", Match::kGuessed},
             Row{longHex.c_str(), kHex, longDecimal, Match::kGuessed},
             Row{"7B", kHex, "7C", Match::kGuessed, false},
             Row{"0000", kHex, "", Match::kGuessed, false},
             Row{"0000", kHex, " 0x", Match::kGuessed, false},
             Row{"N/A", kHex, "N/A", Match::kGuessed, false},
         }) {
        for (const Match match : {Match::kExact, Match::kLoose, Match::kGuessed}) {
            CSmsDeliveryReports reports;
            reports.SetReceiptFormat(row.format);
            Send(reports, "ref", row.provider);
            const auto reference = reports.ApplyReceipt(Receipt(row.receiptId, row.isPlain), match);
            const bool found = row.found && match >= row.needed;
            EXPECT_EQ(reference.has_value(), found) << row.provider << " " << row.receiptId;
            EXPECT_EQ(reports.Query("ref")->status, found ? 2 : 1);
        }
    }
}

TEST(DeliveryReports, AReceiptThatCouldBeForSeveralIsForNone) {
    CSmsDeliveryReports reports;
    Send(reports, "a", "0A");
    Send(reports, "b", "00A");
    Send(reports, "c", "1234567");
    Send(reports, "d", "12D687");
    Send(reports, "e", "19088743");
    EXPECT_EQ(ReceiverOf(reports, "0A", Match::kGuessed), "a");
    EXPECT_EQ(ReceiverOf(reports, "000A", Match::kGuessed), "none");
    EXPECT_EQ(ReceiverOf(reports, "01234567", Match::kGuessed), "c");
    Send(reports, "f", "4D2");
    reports.Remove("c");
    EXPECT_EQ(ReceiverOf(reports, "1234567", Match::kGuessed), "none");  // d in decimal, e in hexadecimal
    reports.Remove("e");
    EXPECT_EQ(ReceiverOf(reports, "1234567", Match::kGuessed), "d");
}

// Own and foreign messages of one server: what is found is right, and every own one is found.
TEST(DeliveryReports, OfThousandsOfReceiptsNoneGoesWrong) {
    using Spelling = std::function<std::string(std::uint64_t)>;
    const auto printed = [](const char* form) {
        return Spelling([form](std::uint64_t number) {
            std::array<char, 32> text{};
            std::snprintf(text.data(), text.size(), form, static_cast<unsigned long long>(number));
            return std::string(text.data());
        });
    };
    const Spelling upper = printed("%llX"), lower = printed("%llx"), padded = printed("%012llX");
    const Spelling decimal = printed("%llu"), paddedDecimal = printed("%020llu");
    struct Row {
        std::int32_t format;
        Spelling answer, receipt;
    };
    std::mt19937_64 random(20261115);
    for (const Row& row : {Row{kHex, upper, upper},
                           {kHex, padded, upper},
                           {kHex, upper, lower},
                           {kHex, lower, padded},
                           {kHex, decimal, decimal},
                           {kHex, decimal, paddedDecimal},
                           {kDec, upper, decimal},
                           {kDec, padded, decimal},
                           {kDec, lower, paddedDecimal}}) {
        for (const std::uint64_t range : {6000ULL, 1ULL << 24, 1ULL << 48}) {
            std::map<std::uint64_t, std::string> messages;  // own ones have a reference
            while (messages.size() < 4000) {
                const std::string reference =
                    messages.size() % 2 == 0 ? "r" + std::to_string(messages.size()) : "";
                messages.emplace(random() % range, reference);
            }
            CSmsDeliveryReports sent, loaded;
            for (const auto& [number, reference] : messages) {
                if (!reference.empty()) Send(sent, reference, row.answer(number));
            }
            loaded.LoadText(sent.SaveText());
            for (CSmsDeliveryReports* reports : {&sent, &loaded}) {
                reports->SetReceiptFormat(row.format);
                std::size_t wrong = 0;
                for (const auto& [number, reference] : messages) {
                    const std::string expected = reference.empty() ? "none" : reference;
                    wrong += ReceiverOf(*reports, row.receipt(number), Match::kLoose) == expected ? 0 : 1;
                }
                EXPECT_EQ(wrong, 0U) << row.format << " " << row.answer(255) << " " << row.receipt(255) << " "
                                     << range;
            }
        }
    }
}

TEST(DeliveryReports, LoadingTakesTheLengthOfTheNewestIdAndTheNewerOfTwoMessagesWithOne) {
    CSmsDeliveryReports reports;
    reports.SetReceiptFormat(kDec);
    reports.LoadText(
        "a;;007B;;1;;0;;0;;0;;300||b;;7C;;1;;0;;0;;0;;100||B;;007C;;1;;0;;0;;0;;100||c;;N/"
        "A;;1;;0;;0;;0;;400||"
        "d;;;;1;;0;;0;;0;;500||e;;007B;;1;;0;;0;;0;;200");
    EXPECT_EQ(ReceiverOf(reports, "124", Match::kExact), "B");
    EXPECT_EQ(ReceiverOf(reports, "123", Match::kExact), "a");
    EXPECT_EQ(reports.Query("e")->providerReference, "007B");
    EXPECT_EQ(reports.Query("c")->providerReference, "N/A");
    reports.Remove("e");
    EXPECT_EQ(ReceiverOf(reports, "123", Match::kExact), "a");
    Send(reports, "new", "7D");
    EXPECT_EQ(ReceiverOf(reports, "124", Match::kExact), "b");
    reports.LoadText("old;;007E;;1;;0;;0;;0;;600");
    EXPECT_EQ(ReceiverOf(reports, "124", Match::kExact), "b");  // what a server answers now counts more
}

TEST(DeliveryReports, AnEmptyReferenceIsAsserted) {
    CSmsDeliveryReports reports;
    testing::internal::CaptureStderr();
    reports.RecordSent("a", ReportWanted::kYes);
    reports.RecordProviderReference("a", "A");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    reports.RecordSent("", ReportWanted::kYes);
    reports.RecordProviderReference("", "A");
    const std::string shown = testing::internal::GetCapturedStderr();
    const std::string_view wanted = "QUORVANE ASSERTION FAILURE, FILE: [SmsDeliveryReport]; LINE: ";
    EXPECT_NE(shown.find(wanted), std::string::npos);
    EXPECT_NE(shown.find(wanted), shown.rfind(wanted));
}

TEST(DeliveryReports, ATakenReferenceIsNotGivenAgain) {
    CSmsDeliveryReports reports;
    reports.LoadText("A;;P;;2");
    EXPECT_FALSE(reports.RecordNew("A", ReportWanted::kSubmitRequested));
    EXPECT_TRUE(reports.RecordNew("B", ReportWanted::kSubmitRequested));
    EXPECT_FALSE(reports.RecordNew("B", ReportWanted::kSubmitRequested));
    EXPECT_EQ(reports.Query("A")->status, 2);
    EXPECT_EQ(reports.Query("B")->status, 10);
}

TEST(DeliveryReports, AForeignReceiptIsKeptUnlessItsIdIsTheReferenceOfAMessage) {
    CSmsDeliveryReports reports;
    reports.RecordSent("own", ReportWanted::kYes);
    EXPECT_FALSE(reports.KeepForeign(Receipt("own")));
    EXPECT_EQ(reports.Query("own")->status, 1);
    EXPECT_TRUE(reports.KeepForeign(Receipt("foreign")));
    EXPECT_TRUE(reports.KeepForeign({"foreign", 5, 1700000001, 4}));
    EXPECT_EQ(reports.Query("foreign")->status, 5);
    EXPECT_EQ(reports.Query("foreign")->completedTime, 1700000001);
}

TEST(DeliveryReports, TellTheReportOfAnotherMessage) {
    VirtualClock clock;
    const auto now = static_cast<std::int32_t>(clock.Now());
    struct Row {
        const char* sentTo;
        const char* recipient;
        std::int32_t completed;
        bool isOfAnother;
    };
    for (const Row& row : {
             Row{"+31612345678", "31612345678", now, false},
             Row{"0612345678:2948", "31612345678", now, false}, Row{"+31612345678", "31612345679", now, true},
             Row{"+31612345678", "31612045678", now, true}, Row{"S1234", "1234", now, false},
             Row{"S1234", "1235", now, true}, Row{"S1234", "61234", now, true},
             Row{"+31612345678", "", now, false}, Row{"+31612345678", "31612345678", now - 86'400, false},
             Row{"+31612345678", "31612345678", now - 86'401, true},
             Row{"+31612345678", "31612345678", 0, false},  // no time at all
         }) {
        CSmsDeliveryReports reports(clock);
        reports.RecordSent("17", ReportWanted::kYes, row.sentTo);
        EXPECT_EQ(reports.IsOfAnother("17", row.recipient, row.completed), row.isOfAnother)
            << row.sentTo << " " << row.recipient;
        EXPECT_FALSE(reports.IsOfAnother("18", row.recipient, row.completed));
    }
}

TEST(DeliveryReports, AreSavedInTheirFormatAndLoadedBack) {
    const TemporaryFolder folder;
    const std::string file = folder.File("reports");
    const std::string text = "0A1B;;0A1B;;2;;1700000000;;0;;0;;1699999000||0A1C;;;;1;;0;;0;;7;;1699999001";
    CSmsDeliveryReports reports;
    reports.LoadText(text);
    EXPECT_EQ(reports.SaveText(), text);
    ASSERT_EQ(reports.Save(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file), text);
    const auto files = std::filesystem::directory_iterator(std::filesystem::path(file).parent_path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);  // nothing is left beside it

    CSmsDeliveryReports other;
    other.RecordSent("mine", ReportWanted::kNo);
    ASSERT_EQ(other.Load(file), 0);
    EXPECT_EQ(other.Count(), 3U);
    EXPECT_EQ(ReceiverOf(other, "0A1B", Match::kExact), "0A1B");

    CSmsDeliveryReports swapped;
    swapped.LoadText("prov;;ref;;2", true);
    EXPECT_EQ(swapped.Query("ref")->providerReference, "prov");
    EXPECT_EQ(swapped.SaveText(), "ref;;prov;;2;;0;;0;;0;;0");

    CSmsDeliveryReports none;
    EXPECT_EQ(none.Save(file), 0);
    EXPECT_EQ(TemporaryFolder::Read(file), "");
    EXPECT_EQ(none.Load(file), 0);
    EXPECT_EQ(none.Count(), 0U);
}

TEST(DeliveryReports, LoadWhatCanBeReadAndRefuseBadNames) {
    CSmsDeliveryReports reports;
    reports.LoadText("a||b;;c||;;||d;;;;x;;99999999999||");
    EXPECT_EQ(reports.Count(), 4U);
    EXPECT_EQ(reports.Query("d")->completedTime, INT32_MAX);
    reports.Clear();
    reports.LoadText("a||||b");  // an empty piece ends the file
    EXPECT_EQ(reports.Count(), 1U);
    const TemporaryFolder folder;
    EXPECT_EQ(reports.Save(folder.File("no/such/folder")), 33070);
    EXPECT_EQ(reports.Save(folder.File("")), 33070);
    EXPECT_EQ(reports.Save(""), 33070);
    EXPECT_EQ(reports.Load(folder.File("missing")), 33071);
    EXPECT_EQ(reports.Load(folder.File("")), 33071);
}

TEST(DeliveryReports, IdsReadBackWhateverIsInThem) {
    using namespace std::string_literals;
    const std::string plain[] = {"0A1B", "12|34", "a;b", "100%", "%3b", "%7E", "%", "%2", "a b", "\xE9"};
    const std::string other[] = {"a;",   ";a",      "|",         "a||b",      "a;;b", ";;;",
                                 "||||", "a\r\nb"s, "a\0b\x1A"s, "%3B%25%0D", "%%3B", "%;"};
    CSmsDeliveryReports reports;
    std::string expected;
    for (const std::string& id : plain) {
        reports.Clear();
        Send(reports, id, id);
        EXPECT_TRUE(reports.SaveText().starts_with(id + ";;" + id + ";;1;;")) << id;
    }
    reports.Clear();
    for (const std::string& id : plain) Send(reports, id, "p" + id);
    for (const std::string& id : other) Send(reports, id, "p" + id);
    const TemporaryFolder folder;
    ASSERT_EQ(reports.Save(folder.File("reports")), 0);
    CSmsDeliveryReports loaded;
    ASSERT_EQ(loaded.Load(folder.File("reports")), 0);
    EXPECT_EQ(loaded.Count(), std::size(plain) + std::size(other));
    EXPECT_EQ(loaded.SaveText(), reports.SaveText());
    for (const std::string& id : other) {
        ASSERT_TRUE(loaded.Query(id)) << id;
        EXPECT_EQ(loaded.Query(id)->providerReference, "p" + id);
    }
}

TEST(DeliveryReports, AreSavedWhereNothingFitsBesideAndBySeveralAtOnce) {
    const TemporaryFolder folder;
    CSmsDeliveryReports reports;
    for (int i = 0; i < 5000; ++i) Send(reports, std::to_string(i), "P" + std::to_string(i));
    const std::string longest = folder.File(std::string(250, 'r'));
    ASSERT_EQ(reports.Save(longest), 0);
    EXPECT_EQ(TemporaryFolder::Read(longest), reports.SaveText());

    const std::string file = folder.File("reports");
    std::filesystem::create_directory(file + ".new");
    std::vector<std::thread> savers;
    for (int i = 0; i < 4; ++i) {
        savers.emplace_back([&] {
            for (int round = 0; round < 5; ++round) EXPECT_EQ(reports.Save(file), 0);
        });
    }
    for (std::thread& saver : savers) saver.join();
    EXPECT_EQ(TemporaryFolder::Read(file), reports.SaveText());
}

// Much more than is read or copied at a time, with a record on every border.
TEST(DeliveryReports, LargeFilesAreSavedAndLoadedInPieces) {
    const TemporaryFolder folder;
    CSmsDeliveryReports reports, loaded;
    for (int i = 0; i < 35'000; ++i) Send(reports, "reference " + std::to_string(i), std::to_string(i));
    for (int i = 0; i < 5000; ++i) reports.Remove("reference " + std::to_string(i));  // places left free
    ASSERT_EQ(reports.Save(folder.File("reports")), 0);
    ASSERT_GT(std::filesystem::file_size(folder.File("reports")), 4 * kTextPiece);
    ASSERT_EQ(loaded.Load(folder.File("reports")), 0);
    EXPECT_EQ(loaded.Count(), 30'000U);
    EXPECT_EQ(loaded.SaveText(), reports.SaveText());
    TemporaryFolder::Write(folder.File("one"), std::string(4 * kTextPiece, '|').insert(0, "a;;b") + "c;;d");
    loaded.Clear();
    ASSERT_EQ(loaded.Load(folder.File("one")), 0);
    EXPECT_EQ(loaded.Count(), 1U);
}

// A disk that takes so many octets of a file, while it lives.
class FullDisk {
  public:
    explicit FullDisk(rlim_t octets) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit full{octets, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        (void)std::signal(SIGXFSZ, signal_);
    }

  private:
    void (*signal_)(int);
    rlimit before_{};
};

// The few octets of one report fail when the file is closed, those of many while it is written.
TEST(DeliveryReports, AFullDiskIsToldAndLeavesTheOldFile) {
    for (const int count : {1, 5000}) {
        const TemporaryFolder folder;
        const std::string file = folder.File("reports");
        TemporaryFolder::Write(file, "old");
        CSmsDeliveryReports reports;
        for (int i = 0; i < count; ++i) Send(reports, std::to_string(i), "P");
        const ResultCode code = [&] {
            const FullDisk full(8);
            return reports.Save(file);
        }();
        EXPECT_EQ(code, 33070) << count;
        EXPECT_EQ(TemporaryFolder::Read(file), "old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.File("")), {}), 1);
        EXPECT_EQ(reports.Save(file), 0);
    }
}

TEST(TextFile, AFullDiskIsToldByEveryWayToWrite) {
    for (const std::size_t size : {1U, 100'000U}) {
        const std::string text(size, 'x');
        EXPECT_FALSE(WriteTextFile("/dev/full", text)) << size;
        EXPECT_FALSE(AppendTextFile("/dev/full", text)) << size;
        EXPECT_FALSE(WriteBinaryFile("/dev/full", text)) << size;
    }
}

TEST(TextFile, IsReadTheSameInPiecesOfAnySize) {
    const TemporaryFolder folder;
    const std::string name = folder.File("text");
    for (const std::string text : {"a\r\nb\r\r\n\rc\n\n\r\nd", "\r\n", "\r", "", "plain", "end\r"}) {
        TemporaryFolder::Write(name, text);
        const std::string whole = *ReadTextFile(name, 1000);
        for (const std::size_t size : {1U, 2U, 3U, 5U, 1000U}) {
            std::string pieces;
            ASSERT_TRUE(ReadTextPieces(
                name, [&](std::string_view piece) { pieces += piece; }, size));
            EXPECT_EQ(pieces, whole) << size;
        }
    }
    EXPECT_FALSE(ReadTextPieces(folder.File("missing"), [](std::string_view) {}));
    EXPECT_FALSE(ReadTextPieces(folder.File(""), [](std::string_view) {}));
}

TEST(DeliveryReports, ANewUseOfAReferenceForgetsTheOldProviderId) {
    CSmsDeliveryReports reports;
    reports.RecordSent("1", ReportWanted::kYes);
    reports.RecordProviderReference("1", "AA");
    reports.RecordSent("1", ReportWanted::kYes);
    EXPECT_EQ(ReceiverOf(reports, "AA", Match::kGuessed), "none");
    reports.RecordProviderReference("1", "BB");
    reports.Remove("1");
    EXPECT_EQ(ReceiverOf(reports, "BB", Match::kGuessed), "none");
    EXPECT_FALSE(reports.Query("1"));
}

TEST(DeliveryReports, ProviderIdsThatDifferInCaseStayApartAndAReusedOneIsTheNewest) {
    CSmsDeliveryReports reports;
    const auto send = [&](const char* reference, const char* provider) {
        Send(reports, reference, provider);
    };
    const auto receiverOf = [&](const char* id) { return ReceiverOf(reports, id, Match::kLoose); };
    send("1", "0ab");
    send("2", "0AB");
    EXPECT_EQ(receiverOf("0ab"), "1");
    EXPECT_EQ(receiverOf("0AB"), "2");
    send("3", "0AB");
    EXPECT_EQ(receiverOf("0AB"), "3");
    reports.Remove("2");  // its id belongs to another message now
    EXPECT_EQ(receiverOf("0AB"), "3");
    reports.Remove("3");
    EXPECT_EQ(receiverOf("AB"), "1");  // loosely
    reports.Remove("1");
    EXPECT_EQ(receiverOf("0AB"), "none");
}

TEST(DeliveryReports, AreForgottenWhenOld) {
    VirtualClock clock;
    CSmsDeliveryReports reports(clock);
    reports.RecordSent("old", ReportWanted::kYes);
    reports.RecordProviderReference("old", "77");
    clock.Sleep(10'000);
    reports.RecordSent("new", ReportWanted::kYes);
    for (const auto& [seconds, left] : {std::pair{11, 2U}, {10, 2U}, {9, 1U}, {0, 1U}}) {
        reports.RemoveOlderThan(seconds);
        EXPECT_EQ(reports.Count(), left) << seconds;
    }
    EXPECT_FALSE(reports.Query("old"));
    EXPECT_EQ(ReceiverOf(reports, "77", Match::kGuessed), "none");
    clock.Sleep(1000);
    reports.RemoveOlderThan(0);
    EXPECT_EQ(reports.Count(), 0U);
}

}  // namespace
