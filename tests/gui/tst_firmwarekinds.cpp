// The window with controllers of every firmware kind: connected, streaming, stopped.

#include "dialogue.h"
#include "link/connection.h"
#include "plots/genericplot.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QtTest>

class TestFirmwareKinds final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void everyKindIsKnownStreamsAndStops_data();
    void everyKindIsKnownStreamsAndStops();
};

void TestFirmwareKinds::everyKindIsKnownStreamsAndStops_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("triggerCapable");
    QTest::addColumn<QString>("start");
    const QString rated = startCommand(100);
    const QString common = sent("SGS", QByteArray("\0\0\0\x64;", 5));
    QTest::newRow("without flags in the stream") << 10 << false << false << rated;
    QTest::newRow("with flags in the stream") << 11 << false << false << rated;
    QTest::newRow("with settable sensitivity") << 31 << false << false << rated;
    QTest::newRow("VM") << 40 << true << false << common;
    QTest::newRow("trigger capable") << 40 << false << true << rated;
}

void TestFirmwareKinds::everyKindIsKnownStreamsAndStops()
{
    QFETCH(int, firmware);
    QFETCH(bool, vm);
    QFETCH(bool, triggerCapable);
    QFETCH(QString, start);
    emulator::ControllerOptions options;
    options.firmware = firmware;
    options.vm = vm;
    options.triggerCapable = triggerCapable;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    QCOMPARE(fixture.connection().firmwareVersion(), firmware);
    QCOMPARE(fixture.connection().vmFirmware(), vm);
    QCOMPARE(fixture.connection().triggerCapable(), triggerCapable);

    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(!pointsOf(fixture.pointingPlot(1), 0).isEmpty());
    QCOMPARE(dialogueWithoutPolls(fixture.controller()), QStringList({start, packets()}));

    fixture.controller().clearWire();
    QVERIFY(fixture.clickAction("startAction"));
    QStringList stop = dialogueWithoutPolls(fixture.controller());
    stop.removeAll(packets());
    QCOMPARE(stop, QStringList({sent("CLS"), accepted()}));
    QVERIFY(!fixture.connection().isStreaming());
}

QTEST_MAIN(TestFirmwareKinds)
#include "tst_firmwarekinds.moc"
