// One test per flow: the exact bytes and their order, both ways.

#include "dialogue.h"
#include "link/connection.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/overviewwidget.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

namespace {

/// Row 0 is the header.
OverviewWidget& overviewRow(const WindowFixture& fixture, int number)
{
    auto& list =
        in<QListWidget>(*fixture.window().findChild<ConnectionOverviewDialog*>(), "listWidget");
    return *qobject_cast<OverviewWidget*>(list.itemWidget(list.item(number + 1)));
}

QStringList identificationWith(const emulator::ControllerHandle& controller)
{
    return {sent("CLS"), accepted(),  sent("CLS"),
            accepted(),  sent("GID"), got(controller.idReply())};
}

/// Nanoseconds between a command and the first status request behind it; 0 if there is none.
qint64 pauseBehind(const char* mnemonic, const emulator::ControllerHandle& controller)
{
    const QVector<emulator::WireEvent> wire = controller.wire();
    qint64 commandNs = 0;
    for (const emulator::WireEvent& event : wire) {
        if (event.bytes.startsWith(mnemonic))
            commandNs = event.timeNs;
        if (commandNs > 0 && event.bytes == "GSF;")
            return event.timeNs - commandNs;
    }
    return 0;
}

} // namespace

class TestWire : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void autoconnectAtStart();
    void manualTcpConnect();
    void startStreamsAtTheRateOfTheToolBar();
    void stopEndsTheStream();
    void clearSendsNothing();
    void stageIsSwitched_data();
    void stageIsSwitched();
    void oldFirmwareIsAskedForItsStatusAfterASwitch_data();
    void oldFirmwareIsAskedForItsStatusAfterASwitch();
    void systemIsHiddenAndShownWhileRunning();
    void systemIsDeletedWhileRunning();
    void disconnectedSystemIsReconnected();
    void otherControllerAtTheSameAddressIsRejected();
    void otherControllerAtStartStaysUnconnected();
};

void TestWire::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestWire::autoconnectAtStart()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.writeSetupFile({fixture.record()}));
    QVERIFY(fixture.open());
    QCOMPARE(dialogueWithoutPolls(fixture.controller()),
             identificationWith(fixture.controller())
                 + QStringList({labelCommand("System_1"), accepted()}));
    QVERIFY(fixture.connection().isConnected());
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
}

void TestWire::manualTcpConnect()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(connectByDialog(fixture, 0, "bench_2"));
    QCOMPARE(infoText(fixture), QStringLiteral("Connected"));
    QCOMPARE(dialogueWithoutPolls(fixture.controller()),
             identificationWith(fixture.controller())
                 + QStringList({labelCommand("bench_2"), accepted()}));
}

void TestWire::startStreamsAtTheRateOfTheToolBar()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "430"));
    fixture.controller().clearWire();
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(fixture.controller().packetsSent() > 10);
    QCOMPARE(dialogueWithoutPolls(fixture.controller()),
             QStringList({startCommand(430), packets()}));
}

void TestWire::stopEndsTheStream()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(fixture.controller().packetsSent() > 10);
    fixture.controller().clearWire();
    QVERIFY(fixture.clickAction("startAction"));
    QStringList lines = dialogueWithoutPolls(fixture.controller());
    if (lines.first() == packets())
        lines.removeFirst();
    QCOMPARE(lines, QStringList({sent("CLS"), packets(), accepted()}));
}

void TestWire::clearSendsNothing()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.controller().clearWire();
    QVERIFY(fixture.clickAction("clearAction"));
    QTRY_VERIFY(!fixture.controller().wire().isEmpty());
    QCOMPARE(dialogue(fixture.controller()), QStringList({packets()}));
}

void TestWire::stageIsSwitched_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<bool>("streaming");
    for (const int stage : {1, 2}) {
        QTest::addRow("stage %d, idle", stage) << stage << false;
        QTest::addRow("stage %d, streaming", stage) << stage << true;
    }
}

void TestWire::stageIsSwitched()
{
    QFETCH(int, stage);
    QFETCH(bool, streaming);
    emulator::ControllerOptions options;
    options.firmware = 11;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    if (streaming)
        QVERIFY(fixture.clickAction("startAction"));
    const QByteArray button = "push_Stab" + QByteArray::number(stage);

    for (const char* mnemonic : {"SEA", "CEA"}) {
        if (streaming) {
            const qint64 sentBefore = fixture.controller().packetsSent();
            QTRY_VERIFY(fixture.controller().packetsSent() > sentBefore + 5);
        }
        fixture.controller().clearWire();
        QVERIFY(fixture.click(button.constData()));

        QStringList expected{stageCommand(mnemonic, stage), accepted()};
        if (streaming)
            expected = QStringList({sent("CLS"), packets(), accepted()}) + expected
                       + QStringList({startCommand(100), packets()});
        QStringList lines = dialogueWithoutPolls(fixture.controller());
        if (!lines.isEmpty() && lines.first() == packets())
            lines.removeFirst();
        QCOMPARE(lines, expected);
        QCOMPARE(fixture.controller().stageOn(stage), QByteArray(mnemonic) == "SEA");
    }
}

void TestWire::oldFirmwareIsAskedForItsStatusAfterASwitch_data()
{
    stageIsSwitched_data();
}

void TestWire::oldFirmwareIsAskedForItsStatusAfterASwitch()
{
    QFETCH(int, stage);
    QFETCH(bool, streaming);
    emulator::ControllerOptions options;
    options.firmware = 10;
    WindowFixture fixture(1, options);
    QVERIFY(fixture.openWithSystems());
    if (streaming)
        QVERIFY(fixture.clickAction("startAction"));
    const QByteArray button = "push_Stab" + QByteArray::number(stage);
    const int stageBit = stage == 1 ? 3 : 4;

    for (const char* mnemonic : {"SEA", "CEA"}) {
        if (streaming) {
            const qint64 sentBefore = fixture.controller().packetsSent();
            QTRY_VERIFY(fixture.controller().packetsSent() > sentBefore + 5);
        }
        fixture.controller().clearWire();
        QVERIFY(fixture.click(button.constData()));

        const QStringList lines = dialogue(fixture.controller());
        const int at = lines.indexOf(stageCommand(mnemonic, stage));
        QVERIFY(at >= 0);
        QStringList before = lines.mid(0, at);
        before.removeAll(packets());
        QCOMPARE(lines.mid(at + 1, 2), QStringList({accepted(), sent("GSF")}));
        const QByteArray status = QByteArray::fromHex(lines.value(at + 3).mid(2).toLatin1());
        QCOMPARE(status.size(), 4);
        QCOMPARE((status[2] >> stageBit & 1) == 1, mnemonic == QByteArray("SEA"));
        if (streaming) {
            QCOMPARE(before, QStringList({sent("CLS"), accepted()}));
            QCOMPARE(lines.mid(at + 4), QStringList({startCommand(100), packets()}));
        }
        QVERIFY(pauseBehind(mnemonic, fixture.controller()) >= 100 * 1000 * 1000);
    }
}

void TestWire::systemIsHiddenAndShownWhileRunning()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    fixture.find<QAction>("actionConfiguration")->trigger();
    auto& showBox = in<QAbstractButton>(overviewRow(fixture, 1), "showCheckBox");
    QTRY_VERIFY(fixture.controller(1).packetsSent() > 5);
    QTRY_VERIFY(showBox.isEnabled());

    fixture.controller(1).clearWire();
    QVERIFY(user::click(&showBox));
    QTRY_VERIFY(!fixture.connection(1).isStreaming());
    QStringList lines = dialogueWithoutPolls(fixture.controller(1));
    if (lines.first() == packets())
        lines.removeFirst();
    QCOMPARE(lines, QStringList({sent("CLS"), packets(), accepted()}));

    fixture.controller(1).clearWire();
    QVERIFY(user::click(&showBox));
    QTRY_VERIFY(fixture.connection(1).isStreaming());
    QCOMPARE(dialogueWithoutPolls(fixture.controller(1)),
             QStringList({startCommand(100), packets()}));
    QVERIFY(fixture.connection(0).isStreaming());
}

void TestWire::systemIsDeletedWhileRunning()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(fixture.controller().packetsSent() > 5);

    fixture.controller().clearWire();
    QVERIFY(clickInLine(fixture, 0, "deleteButton"));
    QTRY_VERIFY(!fixture.controller().isConnected());
    QStringList lines = dialogueWithoutPolls(fixture.controller());
    if (lines.first() == packets())
        lines.removeFirst();
    QCOMPARE(lines, QStringList({sent("CLS"), packets(), accepted()}));
    QVERIFY(fixture.window().liveConnections().empty());
}

void TestWire::disconnectedSystemIsReconnected()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QTRY_VERIFY(!fixture.controller().isConnected());
    QCOMPARE(lineButtonText(fixture, 0), QStringLiteral("Reconnect"));

    fixture.controller().clearWire();
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QTRY_COMPARE(lineButtonText(fixture, 0), QStringLiteral("Disconnect"));
    QCOMPARE(dialogueWithoutPolls(fixture.controller()), identificationWith(fixture.controller()));
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
}

void TestWire::otherControllerAtTheSameAddressIsRejected()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QTRY_VERIFY(!fixture.controller().isConnected());
    emulator::ControllerOptions other;
    other.key = "OTHERDEVICE";
    fixture.controller().setIdentity(other);

    fixture.controller().clearWire();
    QVERIFY(clickInLine(fixture, 0, "Button"));
    QTRY_COMPARE(infoText(fixture),
                 QStringLiteral("Could not establish connection. Controller ID mismatch."));
    QCOMPARE(dialogueWithoutPolls(fixture.controller()), identificationWith(fixture.controller()));
    QTRY_VERIFY(!fixture.controller().isConnected());
    QVERIFY(!fixture.connection().isConnected());
    QVERIFY(fixture.window().shownConnections().isEmpty());
}

void TestWire::otherControllerAtStartStaysUnconnected()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.writeSetupFile({fixture.record()}));
    emulator::ControllerOptions other;
    other.key = "OTHERDEVICE";
    fixture.controller().setIdentity(other);
    QVERIFY(fixture.open());
    QCOMPARE(dialogueWithoutPolls(fixture.controller()), identificationWith(fixture.controller()));
    QTRY_VERIFY(!fixture.controller().isConnected());
    QVERIFY(!fixture.connection().isRunning());
    QVERIFY(fixture.window().shownConnections().isEmpty());
}

QTEST_MAIN(TestWire)
#include "tst_wire.moc"
