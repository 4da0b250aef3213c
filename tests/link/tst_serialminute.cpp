// The fastest stream over a serial line, for long enough to show that nothing gets lost.

#include "link/streampause.h"
#include "seriallink.h"
#include "support/logcapture.h"
#include "support/privatedev.h"

#include <QElapsedTimer>
#include <QtTest>

class TestSerialMinute final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyPacketOfAFastStreamIsStored();
};

void TestSerialMinute::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
}

void TestSerialMinute::everyPacketOfAFastStreamIsStored()
{
    constexpr int startAnswer = 1;
    constexpr int rateHz = 500;
    constexpr qint64 streamMs = STREAM_SECONDS * qint64(1000);
    emulator::ControllerOptions options;
    options.baudRate = 921600;
    EmulatedSerialLink one(options, Connection::defaultTimeoutMs);
    one.client.init(one.name, options.baudRate);
    QVERIFY(one.link.connectAndIdentify());

    const LogCapture log;
    QElapsedTimer time;
    time.start();
    QCOMPARE(startStreamAtRate(one.client, rateHz), StreamStart::Runs);
    quint64 taken = 0;
    MeasureSample sample;
    const auto takeAll = [&] {
        while (one.client.takeLiveSample(sample) != 0)
            ++taken;
    };
    while (time.elapsed() < streamMs) {
        takeAll();
        QThread::msleep(10);
    }
    one.client.stopStream();
    takeAll();

    QVERIFY(!one.client.isStreaming());
    QVERIFY2(log.lines().filter("skipped").isEmpty(), qPrintable(log.lines().join('\n')));
    // What the machine's own stalls have left out is accounted for by the controller.
    const qint64 sent = one.controller.packetsSent();
    QVERIFY(sent + one.controller.packetsLost() >= streamMs * rateHz / 1000);
    QCOMPARE(qint64(one.client.samplesStored()), sent - startAnswer);
    QCOMPARE(taken, one.client.samplesStored());
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QCoreApplication application(argc, argv);
    TestSerialMinute test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serialminute.moc"
