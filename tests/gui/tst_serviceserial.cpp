// The change of the baud rate of a serial system by the service dialog, in the real window.

#include "link/serialport.h"
#include "plots/counter.h"
#include "service/servicedialog.h"
#include "setup/connectionwidget.h"
#include "setup/settings.h"
#include "setup/settingsdialog.h"
#include "support/privatedev.h"
#include "support/pseudoport.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBrowser>
#include <QtTest>

namespace {

constexpr int slowRate = 115200;
constexpr int fastRate = 921600;
constexpr int streamRateHz = 300;
/// The library's thread and the kernel's worker come between: more than over TCP.
constexpr int timeoutMs = 120;

emulator::ControllerOptions atRate(int baudRate)
{
    emulator::ControllerOptions options;
    options.baudRate = baudRate;
    return options;
}

/// The window with a serial system from the setup file, and its service dialog.
class ServiceOnSerial final
{
public:
    explicit ServiceOnSerial(int baudRate)
        : port(freePortName())
        , controller(host.addPty(atRate(baudRate), "/dev/" + port))
    {}

    bool open()
    {
        if (!fixture.open())
            return false;
        settingsDialog(fixture).setConnectionFactory([](ConnectionType) {
            auto made = std::make_unique<SerialPort>();
            made->setTimeoutMs(timeoutMs);
            return made;
        });
        return fixture.writeSetupFile({record()}) && load();
    }

    /// Brings the systems of the setup file up.
    bool load()
    {
        settingsDialog(fixture).loadConnection(QString());
        return fixture.window().liveConnections().size() == 1 && connection().isConnected();
    }

    bool openService()
    {
        fixture.find<QAction>("actionOperation_Tests")->trigger();
        return QTest::qWaitForWindowExposed(&dialog());
    }

    bool openAndStream()
    {
        return open() && fixture.type("samplingRateCounter", QString::number(streamRateHz))
               && fixture.clickAction("startAction") && openService();
    }

    bool change(int index)
    {
        auto& rates = in<QComboBox>(dialog(), "comboBox");
        rates.setFocus();
        while (rates.currentIndex() < index)
            QTest::keyClick(dialog().windowHandle(), Qt::Key_Down);
        controller.clearWire();
        return click("baudrateChange");
    }

    bool click(const char* name)
    {
        auto& button = in<QPushButton>(dialog(), name);
        const auto isEnabled = [&] { return button.isEnabled(); };
        return QTest::qWaitFor(isEnabled) && user::click(&button) && QTest::qWaitFor(isEnabled);
    }

    bool save()
    {
        return user::click(&in<QPushButton>(settingsDialog(fixture), "saveConnectionButton"));
    }

    int savedRate() const
    {
        Settings settings;
        QList<ConnectionSettings> records;
        settings.read(QString());
        settings.getList(records);
        return records.value(0).baudRateOrPort;
    }

    QString lineButton()
    {
        auto& list = in<QListWidget>(settingsDialog(fixture), "listWidgetSerial");
        return in<QPushButton>(*list.itemWidget(list.item(0)), "Button").text();
    }

    ServiceDialog& dialog() { return *fixture.window().findChild<ServiceDialog*>(); }
    QString results() { return in<QTextBrowser>(dialog(), "result_textBrowser").toPlainText(); }
    QString shownRate() { return in<QLabel>(dialog(), "config_Label").text(); }
    int greatestSamplingRate() const
    {
        return fixture.find<Counter>("samplingRateCounter")->spinBox->maximum();
    }
    Connection& connection() const { return fixture.connection(); }
    bool streams() const
    {
        return connection().isStreaming() && controller.isStreaming()
               && controller.streamRate() == streamRateHz;
    }

    emulator::EmulatorHost host;
    const QString port;
    emulator::ControllerHandle controller;
    WindowFixture fixture;

private:
    ConnectionSettings record() const
    {
        ConnectionSettings record;
        record.type = ConnectionType::Serial;
        record.name.set(port);
        record.baudRateOrPort = controller.baudRate();
        record.label.set(QStringLiteral("bench"));
        record.id.set(controller.id());
        record.serial.set(deviceKey(controller.id()));
        record.autoConnect = true;
        return record;
    }
};

} // namespace

class TestServiceSerial final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void bothEndsChangeAndTheStreamGoesOn_data();
    void bothEndsChangeAndTheStreamGoesOn();
    void theWindowSamplesAsFastAsTheLineAllows();
    void savingKeepsTheRateForTheNextStart();
    void aRateThatIsRefusedChangesNothing();
    void aPortThatIsGoneShowsInTheRow();
};

void TestServiceSerial::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
    QVERIFY(PseudoPort().isValid());
}

void TestServiceSerial::bothEndsChangeAndTheStreamGoesOn_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("baudRate");
    QTest::newRow("middle") << 1 << 460800;
    QTest::newRow("fast") << 2 << fastRate;
}

void TestServiceSerial::bothEndsChangeAndTheStreamGoesOn()
{
    QFETCH(int, index);
    QFETCH(int, baudRate);
    ServiceOnSerial system(slowRate);
    QVERIFY(system.openAndStream());
    QCOMPARE(system.shownRate(), QString("115200"));
    QVERIFY(system.change(index));
    QCOMPARE(system.results(), QString("Set Baudrate: Success - now adjusting connection - "
                                       "Ethernet is now lost\n"));
    QCOMPARE(system.shownRate(), QString::number(baudRate));
    QCOMPARE(system.controller.baudRate(), baudRate);
    QCOMPARE(system.connection().baudRate(), baudRate);
    QVERIFY(system.streams());
    QVERIFY(system.click("buttonCTF_1"));
    QVERIFY(system.results().contains("Clear Trigger Freeze Stage 1: Success"));
    QVERIFY(system.streams());
    QCOMPARE(system.lineButton(), QString("Disconnect"));
}

void TestServiceSerial::theWindowSamplesAsFastAsTheLineAllows()
{
    ServiceOnSerial system(fastRate);
    QVERIFY(system.open());
    QCOMPARE(system.greatestSamplingRate(), 500);
    QVERIFY(system.openService());
    QVERIFY(system.change(0));
    QCOMPARE(system.greatestSamplingRate(), 430);
    QVERIFY(system.change(2));
    QCOMPARE(system.greatestSamplingRate(), 500);
}

void TestServiceSerial::savingKeepsTheRateForTheNextStart()
{
    ServiceOnSerial system(slowRate);
    QVERIFY(system.open());
    system.fixture.find<QAction>("actionSetup")->trigger();
    QVERIFY(system.openService());
    QVERIFY(system.change(2));
    QCOMPARE(system.savedRate(), slowRate);
    QVERIFY(system.save());
    QCOMPARE(system.savedRate(), fastRate);
    settingsDialog(system.fixture).closeAllConnections();
    QVERIFY(system.load());
    QCOMPARE(system.connection().baudRate(), fastRate);
}

void TestServiceSerial::aRateThatIsRefusedChangesNothing()
{
    ServiceOnSerial system(slowRate);
    QVERIFY(system.openAndStream());
    system.controller.setRules({emulator::on("SBR").refuse()});
    QVERIFY(system.change(2));
    QCOMPARE(system.results(), QString("Set Baudrate: Failed\n"));
    QCOMPARE(system.shownRate(), QString("115200"));
    QCOMPARE(system.connection().baudRate(), slowRate);
    QVERIFY(system.connection().isConnected());
    QVERIFY(!system.controller.isStreaming());
    QCOMPARE(system.greatestSamplingRate(), 430);
}

void TestServiceSerial::aPortThatIsGoneShowsInTheRow()
{
    ServiceOnSerial system(slowRate);
    QVERIFY(system.openAndStream());
    connect(&in<QTextBrowser>(system.dialog(), "result_textBrowser"), &QTextBrowser::textChanged,
            this, [&] { system.controller.unplug(); });
    QVERIFY(system.change(2));
    QVERIFY(system.results().startsWith("Set Baudrate: Success"));
    QVERIFY(!system.connection().isConnected());
    QCOMPARE(system.lineButton(), QString("Reconnect"));
    QVERIFY(system.fixture.window().shownConnections().isEmpty());

    system.controller.replug();
    system.fixture.find<QAction>("actionSetup")->trigger();
    auto& list = in<QListWidget>(settingsDialog(system.fixture), "listWidgetSerial");
    in<QPushButton>(*list.itemWidget(list.item(0)), "Button").click();
    QCOMPARE(system.lineButton(), QString("Disconnect"));
    QCOMPARE(system.connection().baudRate(), fastRate);
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QApplication application(argc, argv);
    TestServiceSerial test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_serviceserial.moc"
