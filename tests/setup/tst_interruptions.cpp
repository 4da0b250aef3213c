// What comes in the middle of a flow: while it waits it takes events, and these can be clicks, the
// loss of a link, or the end of the window.

#include "dialogbench.h"
#include "emulator/emulatorhost.h"
#include "flowtools.h"
#include "records.h"
#include "support/logcapture.h"
#include "support/pointermoves.h"

#include <QtTest>

using emulator::ControllerHandle;
using emulator::EmulatorHost;
using flowtools::buttonOf;
using flowtools::stored;
using records::file;
using records::quietTcp;
using widgettest::click;
using widgettest::named;

class TestInterruptions final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // Clicks.
    void inputWaitsUntilALoadIsOver();
    void aSecondConnectMakesOneConnection();
    void aConnectDuringALoadIsKeptBesideTheLoaded();
    void aDeletionDuringALoadTakesItsOwnRecord();
    void aDeletionWhileALoadClosesDoesNoHarm();
    void aDeletionWhileAnotherIsDeletedTakesItsOwn();

    // The end.
    void closingAllInTheMiddleOfItDoesNoHarm();
    void aLoadEndsWhenTheWindowLeaves_data();
    void aLoadEndsWhenTheWindowLeaves();
    void aConnectionIsDroppedWhenTheWindowLeaves();

    // The loss of a link.
    void aLinkLostBeforeItsRegistrationShowsInTheLine_data();
    void aLinkLostBeforeItsRegistrationShowsInTheLine();

private:
    void load(const QList<ConnectionSettings>& list);
    /// Does something with the next events after a system is about to be connected.
    void whenConnecting(std::function<void()> act);
    /// The window is closed.
    void leave();
    QStringList registered() const;
    QStringList saved() const;
    bool deleteLine(int index) const;
    ConnectionSettings absent(const QString& label);

    std::unique_ptr<EmulatorHost> host;
    std::unique_ptr<DialogBench> bench;
};

void TestInterruptions::init()
{
    host = std::make_unique<EmulatorHost>();
    bench = std::make_unique<DialogBench>();
    bench->showWide();
}

void TestInterruptions::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    host.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestInterruptions::load(const QList<ConnectionSettings>& list)
{
    bench->put(bench->defaultFile(), file(list));
    bench->dialog.loadConnection(QString());
}

void TestInterruptions::whenConnecting(std::function<void()> act)
{
    connect(&bench->dialog, &SettingsDialog::connectingTo, &bench->dialog, [this, act] {
        disconnect(&bench->dialog, &SettingsDialog::connectingTo, nullptr, nullptr);
        QTimer::singleShot(0, &bench->dialog, act);
    });
}

void TestInterruptions::leave()
{
    bench->registry.leaving = true;
    bench->dialog.closeAllConnections();
}

/// Labels of the registered connections, in the order of the registry.
QStringList TestInterruptions::registered() const
{
    QStringList labels;
    for (const auto& connection : bench->registry.connections)
        labels.append(connection->label());
    return labels;
}

/// Labels of the records, in their order.
QStringList TestInterruptions::saved() const
{
    bench->child<QPushButton>("saveConnectionButton").click();
    return records::labelsIn(bench->contentOf(bench->defaultFile()));
}

bool TestInterruptions::deleteLine(int index) const
{
    // A line that came with these events gets its place with later ones.
    bench->child<QListWidget>("listWidgetTcp").doItemsLayout();
    return click(named<QPushButton>(*bench->tcpLines().at(index), "deleteButton"));
}

/// A stored system whose controller is switched off.
ConnectionSettings TestInterruptions::absent(const QString& label)
{
    ControllerHandle gone = host->addTcp({}, "127.0.0.3");
    const ConnectionSettings record = stored(gone, label);
    gone.stopListening();
    return record;
}

void TestInterruptions::inputWaitsUntilALoadIsOver()
{
    const PointerMoves moves(bench->dialog);
    bool isMoved = false;
    whenConnecting([&] {
        moves.move();
        isMoved = true;
    });
    load({stored(host->addTcp(), "a")});
    QVERIFY(isMoved);
    QCOMPARE(moves.count(), 0);
    QTRY_COMPARE(moves.count(), 1);
}

void TestInterruptions::aSecondConnectMakesOneConnection()
{
    const ControllerHandle controller = host->addTcp();
    bench->fillTcp(controller.address(), QString::number(controller.port()), "a");
    auto& button = bench->child<QPushButton>("connectTcpButton");
    int clicks = 0;
    QTimer::singleShot(0, &bench->dialog, [&] { clicks += click(button); });
    const LogCapture log;
    // Not by the window, whose events would let the timer come first.
    button.click();
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList("a"));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(controller.commands(), flowtools::framesOfAConnect("a"));
    QCOMPARE(log.lines().filter("warning: "), QStringList());
    QCOMPARE(saved(), registered());
}

void TestInterruptions::aConnectDuringALoadIsKeptBesideTheLoaded()
{
    const ControllerHandle controller = host->addTcp();
    bench->fillTcp(controller.address(), QString::number(controller.port()), "by_hand");
    int clicks = 0;
    whenConnecting([&] { clicks += click(bench->child<QPushButton>("connectTcpButton")); });
    load({quietTcp("AB000000001", "127.0.0.77", "first"), absent("gone"),
          quietTcp("CD000000002", "127.0.0.78", "last")});
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList({"first", "gone", "last", "by_hand"}));
    QCOMPARE(bench->tcpLines().size(), 4);
    QCOMPARE(saved(), registered());
}

void TestInterruptions::aDeletionDuringALoadTakesItsOwnRecord()
{
    int clicks = 0;
    whenConnecting([&] { clicks += deleteLine(0); });
    load({quietTcp("AB000000001", "127.0.0.77", "first"), absent("gone"),
          quietTcp("CD000000002", "127.0.0.78", "last")});
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList({"gone", "last"}));
    QCOMPARE(bench->tcpLines().size(), 2);
    QCOMPARE(saved(), registered());
}

void TestInterruptions::aDeletionWhileALoadClosesDoesNoHarm()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b")});
    bench->put(bench->path("other.xml"), file({quietTcp("EF000000003", "127.0.0.79", "c")}));
    int clicks = 0;
    bench->registry.whenClosing = [&] {
        bench->registry.whenClosing = nullptr;
        QTimer::singleShot(0, &bench->dialog, [&] { clicks += deleteLine(0); });
    };
    bench->chooseFile(bench->path("other.xml"));
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList("c"));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(saved(), registered());
}

void TestInterruptions::aDeletionWhileAnotherIsDeletedTakesItsOwn()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b"),
          quietTcp("EF000000003", "127.0.0.79", "c")});
    int clicks = 0;
    bench->registry.whenClosing = [&] {
        bench->registry.whenClosing = nullptr;
        QTimer::singleShot(0, &bench->dialog, [&] { clicks += deleteLine(1); });
    };
    QVERIFY(deleteLine(0));
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList("c"));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->tcpLines().first()->address(), QStringLiteral("127.0.0.79"));
    QCOMPARE(saved(), registered());
}

void TestInterruptions::closingAllInTheMiddleOfItDoesNoHarm()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b")});
    bench->registry.whenClosing = [this] {
        bench->registry.whenClosing = nullptr;
        QTimer::singleShot(0, &bench->dialog, &SettingsDialog::closeAllConnections);
    };
    bench->dialog.closeAllConnections();
    QVERIFY(bench->registry.connections.empty());
    QVERIFY(bench->tcpLines().isEmpty());
    QVERIFY(saved().isEmpty());
}

void TestInterruptions::aLoadEndsWhenTheWindowLeaves_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("while it waits for a system that is not there") << false;
    QTest::newRow("while it connects one") << true;
}

void TestInterruptions::aLoadEndsWhenTheWindowLeaves()
{
    QFETCH(bool, isThere);
    const ControllerHandle controller = host->addTcp();
    const ControllerHandle next = host->addTcp({}, "127.0.0.2");
    whenConnecting([this] { leave(); });
    load({quietTcp("AB000000001", "127.0.0.77", "first"),
          isThere ? stored(controller, "second") : absent("second"), stored(next, "third")});
    QVERIFY(bench->registry.connections.empty());
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77", "close 127.0.0.77"}));
    QVERIFY(next.commands().isEmpty());
    QTRY_VERIFY(!controller.isConnected());
}

void TestInterruptions::aConnectionIsDroppedWhenTheWindowLeaves()
{
    const ControllerHandle controller = host->addTcp();
    bench->fillTcp(controller.address(), QString::number(controller.port()), "a");
    QTimer::singleShot(0, &bench->dialog, [this] { leave(); });
    bench->child<QPushButton>("connectTcpButton").click();
    QVERIFY(bench->registry.leaving);
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->tcpLines().isEmpty());
    QTRY_VERIFY(!controller.isConnected());
}

void TestInterruptions::aLinkLostBeforeItsRegistrationShowsInTheLine_data()
{
    QTest::addColumn<bool>("isStored");
    QTest::newRow("connected by the user") << false;
    QTest::newRow("stored") << true;
}

void TestInterruptions::aLinkLostBeforeItsRegistrationShowsInTheLine()
{
    QFETCH(bool, isStored);
    const ControllerHandle controller = host->addTcp();
    // The registry finds the link dead when it gets it, and says so with the next events.
    bench->registry.whenNew = [&](const Connection& lost) {
        const auto tell = [this, &lost] { bench->dialog.onLinkLost(&lost); };
        QMetaObject::invokeMethod(&bench->dialog, tell, Qt::QueuedConnection);
    };
    if (isStored) {
        load({stored(controller, "a")});
    } else {
        bench->fillTcp(controller.address(), QString::number(controller.port()), "a");
        QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    }
    QCOMPARE(registered(), QStringList("a"));
    QTRY_COMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Reconnect"));
}

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
