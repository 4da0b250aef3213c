// The speed test of the service dialog. The controller's own count of packets is the truth.

#include "paramsbench.h"
#include "servicebench.h"

#include <QPushButton>
#include <QtTest>

#include <thread>

Q_DECLARE_METATYPE(emulator::Rule)

using emulator::on;
using emulator::Rule;

namespace {

constexpr int fastestHz = 500;
const char notStarted[] = "Speed Test: Failed - stream couldn't start\n";
const char notStopped[] = "Speed Test: Failed - stream couldn't be stopped - maybe reconnect\n";

QString received(qint64 count)
{
    return QStringLiteral("Speed Test: %1 of 500 received").arg(count);
}

QByteArrayList startAndStop()
{
    return {streamStart(fastestHz), "CLS;"};
}

} // namespace

class TestServiceSpeed : public QObject
{
    Q_OBJECT

private slots:
    void everyPacketBehindTheFirstIsCounted();
    void damagedPacketsAreMissing();
    void packetsThatTheControllerCouldNotSendAreMissing();
    void theStreamComesBackWithItsOwnRate();
    void aRefusedStartIsAStreamOfNothing();
    void aStartThatFailsIsTold_data();
    void aStartThatFailsIsTold();
    void behindASilentStartTheLinkIsDeafUntilItIsDisconnected();
    void aStopThatFailsIsTold_data();
    void aStopThatFailsIsTold();
    void aStopThatFailsStartsNoStreamAgain();
    void everyKindIsCounted_data() { addControllerKinds(); }
    void everyKindIsCounted();
};

void TestServiceSpeed::everyPacketBehindTheFirstIsCounted()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("speed_pushButton"));
    const qint64 sent = bench.link.controller.packetsSent();
    QVERIFY(sent > 1);
    QCOMPARE(bench.results(), received(sent - 1));
    QCOMPARE(bench.commands(), startAndStop());
    QVERIFY(bench.isQuiet());
    QCOMPARE(bench.link.client.samplingRate(), -1);
}

/// The stream is shorter than the test, so that its last packet, which carries the end, is none of
/// those that are damaged.
void TestServiceSpeed::damagedPacketsAreMissing()
{
    constexpr int packets = 205;
    constexpr int damaged = 20;
    emulator::ControllerOptions options;
    options.script = numberedSamples(packets);
    options.faults.dropByteEvery = 10;
    ServiceBench bench(options);
    QVERIFY(bench.open());
    QVERIFY(bench.click("speed_pushButton"));
    const qint64 sent = bench.link.controller.packetsSent();
    QCOMPARE(sent, packets + 1);
    QCOMPARE(bench.results(), received(sent - 1 - damaged));
    QVERIFY(bench.isQuiet());
}

void TestServiceSpeed::packetsThatTheControllerCouldNotSendAreMissing()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    std::thread somebody([controller = bench.link.controller]() mutable {
        while (!controller.isStreaming())
            QThread::msleep(1);
        controller.pause(true);
        QThread::msleep(500);
        controller.pause(false);
    });
    const bool isClicked = bench.click("speed_pushButton");
    somebody.join();
    QVERIFY(isClicked);
    const qint64 sent = bench.link.controller.packetsSent();
    QVERIFY(sent < 400);
    QCOMPARE(bench.results(), received(sent - 1));
}

void TestServiceSpeed::theStreamComesBackWithItsOwnRate()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    const qint64 before = bench.link.controller.packetsSent();
    QVERIFY(before > 0);
    QVERIFY(bench.click("speed_pushButton"));
    QCOMPARE(bench.commands(), QByteArrayList{"CLS;"} + startAndStop()
                                   + QByteArrayList{streamStart(ServiceBench::streamRateHz)});
    QVERIFY(bench.streams());
}

void TestServiceSpeed::aRefusedStartIsAStreamOfNothing()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVERIFY(bench.clickUnder({on("SLS").once().refuse()}, "speed_pushButton"));
    QCOMPARE(bench.results(), received(0));
    QCOMPARE(bench.commands(), QByteArrayList{"CLS;"} + startAndStop()
                                   + QByteArrayList{streamStart(ServiceBench::streamRateHz)});
    QVERIFY(bench.streams());
}

void TestServiceSpeed::aStartThatFailsIsTold_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::newRow("silent") << Rule(on("SLS").ignore());
    QTest::newRow("short") << Rule(on("SLS").reply(QByteArray(1, '\0')));
}

void TestServiceSpeed::aStartThatFailsIsTold()
{
    QFETCH(Rule, rule);
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    QVERIFY(bench.clickUnder({rule}, "speed_pushButton"));
    QCOMPARE(bench.results(), QString(notStarted));
    QCOMPARE(bench.commands(), QByteArrayList({"CLS;", streamStart(fastestHz)}));
    QVERIFY(bench.isQuiet());
}

void TestServiceSpeed::behindASilentStartTheLinkIsDeafUntilItIsDisconnected()
{
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.clickUnder({on("SLS").ignore()}, "speed_pushButton"));
    bench.link.controller.setRules({});
    QVERIFY(bench.click("buttonGIN_1"));
    QCOMPARE(bench.results(), QString("Get Intensity: failed - no response\n"));
    QCOMPARE(bench.commands(), QByteArrayList());

    bench.link.client.disconnectController();
    QVERIFY(bench.link.connect());
    QVERIFY(bench.click("buttonGIN_1"));
    QVERIFY(!bench.results().contains("failed"));
}

void TestServiceSpeed::aStopThatFailsIsTold_data()
{
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<bool>("streamsOn");
    QTest::newRow("silent") << QList<Rule>{on("CLS").ignore()} << true;
    QTest::newRow("short") << QList<Rule>{on("SLS").refuse(), on("CLS").cutTo(1)} << false;
}

void TestServiceSpeed::aStopThatFailsIsTold()
{
    QFETCH(QList<Rule>, rules);
    QFETCH(bool, streamsOn);
    ServiceBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.clickUnder(rules, "speed_pushButton"));
    QCOMPARE(bench.results(), QString(notStopped));
    QCOMPARE(bench.commands(), startAndStop());
    QCOMPARE(bench.link.controller.isStreaming(), streamsOn);
    QCOMPARE(bench.link.client.isStreaming(), streamsOn);
}

void TestServiceSpeed::aStopThatFailsStartsNoStreamAgain()
{
    ServiceBench bench;
    QVERIFY(bench.openStreaming());
    // The first stop is that of the stream that ran before.
    QVERIFY(bench.clickUnder({on("SLS").refuse().once(), on("CLS").after(1).cutTo(1).once()},
                             "speed_pushButton"));
    QCOMPARE(bench.results(), QString(notStopped));
    QCOMPARE(bench.commands(), QByteArrayList{"CLS;"} + startAndStop());
    QVERIFY(bench.isQuiet());
}

void TestServiceSpeed::everyKindIsCounted()
{
    QFETCH(ControllerKind, kind);
    ServiceBench bench(kind.options);
    QVERIFY(bench.link.connectAndIdentify());
    bench.link.client.setTriggerMode(kind.byTriggers);
    QVERIFY(bench.show());
    QVERIFY(bench.click("speed_pushButton"));
    QCOMPARE(bench.commands(), QByteArrayList({kind.start(fastestHz), "CLS;"}));
    // A start by triggers is answered by two bytes, any other one by its first packet.
    const qint64 answers = bench.commands().first().startsWith("SPS") ? 0 : 1;
    QCOMPARE(bench.results(), received(bench.link.controller.packetsSent() - answers));
    QVERIFY(bench.isQuiet());
}

QTEST_MAIN(TestServiceSpeed)
#include "tst_servicespeed.moc"
