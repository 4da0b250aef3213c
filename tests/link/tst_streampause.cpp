// The stream that stops for an exchange and starts again.

#include "link/streampause.h"
#include "support/emulatedlink.h"

#include <QtTest>

Q_DECLARE_METATYPE(StreamStart)
Q_DECLARE_METATYPE(emulator::Faults)

using emulator::Faults;

class TestStreamPause : public QObject
{
    Q_OBJECT

private slots:
    void aLinkThatDoesNotStreamIsLeftAlone();
    void theStreamComesBackAtItsRate();
    void aStreamWithoutARateOfItsOwnTakesThatOfTheCaller_data();
    void aStreamWithoutARateOfItsOwnTakesThatOfTheCaller();
    void whatCameOfTheStartIsTold_data();
    void whatCameOfTheStartIsTold();
    void workIsDoneWhileTheStreamIsStopped();
    void workTellsWhatCameOfTheStart();
    void silenceAndARefusalCountAsFailure_data();
    void silenceAndARefusalCountAsFailure();
};

void TestStreamPause::aLinkThatDoesNotStreamIsLeftAlone()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    StreamPause pause(link.client);
    QCOMPARE(pause.resume(100), StreamStart::NotNeeded);
    QVERIFY(link.controller.commands().isEmpty());
    QVERIFY(!link.client.isStreaming());
}

void TestStreamPause::theStreamComesBackAtItsRate()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream(200));
    link.controller.clearWire();
    StreamPause pause(link.client);
    QVERIFY(!link.client.isStreaming());
    QCOMPARE(pause.resume(100), StreamStart::Runs);
    QVERIFY(link.client.isStreaming());
    QCOMPARE(link.controller.commands(), QByteArrayList({"CLS;", QByteArray("SLS\0\0\0\xC8;", 8)}));
}

void TestStreamPause::aStreamWithoutARateOfItsOwnTakesThatOfTheCaller_data()
{
    QTest::addColumn<int>("callersHz");
    QTest::addColumn<QByteArray>("start");
    QTest::newRow("as it is") << 100 << QByteArray("SLS\0\0\0\x64;", 8);
    QTest::newRow("cut") << 1000 << QByteArray("SLS\0\0\x01\xF4;", 8);
}

void TestStreamPause::aStreamWithoutARateOfItsOwnTakesThatOfTheCaller()
{
    QFETCH(int, callersHz);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    // More than a connection keeps, as at the locked rate of pulsed lasers.
    QVERIFY(link.startStream(1000));
    QCOMPARE(link.client.samplingRate(), -1);
    StreamPause pause(link.client);
    QCOMPARE(pause.resume(callersHz), StreamStart::Runs);
    QTEST(link.controller.commands().last(), "start");
}

void TestStreamPause::whatCameOfTheStartIsTold_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<StreamStart>("start");
    Faults refusing;
    refusing.refuse = {"SLS"};
    QTest::newRow("refused") << refusing << StreamStart::Refused;
    Faults silent;
    silent.silent = {"SLS"};
    QTest::newRow("silent") << silent << StreamStart::NoReply;
    Faults cut;
    cut.shortBytes = {{"SLS", 3}};
    QTest::newRow("cut") << cut << StreamStart::EmptyReply;
}

void TestStreamPause::whatCameOfTheStartIsTold()
{
    QFETCH(Faults, faults);
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    // So slow that no second packet completes a first one that was cut.
    QVERIFY(link.startStream(1));
    StreamPause pause(link.client);
    link.controller.setFaults(faults);
    QTEST(pause.resume(100), "start");
}

void TestStreamPause::workIsDoneWhileTheStreamIsStopped()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream(200));
    link.controller.clearWire();
    bool wasStreaming = true;
    const StreamStart start = onQuietLink(link.client, 100, [&] {
        wasStreaming = link.client.isStreaming();
        link.exchange(&Connection::getStatusFlags);
    });
    QCOMPARE(start, StreamStart::Runs);
    QVERIFY(!wasStreaming);
    QVERIFY(link.client.isStreaming());
    QCOMPARE(link.controller.commands(),
             QByteArrayList({"CLS;", "GSF;", QByteArray("SLS\0\0\0\xC8;", 8)}));
}

void TestStreamPause::workTellsWhatCameOfTheStart()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream(200));
    Faults refusing;
    refusing.refuse = {"SLS"};
    QCOMPARE(onQuietLink(link.client, 100, [&] { link.controller.setFaults(refusing); }),
             StreamStart::Refused);
}

void TestStreamPause::silenceAndARefusalCountAsFailure_data()
{
    QTest::addColumn<StreamStart>("start");
    QTest::addColumn<bool>("failed");
    QTest::newRow("not needed") << StreamStart::NotNeeded << false;
    QTest::newRow("runs") << StreamStart::Runs << false;
    QTest::newRow("empty reply") << StreamStart::EmptyReply << false;
    QTest::newRow("no reply") << StreamStart::NoReply << true;
    QTest::newRow("refused") << StreamStart::Refused << true;
}

void TestStreamPause::silenceAndARefusalCountAsFailure()
{
    QFETCH(StreamStart, start);
    QTEST(hasFailed(start), "failed");
}

QTEST_GUILESS_MAIN(TestStreamPause)
#include "tst_streampause.moc"
