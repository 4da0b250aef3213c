// A serial system in the real window: found by a scan, connected, streamed, unplugged, plugged in
// again.

#include "link/interfacesearch.h"
#include "link/serialport.h"
#include "plots/genericplot.h"
#include "setup/connectionwidget.h"
#include "setup/settingsdialog.h"
#include "support/privatedev.h"
#include "support/pseudoport.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QtTest>

namespace {

constexpr int serialTab = 0;
/// The library's thread and the kernel's worker come between: more than over TCP.
constexpr int timeoutMs = 400;

/// The window, and a controller behind an adapter that a scan finds.
class SerialSystem final
{
public:
    explicit SerialSystem(const emulator::ControllerOptions& options = {})
        : port(freePortName())
        , controller(host.addPty(options, "/dev/" + port))
    {}

    bool open()
    {
        if (!fixture.open())
            return false;
        dialog = fixture.window().findChild<SettingsDialog*>();
        dialog->setConnectionFactory([](ConnectionType) {
            auto made = std::make_unique<SerialPort>();
            made->setTimeoutMs(timeoutMs);
            return made;
        });
        const QList<SerialInterface> adapters{{port, "Serial adapter", "FTDI"}};
        dialog->setInterfaceSearch([adapters](bool includePseudo, bool anyDevice) {
            return searchInterfaces(includePseudo, anyDevice, [adapters] { return adapters; });
        });
        fixture.find<QAction>("actionSetup")->trigger();
        in<QTabWidget>("tabWidget").setCurrentIndex(serialTab);
        return true;
    }

    /// On a busy machine an answer can take longer than the search waits.
    bool scan()
    {
        constexpr int attempts = 5;
        for (int i = 0; i < attempts && in<QComboBox>("serialPortInfoListBox").count() == 0; ++i) {
            if (!user::click(&in<QPushButton>("rescanButton")))
                return false;
        }
        return in<QComboBox>("serialPortInfoListBox").count() == 1;
    }

    /// Scans, chooses rate and label, and presses Connect.
    bool connect(int baudRate)
    {
        if (!scan())
            return false;
        auto& rates = in<QComboBox>("baudrateComboBox");
        rates.setCurrentIndex(rates.findData(baudRate));
        QTest::keyClicks(&in<QLineEdit>("serialPortLabel_2"), "bench");
        return user::click(&in<QPushButton>("connectSerialButton"))
               && info() == QLatin1String("Connected");
    }

    bool openAndStream(int baudRate)
    {
        return open() && connect(baudRate) && fixture.clickAction("startAction")
               && QTest::qWaitFor([this] { return pointCount() > 3; });
    }

    bool pressLineButton()
    {
        auto& button = *line().findChild<QPushButton*>("Button");
        in<QListWidget>("listWidgetSerial")
            .horizontalScrollBar()
            ->setValue(button.geometry().right());
        return user::click(&button);
    }

    QString lineButton() { return line().findChild<QPushButton*>("Button")->text(); }
    QString info() { return in<QLabel>("infoLabel").text(); }
    int pointCount() const { return pointsOf(fixture.pointingPlot(1), 0).size(); }
    Connection& connection() const { return fixture.connection(); }

    emulator::EmulatorHost host;
    const QString port;
    emulator::ControllerHandle controller;
    WindowFixture fixture;

private:
    template <typename T>
    T& in(const char* name)
    {
        return *dialog->findChild<T*>(QLatin1String(name));
    }

    ConnectionWidget& line()
    {
        auto& list = in<QListWidget>("listWidgetSerial");
        return *qobject_cast<ConnectionWidget*>(list.itemWidget(list.item(0)));
    }

    SettingsDialog* dialog = nullptr;
};

} // namespace

class TestSerialSystem final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void aFoundSystemStreams_data();
    void aFoundSystemStreams();
    void unpluggingShowsInTheRow();
    void reconnectingFailsWhileUnplugged();
    void aReplugBringsTheSameSystemBack();
    void anotherControllerAtTheSamePortIsRejected();
    void aStoredSystemComesUpWithTheWindow();
    void aLinkThatIsLeftBehindGoesWithTheWindow_data();
    void aLinkThatIsLeftBehindGoesWithTheWindow();
};

void TestSerialSystem::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
    QVERIFY(PseudoPort().isValid());
}

void TestSerialSystem::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestSerialSystem::aFoundSystemStreams_data()
{
    QTest::addColumn<int>("own");
    QTest::addColumn<int>("wanted");
    QTest::newRow("as it was found") << 115200 << 115200;
    QTest::newRow("moved to the faster rate") << 115200 << 921600;
    QTest::newRow("found at the faster rate") << 921600 << 921600;
}

void TestSerialSystem::aFoundSystemStreams()
{
    QFETCH(int, own);
    QFETCH(int, wanted);
    emulator::ControllerOptions options;
    options.baudRate = own;
    SerialSystem system(options);
    QVERIFY(system.openAndStream(wanted));
    QCOMPARE(system.controller.baudRate(), wanted);
    QCOMPARE(system.connection().portOrBaud(), wanted);
    QVERIFY(system.controller.isStreaming());
    QCOMPARE(system.fixture.window().shownConnections(), QList<int>{0});
}

void TestSerialSystem::unpluggingShowsInTheRow()
{
    SerialSystem system;
    QVERIFY(system.openAndStream(115200));
    QCOMPARE(system.lineButton(), QStringLiteral("Disconnect"));
    system.controller.unplug();
    QTRY_COMPARE(system.lineButton(), QStringLiteral("Reconnect"));
    QCOMPARE(system.connection().linkState(), LinkState::Disconnected);
    QVERIFY(!system.connection().isStreaming());
    QVERIFY(system.fixture.window().shownConnections().isEmpty());
    QCOMPARE(system.pointCount(), 0);
}

void TestSerialSystem::reconnectingFailsWhileUnplugged()
{
    SerialSystem system;
    QVERIFY(system.openAndStream(115200));
    system.controller.unplug();
    QTRY_COMPARE(system.lineButton(), QStringLiteral("Reconnect"));
    QVERIFY(system.pressLineButton());
    QCOMPARE(system.info(), QStringLiteral("Could not establish connection."));
    QCOMPARE(system.lineButton(), QStringLiteral("Reconnect"));
}

void TestSerialSystem::aReplugBringsTheSameSystemBack()
{
    SerialSystem system;
    QVERIFY(system.openAndStream(921600));
    for (int round = 0; round < 2; ++round) {
        system.controller.unplug();
        QTRY_COMPARE(system.lineButton(), QStringLiteral("Reconnect"));
        system.controller.replug();
        QVERIFY(system.pressLineButton());
        QCOMPARE(system.lineButton(), QStringLiteral("Disconnect"));
        QCOMPARE(system.info(), QString());
        QVERIFY(system.connection().isConnected());
        QCOMPARE(system.connection().portOrBaud(), 921600);
        QCOMPARE(system.fixture.window().shownConnections(), QList<int>{0});

        // The measurement was on all the time: the system joins it.
        QTRY_VERIFY(system.connection().isStreaming());
        QTRY_VERIFY(system.pointCount() > 3);
    }
}

void TestSerialSystem::anotherControllerAtTheSamePortIsRejected()
{
    SerialSystem system;
    QVERIFY(system.openAndStream(115200));
    system.controller.unplug();
    QTRY_COMPARE(system.lineButton(), QStringLiteral("Reconnect"));
    emulator::ControllerOptions other;
    other.key = "OTHERDEVICE";
    system.controller.setIdentity(other);
    system.controller.replug();
    QVERIFY(system.pressLineButton());
    QCOMPARE(system.info(),
             QStringLiteral("Could not establish connection. Controller ID mismatch."));
    QCOMPARE(system.lineButton(), QStringLiteral("Reconnect"));
    QVERIFY(!system.connection().isConnected());
    QVERIFY(system.fixture.window().shownConnections().isEmpty());
    QVERIFY(!system.controller.isConnected());
}

void TestSerialSystem::aStoredSystemComesUpWithTheWindow()
{
    SerialSystem system;
    ConnectionSettings record;
    record.type = ConnectionType::Serial;
    record.name.set(system.port);
    record.baudRateOrPort = 115200;
    record.label.set("bench");
    record.id.set(system.controller.id());
    record.serial.set(deviceKey(system.controller.id()));
    record.autoConnect = true;
    QVERIFY(system.fixture.writeSetupFile({record}));
    QVERIFY(system.open());
    QVERIFY(system.connection().isConnected());
    QCOMPARE(system.lineButton(), QStringLiteral("Disconnect"));
    QVERIFY(system.fixture.clickAction("startAction"));
    QTRY_VERIFY(system.pointCount() > 3);
}

void TestSerialSystem::aLinkThatIsLeftBehindGoesWithTheWindow_data()
{
    QTest::addColumn<bool>("isClosed");
    QTest::newRow("closed") << true;
    QTest::newRow("destroyed") << false;
}

void TestSerialSystem::aLinkThatIsLeftBehindGoesWithTheWindow()
{
    QFETCH(bool, isClosed);
    emulator::ControllerOptions options;
    options.faults.refuse = {"SBR"};
    SerialSystem system(options);
    QVERIFY(system.open());
    QVERIFY(!system.connect(921600));
    QCOMPARE(system.info(), QStringLiteral("Baudrate couldn't be adjusted"));
    QVERIFY(system.controller.isConnected());
    QVERIFY(system.fixture.window().liveConnections().empty());

    if (isClosed)
        QVERIFY(system.fixture.window().close());
    system.fixture.destroyWindow();
    QVERIFY(!system.controller.isConnected());
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QApplication application(argc, argv);
    TestSerialSystem test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serialsystem.moc"
