// Systems of a setup file that come up side by side: what each controller sees is what it would see
// alone, and what stands on the screen stands in the order of the file.

#include "dialogbench.h"
#include "dialogues.h"
#include "emulator/emulatorhost.h"
#include "flowtools.h"
#include "records.h"

#include <QtTest>

#include <vector>

using dialogues::Dialogue;
using dialogues::dialogueOf;
using dialogues::idleStopMs;
using dialogues::silenceMs;
using dialogues::timeoutMs;
using emulator::ControllerHandle;
using emulator::ControllerOptions;
using emulator::EmulatorHost;
using flowtools::buttonOf;
using flowtools::framesOfAConnect;
using flowtools::stored;
using records::file;

namespace {

ControllerOptions withFaults(const emulator::Faults& faults)
{
    ControllerOptions options;
    options.faults = faults;
    return options;
}

ControllerOptions silent()
{
    emulator::Faults faults;
    faults.silent = {"CLS", "GID"};
    return withFaults(faults);
}

ControllerOptions refusing()
{
    emulator::Faults faults;
    faults.refuse = {"GID"};
    return withFaults(faults);
}

ControllerOptions ofAnotherMaker()
{
    ControllerOptions options;
    options.maker = "Abc";
    return options;
}

} // namespace

class TestSideBySide final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void eachControllerSeesTheSameBytesWithTheSameWaits();
    void linesRecordsAndConnectionsStandInTheOrderOfTheFile();
    void fiftySystemsAreUnderWayBeforeTheFirstWaitsAreOver();
    void controllersThatFailCostTheOthersNothingOnTheWire();
    void systemsWithOneAddressComeUpOneAfterTheOther();
    void theSecondSystemOfOnePlaceFindsWhatTheFirstHasLeft();
    void aSystemWithoutALinkEndsBeforeTheNextOfItsAddress();

    // What comes meanwhile.
    void aConnectWaitsForAllThatComeUp();
    void aDeletionWaitsForAllThatComeUp();
    void aLineThatIsNotRegisteredCanNotBeDisconnected();
    void aLostSystemShowsWhileOthersComeUp();
    void aSystemThatIsLostWhileOthersComeUpIsRegistered();
    void whatComesUpIsDroppedWhenTheWindowLeaves();

private:
    ControllerHandle add(const ControllerOptions& options = {});
    /// Loads all controllers that were added, in their order, as "s0", "s1" and so on.
    void loadAll();
    QStringList registered() const;
    QStringList linesShown() const;
    QStringList saved() const;
    /// Does something in the middle of the load, when each of these controllers got its first
    /// command.
    void whenUnderWay(const std::vector<ControllerHandle>& asked, std::function<void()> act);

    static qint64 timeOf(const ControllerHandle& controller, int index);

    std::unique_ptr<EmulatorHost> host;
    std::unique_ptr<DialogBench> bench;
    std::vector<ControllerHandle> controllers;
    QList<ConnectionSettings> list;
};

void TestSideBySide::init()
{
    host = std::make_unique<EmulatorHost>();
    bench = std::make_unique<DialogBench>();
    controllers.clear();
    list.clear();
}

void TestSideBySide::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    host.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

ControllerHandle TestSideBySide::add(const ControllerOptions& options)
{
    const int number = int(controllers.size());
    controllers.push_back(host->addTcp(options, QStringLiteral("127.0.0.%1").arg(number + 1)));
    list.append(stored(controllers.back(), QStringLiteral("s%1").arg(number)));
    return controllers.back();
}

void TestSideBySide::loadAll()
{
    bench->put(bench->defaultFile(), file(list));
    bench->dialog.loadConnection(QString());
}

/// Labels of the connections, in the order of the registry.
QStringList TestSideBySide::registered() const
{
    QStringList labels;
    for (const auto& connection : bench->registry.connections)
        labels.append(connection->label());
    return labels;
}

QStringList TestSideBySide::linesShown() const
{
    QStringList labels;
    for (const ConnectionWidget* line : bench->tcpLines())
        labels.append(widgettest::named<QLineEdit>(*line, "lineEdit").text());
    return labels;
}

/// Labels of the records, in their order.
QStringList TestSideBySide::saved() const
{
    bench->child<QPushButton>("saveConnectionButton").click();
    return records::labelsIn(bench->contentOf(bench->defaultFile()));
}

void TestSideBySide::eachControllerSeesTheSameBytesWithTheSameWaits()
{
    const ControllerHandle first = add();
    const ControllerHandle mute = add(silent());
    const ControllerHandle unwilling = add(refusing());
    const ControllerHandle foreign = add(ofAnotherMaker());
    add().stopListening();
    const ControllerHandle last = add();
    loadAll();

    for (const ControllerHandle& good : {first, last}) {
        const Dialogue dialogue = dialogueOf(good);
        QCOMPARE(dialogue.commands,
                 framesOfAConnect(good.address() == first.address() ? "s0" : "s5"));
        QVERIFY(dialogue.hasPause(0, idleStopMs));
        QVERIFY(dialogue.hasPause(1, idleStopMs));
    }
    const QByteArrayList withoutLabel{"CLS;", "CLS;", "GID;"};
    QCOMPARE(dialogueOf(mute).commands, withoutLabel);
    QVERIFY(dialogueOf(mute).hasPause(0, silenceMs));
    QVERIFY(dialogueOf(mute).hasPause(1, silenceMs));
    for (const ControllerHandle& answering : {unwilling, foreign}) {
        QCOMPARE(dialogueOf(answering).commands, withoutLabel);
        QVERIFY(dialogueOf(answering).hasPause(0, idleStopMs));
        QVERIFY(dialogueOf(answering).hasPause(1, idleStopMs));
    }
    QCOMPARE(
        bench->registry.statesWhenNew,
        QList<LinkState>({LinkState::Connected, LinkState::Disconnected, LinkState::Disconnected,
                          LinkState::Disconnected, LinkState::Disconnected, LinkState::Connected}));
    QCOMPARE(bench->registry.runningWhenNew, QList<bool>({true, false, false, false, false, true}));
}

void TestSideBySide::linesRecordsAndConnectionsStandInTheOrderOfTheFile()
{
    emulator::Faults late;
    late.lateMs = {{"GID", timeoutMs / 2}};
    add(silent());
    add(withFaults(late));
    add().stopListening();
    add();
    list[3].autoConnect = false;
    add(refusing());
    add();
    loadAll();
    const QStringList labels{"s0", "s1", "s2", "s3", "s4", "s5"};
    QCOMPARE(registered(), labels);
    QCOMPARE(linesShown(), labels);
    QCOMPARE(saved(), labels);
    QStringList buttons;
    for (const ConnectionWidget* line : bench->tcpLines())
        buttons.append(buttonOf(*line));
    QCOMPARE(buttons, QStringList({"Reconnect", "Disconnect", "Reconnect", "Reconnect", "Reconnect",
                                   "Disconnect"}));
}

/// When a controller got its command number `index`, counted from 0.
qint64 TestSideBySide::timeOf(const ControllerHandle& controller, int index)
{
    const Dialogue dialogue = dialogueOf(controller);
    return dialogue.timesNs.at(std::size_t(index));
}

void TestSideBySide::whenUnderWay(const std::vector<ControllerHandle>& asked,
                                  std::function<void()> act)
{
    auto* poll = new QTimer(&bench->dialog);
    poll->start(1);
    connect(poll, &QTimer::timeout, poll, [poll, asked, act] {
        for (const ControllerHandle& each : asked) {
            if (each.commands().isEmpty())
                return;
        }
        poll->stop();
        poll->deleteLater();
        act();
    });
}

void TestSideBySide::fiftySystemsAreUnderWayBeforeTheFirstWaitsAreOver()
{
    constexpr int count = 50;
    bench->useTimeout(Connection::defaultTimeoutMs);
    for (int i = 0; i < count; ++i)
        add();
    loadAll();
    // Between its first stop and this question the first one waits twice.
    const qint64 askedNs = timeOf(controllers.front(), 2);
    int underWay = 0;
    for (const ControllerHandle& each : controllers)
        underWay += timeOf(each, 0) < askedNs ? 1 : 0;
    QCOMPARE(underWay, count);
    QCOMPARE(bench->registry.statesWhenNew.count(LinkState::Connected), count);
    QStringList labels;
    for (int i = 0; i < count; ++i)
        labels.append(QStringLiteral("s%1").arg(i));
    QCOMPARE(registered(), labels);
}

void TestSideBySide::controllersThatFailCostTheOthersNothingOnTheWire()
{
    bench->useTimeout(Connection::defaultTimeoutMs);
    const ControllerHandle mute = add(silent());
    add().stopListening();
    const ControllerHandle unwilling = add(refusing());
    const ControllerHandle good = add();
    loadAll();
    QCOMPARE(good.commands(), framesOfAConnect("s3"));
    // It has its label before the silent one is even asked who it is.
    QVERIFY(timeOf(good, 3) < timeOf(mute, 2));
    QVERIFY(timeOf(good, 0) < timeOf(unwilling, 1));
    QCOMPARE(bench->registry.statesWhenNew.last(), LinkState::Connected);
}

void TestSideBySide::systemsWithOneAddressComeUpOneAfterTheOther()
{
    const ControllerHandle first = add();
    const ControllerHandle between = add();
    controllers.push_back(host->addTcp({}, first.address()));
    list.append(stored(controllers.back(), "s2"));
    const ControllerHandle second = controllers.back();
    bool isFirstKept = false;
    connect(&bench->dialog, &SettingsDialog::connectingTo, &bench->dialog,
            [&](const QString& label) {
                if (label == "s2")
                    isFirstKept = registered().contains("s0");
            });
    loadAll();
    QVERIFY(isFirstKept);
    QVERIFY(timeOf(first, 3) < timeOf(second, 0));
    QVERIFY(timeOf(between, 0) < timeOf(first, 2));
    QCOMPARE(registered(), QStringList({"s0", "s1", "s2"}));
}

/// Two controllers are used in turn on one port, and the second one of the file is there.
void TestSideBySide::theSecondSystemOfOnePlaceFindsWhatTheFirstHasLeft()
{
    const ControllerHandle present = add();
    list.append(stored(present, "s1"));
    list[0].id.set(records::idWithKey("XX000000009"));
    loadAll();
    QCOMPARE(present.commands(), QByteArrayList({"CLS;", "CLS;", "GID;"}) + framesOfAConnect("s1"));
    QCOMPARE(bench->registry.statesWhenNew,
             QList<LinkState>({LinkState::Disconnected, LinkState::Connected}));
}

void TestSideBySide::aSystemWithoutALinkEndsBeforeTheNextOfItsAddress()
{
    add().stopListening();
    controllers.push_back(host->addTcp({}, controllers.front().address()));
    list.append(stored(controllers.back(), "s1"));
    QList<bool> runs;
    connect(&bench->dialog, &SettingsDialog::connectingTo, &bench->dialog, [&] {
        for (const auto& connection : bench->registry.connections)
            runs.append(connection->isRunning());
    });
    loadAll();
    QCOMPARE(runs, QList<bool>{false});
    QCOMPARE(bench->registry.statesWhenNew,
             QList<LinkState>({LinkState::Disconnected, LinkState::Connected}));
}

void TestSideBySide::aConnectWaitsForAllThatComeUp()
{
    const std::vector<ControllerHandle> loaded{add(), add()};
    const ControllerHandle byHand = host->addTcp({}, "127.0.0.9");
    bench->showWide();
    bench->fillTcp(byHand.address(), QString::number(byHand.port()), "by_hand");
    int clicks = 0;
    whenUnderWay(loaded, [&] {
        clicks += widgettest::click(bench->child<QPushButton>("connectTcpButton"));
    });
    loadAll();
    QCOMPARE(clicks, 1);
    QCOMPARE(registered(), QStringList({"s0", "s1", "by_hand"}));
    for (const ControllerHandle& each : loaded)
        QVERIFY(timeOf(each, 3) < timeOf(byHand, 0));
    QCOMPARE(saved(), registered());
}

void TestSideBySide::aDeletionWaitsForAllThatComeUp()
{
    const std::vector<ControllerHandle> loaded{add(), add()};
    bench->showWide();
    int clicks = 0;
    QStringList callsThen;
    whenUnderWay(loaded, [&] {
        bench->child<QListWidget>("listWidgetTcp").doItemsLayout();
        const ConnectionWidget& line = *bench->tcpLines().first();
        clicks += widgettest::click(widgettest::named<QPushButton>(line, "deleteButton"));
        callsThen = bench->registry.calls;
    });
    loadAll();
    QCOMPARE(clicks, 1);
    QCOMPARE(callsThen, QStringList());
    QCOMPARE(bench->registry.calls,
             QStringList({"new 127.0.0.1", "new 127.0.0.2", "close 127.0.0.1"}));
    QCOMPARE(linesShown(), QStringList("s1"));
    QCOMPARE(saved(), QStringList("s1"));
    QCOMPARE(loaded.front().commands(), framesOfAConnect("s0"));
}

void TestSideBySide::aLineThatIsNotRegisteredCanNotBeDisconnected()
{
    const std::vector<ControllerHandle> loaded{add(), add()};
    bench->registry.disconnects = false;
    QString said;
    whenUnderWay(loaded, [&] {
        bench->dialog.on_WidgetDisconnect(loaded.front().address());
        said = bench->tcpInfo();
    });
    loadAll();
    QCOMPARE(said, QStringLiteral("Could not disconnect."));
    QCOMPARE(bench->registry.disconnected, QList<int>{-1});
    QCOMPARE(bench->registry.statesWhenNew.count(LinkState::Connected), 2);
}

void TestSideBySide::aLostSystemShowsWhileOthersComeUp()
{
    const ControllerHandle first = add();
    const ControllerHandle mute = add(silent());
    bench->registry.whenNew = [&](const Connection& connection) {
        if (connection.address() != first.address())
            return;
        // The registry hears of a loss with later events, while the silent one is waited for.
        const auto tell = [this, lost = &connection] { bench->dialog.onLinkLost(lost); };
        QMetaObject::invokeMethod(&bench->dialog, tell, Qt::QueuedConnection);
    };
    QStringList registeredThen;
    bench->registry.whenDisconnecting = [&] { registeredThen = registered(); };
    loadAll();
    QCOMPARE(registeredThen, QStringList("s0"));
    QCOMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Reconnect"));
    QCOMPARE(mute.commands().size(), 3);
}

void TestSideBySide::aSystemThatIsLostWhileOthersComeUpIsRegistered()
{
    add(silent());
    ControllerHandle lost = add();
    connect(&bench->dialog, &SettingsDialog::systemUp, &bench->dialog,
            [&] { lost.closeConnection(); });
    loadAll();
    // It waits for the one before it with a link that is gone; the registry finds that out.
    QCOMPARE(registered(), QStringList({"s0", "s1"}));
    QTRY_VERIFY(!bench->registry.connections.back()->isRunning());
    QCOMPARE(lost.commands(), framesOfAConnect("s1"));
}

void TestSideBySide::whatComesUpIsDroppedWhenTheWindowLeaves()
{
    const std::vector<ControllerHandle> loaded{add(), add(silent()), add()};
    whenUnderWay(loaded, [this] {
        bench->registry.leaving = true;
        bench->dialog.closeAllConnections();
    });
    loadAll();
    QVERIFY(bench->registry.calls.isEmpty());
    for (const ControllerHandle& each : loaded) {
        QTRY_VERIFY(!each.isConnected());
        QCOMPARE(each.commands(), QByteArrayList{"CLS;"});
    }
}

QTEST_MAIN(TestSideBySide)
#include "tst_sidebyside.moc"
