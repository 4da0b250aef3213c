// The connect flows over real sockets, against emulated controllers.

#include "dialogbench.h"
#include "emulator/emulatorhost.h"
#include "flowtools.h"
#include "records.h"
#include "setup/setupdocument.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QtTest>

#include <array>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

Q_DECLARE_METATYPE(emulator::ControllerOptions)
Q_DECLARE_METATYPE(LinkState)

using emulator::ControllerHandle;
using emulator::ControllerOptions;
using emulator::EmulatorHost;
using flowtools::buttonOf;
using flowtools::framesOfAConnect;
using flowtools::stored;
using records::file;
using widgettest::click;
using widgettest::named;

namespace {

/// Listens with a queue that is full: whoever connects waits until it is emptied.
class FullListener final
{
public:
    FullListener()
    {
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof place;
        listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        auto* address = reinterpret_cast<sockaddr*>(&place);
        if (bind(listener, address, length) != 0 || listen(listener, 0) != 0
            || getsockname(listener, address, &length) != 0)
            qFatal("Can not listen");
        for (int& waiting : clients) {
            waiting = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            connect(waiting, address, length);
            QTest::qWait(20);
        }
    }
    ~FullListener()
    {
        for (const int descriptor : {listener, clients[0], clients[1]})
            close(descriptor);
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;

    int port() const { return ntohs(place.sin_port); }

    void takeAll() const
    {
        for (int taken = accept(listener, nullptr, nullptr); taken >= 0;
             taken = accept(listener, nullptr, nullptr))
            close(taken);
    }

private:
    sockaddr_in place{};
    int listener = -1;
    std::array<int, 2> clients{};
};

} // namespace

class TestFlows final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // The user connects.
    void connectingSendsExactlyTheseBytes();
    void aConnectedControllerIsKept();
    void theControllersKindIsTakenFromItsIdentification_data();
    void theControllersKindIsTakenFromItsIdentification();
    void anEmptyPortIs2000AtFirst();
    void anEmptyPortIsTheLastOneLater();
    void aLongLabelReachesTheControllerCut();
    void aKnownControllerGetsItsDetectorsAgain();
    void nobodyThereLeavesNoTrace();
    void aControllerThatFailsLeavesNoTrace_data();
    void aControllerThatFailsLeavesNoTrace();
    void anIdentificationThatCanNotBeStoredIsNone();
    void connectingWorksWithTheRealWaits();

    // The stored systems.
    void autoConnectSendsExactlyTheseBytes();
    void autoConnectTellsWhatItDoes();
    void loadingSaysWhomItConnects();
    void anotherControllerIsListedButNotConnected();
    void aSilentSystemIsListedAndItsThreadEnded_data();
    void aSilentSystemIsListedAndItsThreadEnded();
    void theOthersComeUpAllTheSame();
    void triggerModeFollowsThePulsedLaser();
    void aSerialSystemThatIsNotThereIsListed_data();
    void aSerialSystemThatIsNotThereIsListed();
    void aLateLinkDoesNotComeUp();
    void loadingWorksWithTheRealWaits();

private:
    void connectTo(const ControllerHandle& controller, const QString& label);
    void load(const QList<ConnectionSettings>& list);

    std::unique_ptr<EmulatorHost> host;
    std::unique_ptr<DialogBench> bench;
};

void TestFlows::init()
{
    host = std::make_unique<EmulatorHost>();
    bench = std::make_unique<DialogBench>();
}

void TestFlows::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    host.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestFlows::connectTo(const ControllerHandle& controller, const QString& label)
{
    if (!bench->dialog.isVisible())
        widgettest::show(bench->dialog);
    bench->fillTcp(controller.address(), QString::number(controller.port()), label);
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
}

void TestFlows::load(const QList<ConnectionSettings>& list)
{
    bench->put(bench->defaultFile(), file(list));
    bench->dialog.loadConnection(QString());
}

void TestFlows::connectingSendsExactlyTheseBytes()
{
    const ControllerHandle controller = host->addTcp();
    connectTo(controller, "left_arm");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.commands(), framesOfAConnect("left_arm"));
    QCOMPARE(controller.label(), QByteArray("left_arm").leftJustified(25, ' '));
}

void TestFlows::aConnectedControllerIsKept()
{
    const ControllerHandle controller = host->addTcp();
    connectTo(controller, "left_arm");

    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.1"}));
    const Connection& connection = *bench->registry.connections.front();
    QVERIFY(connection.isConnected());
    QCOMPARE(connection.label(), QStringLiteral("left_arm"));
    QCOMPARE(connection.portOrBaud(), int(controller.port()));
    QVERIFY(!connection.triggerMode());

    const ConnectionSettings record = bench->registry.records.first();
    QCOMPARE(record.type, ConnectionType::Tcp);
    QCOMPARE(record.name.text(), QStringLiteral("127.0.0.1"));
    QCOMPARE(record.id.text(), controller.id());
    QCOMPARE(record.label.text(), QStringLiteral("left_arm"));
    QCOMPARE(record.baudRateOrPort, int(controller.port()));
    QVERIFY(flowtools::isFresh(record));

    QCOMPARE(bench->tcpLines().size(), 1);
    const ConnectionWidget& line = *bench->tcpLines().first();
    QCOMPARE(line.number(), controller.id());
    QCOMPARE(named<QLineEdit>(line, "lineEdit").text(), QStringLiteral("left_arm"));
    QCOMPARE(buttonOf(line), QStringLiteral("Disconnect"));
    QVERIFY(named<QCheckBox>(line, "checkBoxAutoConnect").isChecked());
    QVERIFY(bench->serialLines().isEmpty());
    QCOMPARE(bench->child<QLineEdit>("labelTcpEdit").text(), QString());
    QCOMPARE(bench->child<QLineEdit>("addressTcpEdit").text(), QString());
    QVERIFY(bench->child<QLabel>("infoLabel2").isVisible());

    // The first one is known now.
    connectTo(controller, "again");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection already exists."));
    QCOMPARE(bench->registry.calls.size(), 1);
}

void TestFlows::theControllersKindIsTakenFromItsIdentification_data()
{
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("trigger");
    QTest::newRow("plain") << 40 << false << false;
    QTest::newRow("old") << 9 << false << false;
    QTest::newRow("VM") << 12 << true << false;
    QTest::newRow("trigger") << 33 << false << true;
}

void TestFlows::theControllersKindIsTakenFromItsIdentification()
{
    QFETCH(int, firmware);
    QFETCH(bool, vm);
    QFETCH(bool, trigger);
    ControllerOptions options;
    options.firmware = firmware;
    options.vm = vm;
    options.triggerCapable = trigger;
    const ControllerHandle byHand = host->addTcp(options);
    const ControllerHandle loaded = host->addTcp(options, "127.0.0.2");
    connectTo(byHand, "a");
    load({stored(loaded, "b")});

    QCOMPARE(bench->registry.connections.size(), std::size_t(2));
    for (const auto& connection : bench->registry.connections) {
        QCOMPARE(connection->firmwareVersion(), firmware);
        QCOMPARE(connection->vmFirmware(), vm);
        QCOMPARE(connection->triggerCapable(), trigger);
    }
}

void TestFlows::anEmptyPortIs2000AtFirst()
{
    // Some other test can hold the port of this address: the whole loopback net is ours.
    const ControllerHandle controller = host->addTcp({}, "127.12.34.56", 2000);
    QVERIFY(controller.isValid());
    widgettest::show(bench->dialog);
    bench->fillTcp("127.12.34.56", "", "a");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connected"));
    QCOMPARE(bench->registry.connections.front()->portOrBaud(), 2000);
}

void TestFlows::anEmptyPortIsTheLastOneLater()
{
    const ControllerHandle first = host->addTcp();
    const ControllerHandle second = host->addTcp({}, "127.0.0.2", first.port());
    QVERIFY(second.isValid());
    connectTo(first, "a");
    bench->fillTcp("127.0.0.2", "", "b");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connected"));
    QCOMPARE(second.commands(), framesOfAConnect("b"));
}

void TestFlows::aLongLabelReachesTheControllerCut()
{
    const ControllerHandle controller = host->addTcp();
    const QString label = "a_label_of_thirty_characters_x";
    connectTo(controller, label);
    QCOMPARE(controller.commands().last(), QByteArray("SLAa_label_of_thirty_charact;"));
    QCOMPARE(bench->registry.records.first().label.text(), label);
}

void TestFlows::aKnownControllerGetsItsDetectorsAgain()
{
    const ControllerHandle controller = host->addTcp();
    ConnectionSettings known = stored(controller, "old");
    known.model = {2, 5};
    known.beamDiameter = {7.5, 8.5};
    known.pulsedLaser = true;
    bench->put(bench->defaultFile(), file({known}));

    connectTo(controller, "new");
    const ConnectionSettings record = bench->registry.records.first();
    QCOMPARE(record.model, known.model);
    QCOMPARE(record.beamDiameter, known.beamDiameter);
    QCOMPARE(record.serial.text(), QString::fromLatin1(controller.key()));
    QCOMPARE(record.label.text(), QStringLiteral("new"));
    QVERIFY(bench->registry.connections.front()->triggerMode());
}

void TestFlows::nobodyThereLeavesNoTrace()
{
    QTcpServer gone;
    QVERIFY(gone.listen(QHostAddress::LocalHost));
    const quint16 port = gone.serverPort();
    gone.close();
    widgettest::show(bench->dialog);
    bench->fillTcp("127.0.0.1", QString::number(port), "a");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection couldn't be established"));
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->tcpLines().isEmpty());
    QCOMPARE(bench->child<QLineEdit>("addressTcpEdit").text(), QStringLiteral("127.0.0.1"));
    QCOMPARE(bench->child<QLineEdit>("labelTcpEdit").text(), QStringLiteral("a"));
}

void TestFlows::aControllerThatFailsLeavesNoTrace_data()
{
    QTest::addColumn<ControllerOptions>("options");
    QTest::addColumn<QString>("text");
    const QString unknown = "System identification failed";
    const QString noLink = "Connection couldn't be established";
    for (const flowtools::Failure& failure : flowtools::failures()) {
        ControllerOptions options;
        options.faults = failure.faults;
        QTest::newRow(failure.name) << options << (failure.losesLink ? noLink : unknown);
    }
    ControllerOptions options;
    options.maker = "Abc";
    QTest::newRow("another maker's") << options << unknown;
}

void TestFlows::aControllerThatFailsLeavesNoTrace()
{
    QFETCH(ControllerOptions, options);
    QFETCH(QString, text);
    const ControllerHandle controller = host->addTcp(options);
    connectTo(controller, "a");
    QCOMPARE(bench->tcpInfo(), text);
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->tcpLines().isEmpty());
    QTRY_VERIFY(!controller.isConnected());
    bench->child<QPushButton>("saveConnectionButton").click();
    QVERIFY(!bench->contentOf(bench->defaultFile()).contains("Device_"));
}

void TestFlows::anIdentificationThatCanNotBeStoredIsNone()
{
    // Each of these bytes becomes a character of three bytes, and the key has room for eleven.
    ControllerOptions options;
    options.key = QByteArray(11, '\xff');
    connectTo(host->addTcp(options), "a");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("System identification failed"));
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestFlows::connectingWorksWithTheRealWaits()
{
    bench->useTimeout(Connection::defaultTimeoutMs);
    const ControllerHandle controller = host->addTcp();
    QElapsedTimer timer;
    timer.start();
    connectTo(controller, "a");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.commands(), framesOfAConnect("a"));
    // 300 ms for the link and two stops of 1125 ms.
    QVERIFY2(timer.elapsed() >= 2550, QByteArray::number(timer.elapsed()).constData());
}

void TestFlows::autoConnectSendsExactlyTheseBytes()
{
    const ControllerHandle controller = host->addTcp();
    load({stored(controller, "left")});
    QCOMPARE(controller.commands(), framesOfAConnect("left"));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.1"}));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Connected);
    QCOMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Disconnect"));
    QCOMPARE(bench->registry.connections.front()->label(), QStringLiteral("left"));
}

void TestFlows::autoConnectTellsWhatItDoes()
{
    const ControllerHandle controller = host->addTcp();
    QStringList events;
    connect(&bench->dialog, &SettingsDialog::connectingTo, &bench->dialog,
            [&](const QString& label, const QString& address) {
                events.append("connecting " + label + " " + address);
                QVERIFY(controller.commands().isEmpty());
            });
    connect(&bench->dialog, &SettingsDialog::loadingFinished, &bench->dialog,
            [&] { events.append("finished"); });
    ConnectionSettings quiet = records::tcp("QQ000000001", "quiet");
    quiet.autoConnect = false;
    load({quiet, stored(controller, "left")});
    QCOMPARE(events, QStringList({"connecting left 127.0.0.1", "finished"}));
}

void TestFlows::loadingSaysWhomItConnects()
{
    const ControllerHandle controller = host->addTcp();
    bench->put(bench->path("s.xml"), file({stored(controller, "left")}));
    QString said;
    bool waits = false;
    bench->registry.whenNew = [&](const Connection&) { said = bench->tcpInfo(); };
    connect(&bench->dialog, &SettingsDialog::connectingTo, &bench->dialog, [&] {
        const QCursor* pointer = QGuiApplication::overrideCursor();
        waits = pointer && pointer->shape() == Qt::WaitCursor;
    });
    widgettest::show(bench->dialog);
    bench->chooseFile(bench->path("s.xml"));
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));
    QCOMPARE(said, QStringLiteral("Connecting to left..."));
    QVERIFY(waits);
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading successful"));
}

void TestFlows::anotherControllerIsListedButNotConnected()
{
    const ControllerHandle controller = host->addTcp();
    ConnectionSettings record = stored(controller, "left");
    record.id.set(records::idWithKey("XX000000009"));
    load({record});

    // The other one gets no label.
    QCOMPARE(controller.commands(), QByteArrayList({"CLS;", "CLS;", "GID;"}));
    QTRY_VERIFY(!controller.isConnected());
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.1"}));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Disconnected);
    QVERIFY(!bench->registry.runningWhenNew.first());
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->tcpLines().first()->number(), records::idWithKey("XX000000009"));
    QCOMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Reconnect"));
    QVERIFY(named<QCheckBox>(*bench->tcpLines().first(), "checkBoxAutoConnect").isChecked());
}

void TestFlows::aSilentSystemIsListedAndItsThreadEnded_data()
{
    QTest::addColumn<ControllerOptions>("options");
    QTest::addColumn<bool>("listens");
    QTest::newRow("nobody there") << ControllerOptions() << false;
    for (const flowtools::Failure& failure : flowtools::failures()) {
        ControllerOptions options;
        options.faults = failure.faults;
        QTest::newRow(failure.name) << options << true;
    }
}

void TestFlows::aSilentSystemIsListedAndItsThreadEnded()
{
    QFETCH(ControllerOptions, options);
    QFETCH(bool, listens);
    ControllerHandle controller = host->addTcp(options);
    const ConnectionSettings record = stored(controller, "left");
    if (!listens)
        controller.stopListening();
    bench->put(bench->path("s.xml"), file({record}));
    bench->dialog.loadConnection(bench->path("s.xml"));

    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.1"}));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Disconnected);
    QVERIFY(!bench->registry.runningWhenNew.first());
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Reconnect"));
    // The file was good, whoever answers.
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading successful"));
}

void TestFlows::theOthersComeUpAllTheSame()
{
    const ControllerHandle first = host->addTcp();
    ControllerHandle gone = host->addTcp({}, "127.0.0.2");
    const ControllerHandle last = host->addTcp({}, "127.0.0.3");
    const QList<ConnectionSettings> list{stored(first, "a"), stored(gone, "b"), stored(last, "c")};
    gone.stopListening();
    load(list);
    QCOMPARE(bench->registry.calls,
             QStringList({"new 127.0.0.1", "new 127.0.0.2", "new 127.0.0.3"}));
    QCOMPARE(buttonOf(*bench->tcpLines().at(0)), QStringLiteral("Disconnect"));
    QCOMPARE(buttonOf(*bench->tcpLines().at(1)), QStringLiteral("Reconnect"));
    QCOMPARE(buttonOf(*bench->tcpLines().at(2)), QStringLiteral("Disconnect"));
    QCOMPARE(last.commands(), framesOfAConnect("c"));
}

void TestFlows::triggerModeFollowsThePulsedLaser()
{
    const ControllerHandle plain = host->addTcp();
    const ControllerHandle pulsed = host->addTcp({}, "127.0.0.2");
    ConnectionSettings record = stored(pulsed, "b");
    record.pulsedLaser = true;
    load({stored(plain, "a"), record});
    QVERIFY(!bench->registry.connections.at(0)->triggerMode());
    QVERIFY(bench->registry.connections.at(1)->triggerMode());
}

void TestFlows::aSerialSystemThatIsNotThereIsListed_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<LinkState>("state");
    QTest::newRow("no such port") << "ttyUSB987" << LinkState::Disconnected;
    QTest::newRow("not the name of a port") << "pts/987" << LinkState::NotConnected;
    QTest::newRow("no name") << "" << LinkState::NotConnected;
}

void TestFlows::aSerialSystemThatIsNotThereIsListed()
{
    QFETCH(QString, port);
    QFETCH(LinkState, state);
    ConnectionSettings record = records::serial("SS000000001", "gone");
    record.name.set(port);
    record.autoConnect = true;
    // So long that a wait for a reply can not be taken for none.
    constexpr int longTimeoutMs = 20000;
    bench->useTimeout(longTimeoutMs);
    QElapsedTimer timer;
    timer.start();
    load({record});
    QVERIFY(timer.elapsed() < longTimeoutMs);
    QCOMPARE(bench->registry.calls, QStringList({"new " + port}));
    QCOMPARE(bench->registry.statesWhenNew.first(), state);
    QVERIFY(!bench->registry.runningWhenNew.first());
    QCOMPARE(bench->serialLines().size(), 1);
    QCOMPARE(buttonOf(*bench->serialLines().first()), QStringLiteral("Reconnect"));
}

void TestFlows::aLateLinkDoesNotComeUp()
{
    FullListener listener;
    ConnectionSettings record = records::tcp("LL000000001", "late");
    record.name.set(QStringLiteral("127.0.0.1"));
    record.baudRateOrPort = listener.port();
    bench->useTimeout(5000);
    load({record});
    QVERIFY(!bench->registry.runningWhenNew.first());
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Disconnected);

    // The system repeats an attempt after a second: a thread that still ran would get its link.
    listener.takeAll();
    QTest::qWait(1500);
    QVERIFY(!bench->registry.connections.front()->isConnected());
}

void TestFlows::loadingWorksWithTheRealWaits()
{
    bench->useTimeout(Connection::defaultTimeoutMs);
    const ControllerHandle controller = host->addTcp();
    QElapsedTimer timer;
    timer.start();
    load({stored(controller, "left")});
    QCOMPARE(controller.commands(), framesOfAConnect("left"));
    QCOMPARE(buttonOf(*bench->tcpLines().first()), QStringLiteral("Disconnect"));
    // Two stops of 1125 ms.
    QVERIFY2(timer.elapsed() >= 2250, QByteArray::number(timer.elapsed()).constData());
}

QTEST_MAIN(TestFlows)
#include "tst_flows.moc"
