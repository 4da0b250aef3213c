#include "fakeport.h"
#include "link/endpoint.h"
#include "support/emulatedlink.h"

#include <QtTest>

#include <functional>
#include <optional>

Q_DECLARE_METATYPE(std::function<void(LinkCondition&)>)

namespace {

constexpr int shortTimeoutMs = 20;
/// So long that a wait for it can not be taken for "at once".
constexpr int longTimeoutMs = 20000;
const QByteArray accepted("\0;", 2);
const QByteArray refused("\x01;");
const CommandFrame stop{"CLS;", command::statusReplyLength};
const CommandFrame start{"SLS123;", command::packetLength};

/// An endpoint with a link that is up, in the thread of the test.
struct EndpointBench
{
    explicit EndpointBench(int timeoutMs = shortTimeoutMs)
    {
        condition.timeoutMs = timeoutMs;
        condition.firmwareVersion = 40;
        condition.portOpen = true;
        condition.link = LinkState::Connected;
        auto made = std::make_unique<FakePort>();
        port = made.get();
        endpoint.open(std::move(made));
    }
    ~EndpointBench() { endpoint.close(); }

    void receive(const QByteArray& bytes)
    {
        port->input += bytes;
        endpoint.takeInput();
    }
    /// As if a stream had been started.
    void stream()
    {
        condition.streaming = true;
        condition.stream = StreamState::StartAnsweredOrStopFailed;
    }
    std::optional<QByteArray> takeReply()
    {
        QByteArray reply;
        if (!condition.replies.take(reply))
            return std::nullopt;
        return reply;
    }

    LinkCondition condition;
    measureStore store{100};
    Endpoint endpoint{condition, store};
    FakePort* port = nullptr;
};

} // namespace

class TestEndpoint : public QObject
{
    Q_OBJECT

private slots:
    void commandIsWrittenAndItsReplyAwaited();
    void commandWithoutAnswerAwaitsNone();
    void commandIsDroppedUnlessTheLinkIsQuiet_data();
    void commandIsDroppedUnlessTheLinkIsQuiet();
    void stopIsWrittenWhileStreaming();
    void everyStartAwaitsItsAnswer();
    void replyIsReadByItsLength();
    void refusalOfALongReplyIsTaken();
    void shortReplyIsDropped();
    void acceptedStartStreams();
    void refusedStartDoesNotStream();
    void startWithoutItsWholeReplyIsNone();
    void stopIsConfirmedByTheLastBytes();
    void unconfirmedStopFails();
    void unconfirmedStopLeavesTheStreamOn();
    void markedPacketEndsAStoppedStream();
    void streamThatEndsByItselfHasNoReply();
    void partialPacketWaitsForItsRest();
    void waitLooksAtThePortOnlyWhenSomethingHappens();
    void lostPortEndsTheWait();
    void lostPortEndsTheStop();
};

void TestEndpoint::commandIsWrittenAndItsReplyAwaited()
{
    EndpointBench bench;
    bench.condition.replies.put("an old one");
    bench.endpoint.write(command::statusRequest());
    QCOMPARE(bench.port->written, QByteArrayList{"GSF;"});
    QVERIFY(bench.condition.replies.isAwaited());
    QCOMPARE(bench.condition.stream.load(), StreamState::None);
}

void TestEndpoint::commandWithoutAnswerAwaitsNone()
{
    EndpointBench bench;
    bench.endpoint.write({"XYZ;", 0});
    QCOMPARE(bench.port->written, QByteArrayList{"XYZ;"});
    QVERIFY(!bench.condition.replies.isAwaited());
}

void TestEndpoint::commandIsDroppedUnlessTheLinkIsQuiet_data()
{
    using Change = std::function<void(LinkCondition&)>;
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("reply awaited", [](LinkCondition& link) { link.replies.expect(); });
    row("streaming", [](LinkCondition& link) { link.streaming = true; });
    row("start sent", [](LinkCondition& link) { link.stream = StreamState::StartSent; });
    row("stop sent", [](LinkCondition& link) { link.stream = StreamState::StopSent; });
    row("port lost", [](LinkCondition& link) { link.portOpen = false; });
    row("not connected", [](LinkCondition& link) { link.link = LinkState::NotConnected; });
}

void TestEndpoint::commandIsDroppedUnlessTheLinkIsQuiet()
{
    QFETCH(std::function<void(LinkCondition&)>, change);
    EndpointBench bench;
    change(bench.condition);
    bench.endpoint.write(command::statusRequest());
    QVERIFY(bench.port->written.isEmpty());
}

void TestEndpoint::stopIsWrittenWhileStreaming()
{
    EndpointBench bench;
    bench.stream();
    bench.endpoint.write(stop);
    QCOMPARE(bench.port->written, QByteArrayList{"CLS;"});
    QCOMPARE(bench.condition.stream.load(), StreamState::StopSent);
}

void TestEndpoint::everyStartAwaitsItsAnswer()
{
    for (const char* mnemonic : {"SLS", "SGS", "SPS"}) {
        EndpointBench bench;
        bench.endpoint.write(command::frame(mnemonic, "12;", command::statusReplyLength));
        QCOMPARE(bench.condition.stream.load(), StreamState::StartSent);
        QVERIFY(!bench.condition.streaming);
    }
}

void TestEndpoint::replyIsReadByItsLength()
{
    EndpointBench bench;
    bench.endpoint.write(command::statusRequest());
    bench.receive(accepted + "\x48;rest");
    QVERIFY(bench.takeReply() == accepted + "\x48;");
    QCOMPARE(bench.port->input, QByteArray("rest"));
}

void TestEndpoint::refusalOfALongReplyIsTaken()
{
    EndpointBench bench;
    bench.endpoint.write(command::statusRequest());
    bench.receive(refused);
    QVERIFY(bench.takeReply() == refused);
}

void TestEndpoint::shortReplyIsDropped()
{
    EndpointBench bench;
    bench.endpoint.write(command::statusRequest());
    bench.receive("abc");
    QVERIFY(bench.takeReply() == QByteArray());
    QVERIFY(bench.port->input.isEmpty());
}

void TestEndpoint::acceptedStartStreams()
{
    EndpointBench bench;
    bench.endpoint.write(start);
    bench.receive(rawPacket(7));
    QVERIFY(bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
    QVERIFY(bench.takeReply() == rawPacket(7));
    QCOMPARE(bench.store.storedCount(), quint64(0));
}

void TestEndpoint::refusedStartDoesNotStream()
{
    EndpointBench bench;
    bench.endpoint.write({"SPS12;", command::statusReplyLength});
    bench.receive(refused);
    QVERIFY(!bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
}

void TestEndpoint::startWithoutItsWholeReplyIsNone()
{
    EndpointBench bench;
    bench.endpoint.write(start);
    bench.receive(refused);
    QVERIFY(!bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::None);
}

void TestEndpoint::stopIsConfirmedByTheLastBytes()
{
    EndpointBench bench;
    bench.condition.firmwareVersion = packet::lastFirmwareWithoutFlags;
    bench.stream();
    bench.endpoint.write(stop);
    bench.receive("rest of a packet" + accepted);
    QVERIFY(bench.takeReply() == accepted);
    QVERIFY(!bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::None);
}

void TestEndpoint::unconfirmedStopFails()
{
    EndpointBench bench;
    bench.endpoint.write(stop);
    bench.receive(refused);
    QVERIFY(bench.takeReply() == QByteArray());
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
}

void TestEndpoint::unconfirmedStopLeavesTheStreamOn()
{
    EndpointBench bench;
    bench.condition.firmwareVersion = packet::lastFirmwareWithoutFlags;
    bench.stream();
    bench.endpoint.write(stop);
    bench.receive("x");
    QVERIFY(bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
}

void TestEndpoint::markedPacketEndsAStoppedStream()
{
    EndpointBench bench;
    bench.stream();
    bench.endpoint.write(stop);
    bench.receive(rawPacket(7) + rawPacket(8, '\x80') + accepted);
    QVERIFY(!bench.condition.streaming);
    QCOMPARE(bench.condition.stream.load(), StreamState::None);
    QVERIFY(bench.takeReply() == accepted);
    QCOMPARE(bench.store.storedCount(), quint64(2));
}

void TestEndpoint::streamThatEndsByItselfHasNoReply()
{
    EndpointBench bench;
    bench.stream();
    bench.receive(rawPacket(7, '\x80'));
    QVERIFY(!bench.condition.streaming);
    QVERIFY(!bench.takeReply());
}

void TestEndpoint::partialPacketWaitsForItsRest()
{
    constexpr int part = 10;
    EndpointBench bench;
    bench.stream();
    bench.receive(rawPacket(7).left(part));
    QCOMPARE(bench.port->input.size(), part);
    bench.receive(rawPacket(7).mid(part));
    QCOMPARE(bench.store.storedCount(), quint64(1));
    QVERIFY(bench.condition.streaming);
}

void TestEndpoint::waitLooksAtThePortOnlyWhenSomethingHappens()
{
    constexpr int someMs = 200;
    constexpr int fewLooks = 20;
    EndpointBench bench(someMs);
    bench.endpoint.write(command::statusRequest());
    bench.port->looks = 0;
    bench.receive("1");
    QCOMPARE(bench.takeReply(), std::make_optional(QByteArray()));
    QVERIFY(bench.port->looks < fewLooks);
}

void TestEndpoint::lostPortEndsTheWait()
{
    EndpointBench bench(longTimeoutMs);
    bench.endpoint.write(command::statusRequest());
    QElapsedTimer time;
    time.start();
    QTimer::singleShot(0, [&bench] { bench.condition.portOpen = false; });
    bench.receive("a");
    QVERIFY(time.elapsed() < longTimeoutMs);
}

void TestEndpoint::lostPortEndsTheStop()
{
    EndpointBench bench(longTimeoutMs);
    bench.endpoint.write(stop);
    QElapsedTimer time;
    time.start();
    QTimer::singleShot(0, [&bench] {
        bench.condition.portOpen = false;
        bench.port->close();
    });
    bench.receive(accepted);
    QVERIFY(time.elapsed() < longTimeoutMs);
    QVERIFY(bench.takeReply() == QByteArray());
    QCOMPARE(bench.condition.stream.load(), StreamState::StartAnsweredOrStopFailed);
}

QTEST_GUILESS_MAIN(TestEndpoint)
#include "tst_endpoint.moc"
