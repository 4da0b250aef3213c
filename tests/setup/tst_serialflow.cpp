// The serial connect flow and the serial systems of a setup file, over pseudo terminals and the
// real search, against emulated controllers.

#include "dialogbench.h"
#include "dialogues.h"
#include "emulator/emulatorhost.h"
#include "flowtools.h"
#include "link/interfacesearch.h"
#include "records.h"
#include "support/logcapture.h"
#include "support/privatedev.h"
#include "support/pseudoport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSerialPort>
#include <QtTest>

#include <vector>

Q_DECLARE_METATYPE(emulator::ControllerOptions)

using dialogues::Dialogue;
using dialogues::dialogueOf;
using emulator::ControllerHandle;
using emulator::ControllerOptions;
using emulator::EmulatorHost;
using flowtools::buttonOf;
using flowtools::framesOfAConnect;
using records::file;
using widgettest::click;
using widgettest::named;

namespace {

const QByteArray toFastRate("SBR\x09;", 5);
const QByteArray toSlowRate("SBR\x01;", 5);

ControllerOptions atRate(int baudRate)
{
    ControllerOptions options;
    options.baudRate = baudRate;
    return options;
}

QString portOf(const ControllerHandle& controller)
{
    return controller.path().mid(int(strlen("/dev/")));
}

/// As a file holds it that was saved when the controller was at another port.
ConnectionSettings stored(const ControllerHandle& controller, const QString& port, int baudRate)
{
    ConnectionSettings record;
    record.type = ConnectionType::Serial;
    record.name.set(port);
    record.baudRateOrPort = baudRate;
    record.id.set(controller.id());
    record.label.set(QStringLiteral("left"));
    record.autoConnect = true;
    return record;
}

/// Lines of the flows, without what connections and search tell of themselves.
QStringList storyOf(const LogCapture& log)
{
    return log.lines().filter(QRegularExpression("^(info|warning): (?!Loading connection)"));
}

} // namespace

class TestSerialFlow final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theSearchOfTheSystemIsTheDefault();
    void aScanOffersWhatItFinds();

    // The user connects.
    void aFoundDeviceIsConnected();
    void aConnectedDeviceIsKept();
    void theFlowTellsItsStory();
    void aKnownControllerGetsItsDetectorsAgain();
    void aLongLabelReachesTheControllerCut();
    void aConnectedDeviceIsNotConnectedAgain();
    void aDeviceThatWasNotFoundIsRefused();
    void whatFailsLeavesNoTrace_data();
    void whatFailsLeavesNoTrace();
    void aPortThatIsGoneCanNotBeConnected();
    void aBusyPortCanNotBeConnected();
    void anUnsuitablePortIsRefused_data();
    void anUnsuitablePortIsRefused();

    // The rate.
    void theRateIsAdjustedBeforeTheFinalConnection_data();
    void theRateIsAdjustedBeforeTheFinalConnection();
    void theAdjustmentClosesItsLink();
    void theFoundRateIsTakenAsItIs();
    void theAdjustedRateIsRemembered();
    void aRateThatCanNotBeAdjustedIsTold_data();
    void aRateThatCanNotBeAdjustedIsTold();
    void theLinkThatIsLeftBehindGoesWithTheDialog();
    void aPortThatIsGoneCanNotBeAdjusted();
    void aSecondConnectInTheMiddleWaits();
    void anAdjustmentIsTheLastThingWhenTheWindowLeaves();
    void adjustingWorksWithTheRealWaits();

    // The stored systems.
    void aStoredSystemConnectsAtTheOtherPort();
    void aStoredSystemConnectsWithoutASearch();
    void anotherControllerAtTheStoredPortIsListedButNotConnected();
    void storedSystemsComeUpSideBySideAsEachDoesAlone();
    void storedSystemsKeepTheOrderOfTheFile();
    void theEndOfAnAdapterIsTold();

private:
    void makeBench();
    ControllerHandle plug(const ControllerOptions& options = {});
    void showSerial();
    void scan();
    void scanUntilFound();
    void connectAs(const QString& label);
    void load(const QList<ConnectionSettings>& list);
    QComboBox& devices() const { return bench->child<QComboBox>("serialPortInfoListBox"); }
    void choose(int baudRate) const;

    std::unique_ptr<EmulatorHost> host;
    std::unique_ptr<DialogBench> bench;
    /// What is plugged in.
    QList<SerialInterface> adapters;
};

void TestSerialFlow::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
    QVERIFY(PseudoPort().isValid());
}

void TestSerialFlow::init()
{
    host = std::make_unique<EmulatorHost>();
    adapters.clear();
    makeBench();
}

void TestSerialFlow::makeBench()
{
    bench.reset();
    bench = std::make_unique<DialogBench>();
    bench->dialog.setInterfaceSearch([this](bool includePseudo, bool anyDevice) {
        return searchInterfaces(includePseudo, anyDevice, [this] { return adapters; });
    });
}

void TestSerialFlow::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    host.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

ControllerHandle TestSerialFlow::plug(const ControllerOptions& options)
{
    const ControllerHandle controller = host->addPty(options, "/dev/" + freePortName());
    adapters.append({portOf(controller), QStringLiteral("Serial adapter"), QStringLiteral("FTDI")});
    return controller;
}

void TestSerialFlow::showSerial()
{
    bench->child<QTabWidget>("tabWidget").setCurrentIndex(0);
    if (!bench->dialog.isVisible())
        widgettest::show(bench->dialog);
}

void TestSerialFlow::scan()
{
    showSerial();
    QVERIFY(click(bench->child<QPushButton>("rescanButton")));
}

/// On a busy machine an answer can take longer than the search waits.
void TestSerialFlow::scanUntilFound()
{
    constexpr int attempts = 5;
    for (int i = 0; i < attempts && devices().count() < adapters.size(); ++i)
        scan();
    QCOMPARE(devices().count(), adapters.size());
}

void TestSerialFlow::choose(int baudRate) const
{
    auto& box = bench->child<QComboBox>("baudrateComboBox");
    box.setCurrentIndex(box.findData(baudRate));
}

void TestSerialFlow::connectAs(const QString& label)
{
    showSerial();
    auto& edit = bench->child<QLineEdit>("serialPortLabel_2");
    edit.clear();
    QTest::keyClicks(&edit, label);
    QVERIFY(click(bench->child<QPushButton>("connectSerialButton")));
}

void TestSerialFlow::load(const QList<ConnectionSettings>& list)
{
    bench->put(bench->defaultFile(), file(list));
    bench->dialog.loadConnection(QString());
}

void TestSerialFlow::theSearchOfTheSystemIsTheDefault()
{
    const QList<SerialInterface> known = availableInterfaces();
    for (const SerialInterface& each : known) {
        if (each.manufacturer == "FTDI")
            QSKIP("This machine has an adapter of its own, which is not the test's to talk to.");
    }
    FakeRegistry registry;
    SettingsDialog dialog(registry, nullptr);
    const LogCapture log;
    named<QPushButton>(dialog, "rescanButton").click();
    QCOMPARE(log.lines().first(), QStringLiteral("info: Searching for serial interfaces"));
    QCOMPARE(log.lines().last(), QStringLiteral("info: Search for controllers completed"));
    QCOMPARE(log.lines().filter("info: Found interface").size(), known.size());
}

void TestSerialFlow::aScanOffersWhatItFinds()
{
    const ControllerHandle slow = plug();
    const ControllerHandle fast = plug(atRate(921600));
    adapters.append({"ttyUSB994", "Other adapter", "ftdi"});
    scan();
    QCOMPARE(devices().count(), 2);
    QCOMPARE(devices().itemText(0), slow.id());
    QCOMPARE(devices().itemText(1), fast.id());

    adapters.clear();
    scan();
    QCOMPARE(devices().count(), 0);
}

void TestSerialFlow::aFoundDeviceIsConnected()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.clearWire();
    connectAs("left_arm");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.commands(), framesOfAConnect("left_arm"));
    QCOMPARE(controller.label(), QByteArray("left_arm").leftJustified(25, ' '));
}

void TestSerialFlow::aConnectedDeviceIsKept()
{
    const ControllerHandle other = plug();
    ControllerHandle controller = plug();
    scanUntilFound();
    devices().setCurrentIndex(1);
    connectAs("left_arm");

    QCOMPARE(bench->registry.calls, QStringList("new " + portOf(controller)));
    const Connection& connection = *bench->registry.connections.front();
    QVERIFY(connection.isConnected());
    QCOMPARE(connection.connectionType(), 0);
    QCOMPARE(connection.label(), QStringLiteral("left_arm"));
    QCOMPARE(connection.portOrBaud(), 115200);
    QVERIFY(!connection.triggerMode());

    const ConnectionSettings record = bench->registry.records.first();
    QCOMPARE(record.type, ConnectionType::Serial);
    QCOMPARE(record.name.text(), portOf(controller));
    QCOMPARE(record.id.text(), controller.id());
    QCOMPARE(record.label.text(), QStringLiteral("left_arm"));
    QCOMPARE(record.baudRateOrPort, 115200);
    QVERIFY(flowtools::isFresh(record));

    QCOMPARE(bench->serialLines().size(), 1);
    const ConnectionWidget& line = *bench->serialLines().first();
    QCOMPARE(line.number(), controller.id());
    QCOMPARE(line.address(), portOf(controller));
    QCOMPARE(buttonOf(line), QStringLiteral("Disconnect"));
    QVERIFY(named<QCheckBox>(line, "checkBoxAutoConnect").isChecked());
    QVERIFY(bench->tcpLines().isEmpty());
    // It is no longer offered, the other one is.
    QCOMPARE(devices().count(), 1);
    QCOMPARE(devices().itemText(0), other.id());
    QCOMPARE(bench->child<QLineEdit>("serialPortLabel_2").text(), QString());
}

void TestSerialFlow::theFlowTellsItsStory()
{
    plug();
    scanUntilFound();
    const LogCapture log;
    connectAs("a");
    QCOMPARE(storyOf(log), QStringList({"info: Trying to connect (serial)", "info: Connecting",
                                        "info: Connected"}));
}

void TestSerialFlow::aKnownControllerGetsItsDetectorsAgain()
{
    ControllerHandle controller = plug();
    ConnectionSettings known = stored(controller, "ttyUSB994", 115200);
    known.model = {2, 5};
    known.beamDiameter = {7.5, 8.5};
    known.pulsedLaser = true;
    bench->put(bench->defaultFile(), file({known}));
    scanUntilFound();
    connectAs("new");
    const ConnectionSettings record = bench->registry.records.first();
    QCOMPARE(record.model, known.model);
    QCOMPARE(record.beamDiameter, known.beamDiameter);
    QVERIFY(bench->registry.connections.front()->triggerMode());
}

void TestSerialFlow::aLongLabelReachesTheControllerCut()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    connectAs("a_label_of_thirty_characters_x");
    QCOMPARE(controller.commands().last(), QByteArray("SLAa_label_of_thirty_charact;"));
    QCOMPARE(bench->registry.records.first().label.text(),
             QStringLiteral("a_label_of_thirty_characters_x"));
}

void TestSerialFlow::aConnectedDeviceIsNotConnectedAgain()
{
    const ControllerHandle first = plug();
    const ControllerHandle second = plug();
    bench->dialog.setInterfaceSearch([&](bool, bool) {
        return QList<FoundInterface>{{first.id(), portOf(first), 115200, 1},
                                     {second.id(), portOf(second), 115200, 1}};
    });
    scan();
    connectAs("a");
    connectAs("b");
    QCOMPARE(bench->registry.calls.size(), 2);
    // Only the last line hides its device from the scan.
    scan();
    QCOMPARE(devices().currentText(), first.id());
    connectAs("c");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connection already created"));
    QCOMPARE(bench->registry.calls.size(), 2);
}

void TestSerialFlow::aDeviceThatWasNotFoundIsRefused()
{
    devices().addItem("somebody");
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Device not found"));
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSerialFlow::whatFailsLeavesNoTrace_data()
{
    QTest::addColumn<ControllerOptions>("options");
    QTest::addColumn<QString>("text");
    const QString unknown = "System identification failed";
    const QString noLink = "Connection could not be established";
    for (const flowtools::Failure& failure : flowtools::failures()) {
        ControllerOptions options;
        options.faults = failure.faults;
        QTest::newRow(failure.name) << options << (failure.losesLink ? noLink : unknown);
    }
    // The search finds it all the same, but a connection is always opened with flow control.
    ControllerOptions options;
    options.hardwareFlowControl = false;
    QTest::newRow("without hardware flow control") << options << unknown;
}

void TestSerialFlow::whatFailsLeavesNoTrace()
{
    QFETCH(ControllerOptions, options);
    QFETCH(QString, text);
    ControllerOptions healthy = options;
    healthy.faults = {};
    ControllerHandle controller = plug(healthy);
    scanUntilFound();
    controller.setFaults(options.faults);
    const LogCapture log;
    connectAs("a");
    QCOMPARE(bench->serialInfo(), text);
    QCOMPARE(log.count("warning: " + text), 1);
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->serialLines().isEmpty());
    QVERIFY(!controller.isConnected());
    // It can be tried again.
    QCOMPARE(devices().count(), 1);
    QCOMPARE(bench->child<QLineEdit>("serialPortLabel_2").text(), QStringLiteral("a"));
    bench->child<QPushButton>("saveConnectionButton").click();
    QVERIFY(!bench->contentOf(bench->defaultFile()).contains("Device_"));
}

void TestSerialFlow::aPortThatIsGoneCanNotBeConnected()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.unplug();
    const LogCapture log;
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connection could not be established"));
    QCOMPARE(storyOf(log), QStringList({"info: Trying to connect (serial)", "info: Connecting",
                                        "warning: Connection could not be established"}));

    controller.replug();
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
}

void TestSerialFlow::aBusyPortCanNotBeConnected()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    QSerialPort holder(portOf(controller));
    QVERIFY(holder.open(QIODevice::ReadWrite));
    const LogCapture log;
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connection could not be established"));
    QCOMPARE(log.lines().filter(controller.path() + " is in use by ").size(), 1);
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSerialFlow::anUnsuitablePortIsRefused_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<QString>("text");
    const QString final = "Serial port is not suitable for communication";
    const QString adjusting = "SerialPort is not suitable for communication";
    QTest::newRow("at the wanted rate") << "pts/3" << 115200 << final;
    QTest::newRow("at another rate") << "pts/3" << 921600 << adjusting;
    QTest::newRow("longer than a record") << "ttyUSB" + QString(60, '7') << 115200 << final;
}

void TestSerialFlow::anUnsuitablePortIsRefused()
{
    QFETCH(QString, port);
    QFETCH(int, baudRate);
    QFETCH(QString, text);
    bench->dialog.setInterfaceSearch([&](bool, bool) {
        return QList<FoundInterface>{{"Zev", port, baudRate, 1}};
    });
    scan();
    connectAs("a");
    QCOMPARE(bench->serialInfo(), text);
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSerialFlow::theRateIsAdjustedBeforeTheFinalConnection_data()
{
    QTest::addColumn<int>("found");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("faster") << 115200 << 921600 << toFastRate;
    QTest::newRow("slower") << 921600 << 115200 << toSlowRate;
}

void TestSerialFlow::theRateIsAdjustedBeforeTheFinalConnection()
{
    QFETCH(int, found);
    QFETCH(int, wanted);
    QFETCH(QByteArray, frame);
    ControllerHandle controller = plug(atRate(found));
    scanUntilFound();
    controller.clearWire();
    choose(wanted);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    // The controller hears no rate but its own.
    QCOMPARE(controller.commands(),
             QByteArrayList({"CLS;", "CLS;", frame}) + framesOfAConnect("a"));
    QCOMPARE(controller.baudRate(), wanted);
    QCOMPARE(bench->registry.connections.size(), std::size_t(1));
    QCOMPARE(bench->registry.connections.front()->baudRate(), wanted);
    QCOMPARE(bench->registry.records.first().baudRateOrPort, wanted);
}

void TestSerialFlow::theAdjustmentClosesItsLink()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    choose(921600);
    const LogCapture log;
    connectAs("a");
    const QString initialised =
        "debug: Initializing serial connection \"" + portOf(controller) + '"';
    QStringList lines;
    const QStringList all = log.lines();
    for (const QString& line : all) {
        for (const char* start :
             {"info: Trying", "debug: Init", "debug: Dis", "debug: Finished dis", "debug: Closing",
              "debug: Deleting s", "info: Connect"}) {
            if (line.startsWith(QLatin1String(start)))
                lines.append(line);
        }
    }
    // Who ends the link and the link itself speak from two threads.
    lines.removeAll("debug: Closing connection \"\"");
    QCOMPARE(lines,
             QStringList({"info: Trying to connect (serial)", initialised, "debug: Disconnecting",
                          "debug: Finished disconnecting", "debug: Deleting serial connection",
                          initialised, "info: Connecting", "info: Connected"}));
    QCOMPARE(log.count("debug: Closing connection \"\""), 1);
}

void TestSerialFlow::theFoundRateIsTakenAsItIs()
{
    ControllerHandle controller = plug(atRate(921600));
    scanUntilFound();
    controller.clearWire();
    choose(921600);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.commands(), framesOfAConnect("a"));
    QCOMPARE(bench->registry.connections.front()->portOrBaud(), 921600);
}

void TestSerialFlow::theAdjustedRateIsRemembered()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    emulator::Faults faults;
    faults.refuse = {"GID"};
    controller.setFaults(faults);
    choose(921600);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("System identification failed"));
    QCOMPARE(controller.baudRate(), 921600);

    controller.setFaults({});
    controller.clearWire();
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.commands(), framesOfAConnect("a"));
}

void TestSerialFlow::aRateThatCanNotBeAdjustedIsTold_data()
{
    QTest::addColumn<ControllerOptions>("options");
    ControllerOptions options;
    options.faults.refuse = {"SBR"};
    QTest::newRow("refused") << options;
    options.faults = {};
    options.faults.silent = {"SBR"};
    QTest::newRow("not answered") << options;
    options.faults = {};
    options.faults.shortBytes = {{"SBR", 1}};
    QTest::newRow("half answered") << options;
    options.faults = {};
    options.faults.garbageReplies = true;
    QTest::newRow("garbage") << options;
    options.faults = {};
    options.faults.closeOn = {"SBR"};
    QTest::newRow("unplugged") << options;
    options.faults.closeOn = {"CLS"};
    QTest::newRow("unplugged before") << options;
}

void TestSerialFlow::aRateThatCanNotBeAdjustedIsTold()
{
    QFETCH(ControllerOptions, options);
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.setFaults(options.faults);
    choose(921600);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Baudrate couldn't be adjusted"));
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->serialLines().isEmpty());
    QCOMPARE(devices().count(), 1);
}

void TestSerialFlow::theLinkThatIsLeftBehindGoesWithTheDialog()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    emulator::Faults faults;
    faults.refuse = {"SBR"};
    controller.setFaults(faults);
    choose(921600);
    const LogCapture log;
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Baudrate couldn't be adjusted"));
    // Nobody knows at which rate the controller listens now: the link is kept, and with it the
    // port.
    QVERIFY(controller.isConnected());
    QCOMPARE(log.count("debug: Deleting serial connection"), 0);
    choose(115200);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connection could not be established"));
    QVERIFY(controller.isConnected());

    const int deleted = log.count("debug: Deleting serial connection");
    bench.reset();
    QCOMPARE(log.count("debug: Deleting serial connection"), deleted + 1);
    QVERIFY(!controller.isConnected());
    // For `cleanup`, which looks for what is left.
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestSerialFlow::aPortThatIsGoneCanNotBeAdjusted()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.unplug();
    choose(921600);
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Baudrate couldn't be adjusted"));
    controller.replug();
    QVERIFY(!controller.commands().contains(toFastRate));
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.baudRate(), 921600);
}

void TestSerialFlow::aSecondConnectInTheMiddleWaits()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.clearWire();
    choose(921600);
    int clicks = 0;
    QTimer impatience;
    connect(&impatience, &QTimer::timeout, &bench->dialog, [&] {
        if (bench->serialInfo() != "Adjusting baudrate...")
            return;
        impatience.stop();
        clicks += click(bench->child<QPushButton>("connectSerialButton"));
    });
    impatience.start(0);
    connectAs("a");
    QCOMPARE(clicks, 1);
    QCOMPARE(controller.commands(),
             QByteArrayList({"CLS;", "CLS;", toFastRate}) + framesOfAConnect("a"));
    QCOMPARE(bench->registry.connections.size(), std::size_t(1));
    QVERIFY(bench->registry.connections.front()->isConnected());
    QCOMPARE(bench->serialLines().size(), 1);
    // The second one came to a dialog that had done its work.
    QCOMPARE(bench->serialInfo(), QStringLiteral("Please insert a label"));
}

void TestSerialFlow::anAdjustmentIsTheLastThingWhenTheWindowLeaves()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.clearWire();
    choose(921600);
    QTimer::singleShot(0, &bench->dialog, [this] { bench->registry.leaving = true; });
    auto& edit = bench->child<QLineEdit>("serialPortLabel_2");
    edit.setText("a");
    bench->child<QPushButton>("connectSerialButton").click();
    QVERIFY(bench->registry.leaving);
    QCOMPARE(controller.commands(), QByteArrayList({"CLS;", "CLS;", toFastRate}));
    QVERIFY(!controller.isConnected());
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->serialLines().isEmpty());
}

void TestSerialFlow::adjustingWorksWithTheRealWaits()
{
    bench->useTimeout(Connection::defaultTimeoutMs);
    ControllerHandle controller = plug();
    scanUntilFound();
    controller.clearWire();
    choose(921600);
    QElapsedTimer time;
    time.start();
    connectAs("a");
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connected"));
    QCOMPARE(controller.baudRate(), 921600);
    QCOMPARE(controller.commands(),
             QByteArrayList({"CLS;", "CLS;", toFastRate}) + framesOfAConnect("a"));
    // Two links with two stops of 1125 ms each.
    QVERIFY2(time.elapsed() >= 4500, QByteArray::number(time.elapsed()).constData());
}

void TestSerialFlow::aStoredSystemConnectsAtTheOtherPort()
{
    const ControllerHandle other = plug();
    ControllerHandle controller = plug(atRate(921600));
    switches::autoSerialSearch = true;
    load({stored(controller, "ttyUSB994", 921600)});
    QCOMPARE(bench->registry.calls, QStringList("new " + portOf(controller)));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Connected);
    QCOMPARE(bench->registry.records.first().name.text(), portOf(controller));
    QCOMPARE(bench->registry.connections.front()->portOrBaud(), 921600);
    const ConnectionWidget& line = *bench->serialLines().first();
    QCOMPARE(line.address(), portOf(controller));
    QCOMPARE(buttonOf(line), QStringLiteral("Disconnect"));
    QCOMPARE(controller.label(), QByteArray("left").leftJustified(25, ' '));
    QVERIFY(other.label().trimmed().isEmpty());
}

void TestSerialFlow::aStoredSystemConnectsWithoutASearch()
{
    ControllerHandle controller = plug();
    load({stored(controller, portOf(controller), 115200)});
    QCOMPARE(controller.commands(), framesOfAConnect("left"));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Connected);
    QCOMPARE(buttonOf(*bench->serialLines().first()), QStringLiteral("Disconnect"));
}

void TestSerialFlow::anotherControllerAtTheStoredPortIsListedButNotConnected()
{
    ControllerHandle controller = plug();
    ConnectionSettings record = stored(controller, portOf(controller), 115200);
    record.id.set(records::idWithKey("XX000000009"));
    load({record});
    QCOMPARE(controller.commands(), QByteArrayList({"CLS;", "CLS;", "GID;"}));
    QVERIFY(!controller.isConnected());
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::Disconnected);
    QCOMPARE(buttonOf(*bench->serialLines().first()), QStringLiteral("Reconnect"));
}

void TestSerialFlow::storedSystemsComeUpSideBySideAsEachDoesAlone()
{
    std::vector<ControllerHandle> controllers{plug(), plug()};
    const QStringList labels{"left", "right"};
    QList<ConnectionSettings> list;
    for (const ControllerHandle& each : controllers) {
        list.append(stored(each, portOf(each), 115200));
        list.last().label.set(labels.at(list.size() - 1));
    }
    QList<Dialogue> alone;
    for (int i = 0; i < list.size(); ++i) {
        load({list.at(i)});
        makeBench();
        alone.append(dialogueOf(controllers[std::size_t(i)]));
        controllers[std::size_t(i)].clearWire();
    }
    load(list);

    QList<Dialogue> together;
    for (int i = 0; i < list.size(); ++i) {
        together.append(dialogueOf(controllers[std::size_t(i)]));
        QCOMPARE(together.last().commands, framesOfAConnect(labels.at(i).toLatin1()));
        QCOMPARE(together.last().commands, alone.at(i).commands);
        for (const Dialogue& dialogue : {alone.at(i), together.last()}) {
            QVERIFY(dialogue.hasPause(0, dialogues::idleStopMs));
            QVERIFY(dialogue.hasPause(1, dialogues::idleStopMs));
        }
    }
    // Each begins before the other one has ended.
    QVERIFY(together[1].timesNs.front() < together[0].timesNs.back());
    QVERIFY(together[0].timesNs.front() < together[1].timesNs.back());
    QCOMPARE(bench->registry.statesWhenNew.count(LinkState::Connected), 2);
}

void TestSerialFlow::storedSystemsKeepTheOrderOfTheFile()
{
    ControllerOptions slow;
    slow.faults.lateMs = {{"GID", dialogues::timeoutMs / 2}};
    const QStringList labels{"late", "silent", "good"};
    ControllerOptions silent;
    silent.faults.silent = {"CLS", "GID"};
    QList<ConnectionSettings> list;
    QStringList ports;
    for (const ControllerOptions& options : {slow, silent, ControllerOptions()}) {
        const ControllerHandle controller = plug(options);
        ports.append(portOf(controller));
        list.append(stored(controller, ports.last(), 115200));
        list.last().label.set(labels.at(list.size() - 1));
    }
    load(list);

    QStringList registered;
    for (const auto& connection : bench->registry.connections)
        registered.append(connection->label());
    QCOMPARE(registered, labels);
    QCOMPARE(
        bench->registry.statesWhenNew,
        QList<LinkState>({LinkState::Connected, LinkState::Disconnected, LinkState::Connected}));
    QStringList addresses;
    QStringList buttons;
    for (const ConnectionWidget* line : bench->serialLines()) {
        addresses.append(line->address());
        buttons.append(buttonOf(*line));
    }
    QCOMPARE(addresses, ports);
    QCOMPARE(buttons, QStringList({"Disconnect", "Reconnect", "Disconnect"}));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(records::labelsIn(bench->contentOf(bench->defaultFile())), labels);
}

void TestSerialFlow::theEndOfAnAdapterIsTold()
{
    ControllerHandle controller = plug();
    scanUntilFound();
    connectAs("a");
    Connection& connection = *bench->registry.connections.front();
    connect(&connection, &Connection::hostDisconnected, &bench->dialog,
            [&] { bench->dialog.onLinkLost(&connection); });
    bench->registry.calls.clear();
    controller.unplug();
    QTRY_COMPARE(buttonOf(*bench->serialLines().first()), QStringLiteral("Reconnect"));
    QTest::qWait(50);
    QCOMPARE(bench->registry.calls, QStringList("disconnect " + portOf(controller)));
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QApplication application(argc, argv);
    TestSerialFlow test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serialflow.moc"
