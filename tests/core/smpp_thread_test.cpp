// The protocol with its real worker thread and sockets, over a server that only answers. For ThreadSanitizer
// too.
#include "SmppSink.h"
#include "foundation/Hex.h"
#include "smpp/SmppProtocol.h"
#include "support/TemporaryFolder.h"

#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>

namespace {

TEST(SmppThreads, ManyMessagesFromTheCallersThreadAllGetTheirResult) {
    const SmppSink sink;
    const TemporaryFolder folder;
    for (int round = 0; round < 3; ++round) {
        CSmppProtocol smpp;
        smpp.settings.server = "127.0.0.1";
        smpp.settings.serverPort = sink.Port();
        ASSERT_EQ(smpp.Connect(), 0);
        CSmsMessageX message;
        message.Recipient = "+31612345678";
        message.Data = u"text";
        std::vector<std::string> references(500);
        // Meanwhile the log is switched and another thread looks at the results.
        std::atomic<bool> done = false;
        std::thread reader([&smpp, &done] {
            while (!done) (void)(smpp.Reports().SaveText().size() + smpp.Received().Count());
        });
        for (std::size_t i = 0; i < references.size(); ++i) {
            if (i % 100 == 50) smpp.SetLogFile(i % 200 == 50 ? folder.File("log.txt") : std::string());
            EXPECT_EQ(smpp.Send(message, references[i]), 0);
        }
        done = true;
        reader.join();
        CSmsDeliveryReport report;
        EXPECT_EQ(smpp.QueryStatus(references[round], true, report), 0);
        smpp.Disconnect();  // sends what is still queued
        for (const std::string& reference : references) {
            EXPECT_EQ(smpp.Reports().Query(reference)->status, sms::asDELIVERYSTATUS_SUBMITTED);
        }
        std::string late;
        EXPECT_EQ(smpp.Send(message, late), 33205);
        EXPECT_EQ(smpp.Connect(), 0);  // the destructor ends this one
    }
}

TEST(SmppThreads, NoReferenceIsGivenTwice) {
    const SmppSink sink;
    std::set<std::string> given;
    const auto send = [&](CSmppProtocol& smpp) {
        CSmsMessageX message;
        message.Recipient = "+31612345678";
        std::string reference;
        EXPECT_EQ(smpp.Send(message, reference), 0);
        EXPECT_TRUE(given.insert(reference).second) << reference;
        return reference;
    };
    const auto connect = [&](CSmppProtocol& smpp) {
        smpp.settings.server = "127.0.0.1";
        smpp.settings.serverPort = sink.Port();
        ASSERT_EQ(smpp.Connect(), 0);
    };
    CSmppProtocol one, two;  // made in the same second
    connect(one);
    connect(two);
    std::string last;
    for (int i = 0; i < 100; ++i) last = send(i % 2 == 0 ? one : two);
    // What was loaded counts as well.
    const auto number = static_cast<std::uint32_t>(std::stoul(last, nullptr, 16));
    for (std::uint32_t next = 1; next <= 5; ++next) {
        std::string loaded;
        hex::AppendNumber(loaded, number + next);
        one.Reports().LoadText(loaded + ";;P;;2");
        given.insert(loaded);
    }
    std::string expected;
    hex::AppendNumber(expected, number + 6);
    EXPECT_EQ(send(one), expected);
}

}  // namespace
