// Ways out of the window, and the dialogs that it opens.

#include "app/switches.h"
#include "link/connection.h"
#include "noticereader.h"
#include "params/paramsdialog.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "service/servicedialog.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/settingsdialog.h"
#include "support/boxanswers.h"
#include "support/desktop.h"
#include "support/logcapture.h"
#include "support/samplefeed.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <algorithm>

namespace {

const char* const softwareManual = "Manual_Zev-Qor-Software_vers2.3.pdf";
const char* const hardwareManual = "Manual_Lumetra_Compact_en_vers15.pdf";

/// A file in the program's folder for as long as it lives.
class ProgramFile final
{
public:
    explicit ProgramFile(const char* name)
        : file(QDir(QCoreApplication::applicationDirPath()).filePath(name))
    {
        file.open(QIODevice::WriteOnly);
        file.close();
    }
    ~ProgramFile() { file.remove(); }
    ProgramFile(const ProgramFile&) = delete;
    ProgramFile& operator=(const ProgramFile&) = delete;

    QString path() const { return file.fileName(); }

private:
    QFile file;
};

bool startStream(const WindowFixture& fixture)
{
    return fixture.clickAction("startAction")
           && QTest::qWaitFor([&] { return fixture.controller().isStreaming(); });
}

QVector<qint64> timesOfStops(const emulator::ControllerHandle& controller)
{
    QVector<qint64> timesNs;
    const QVector<emulator::WireEvent> wire = controller.wire();
    for (const emulator::WireEvent& event : wire) {
        if (event.direction == emulator::WireEvent::FromHost && event.bytes == "CLS;")
            timesNs.append(event.timeNs);
    }
    return timesNs;
}

void pressSwitch(const WindowFixture& fixture, int stage)
{
    const char* const slot = stage == 1 ? "on_push_Stab1_clicked" : "on_push_Stab2_clicked";
    QMetaObject::invokeMethod(&fixture.window(), slot, Qt::DirectConnection);
}

} // namespace

class TestFrameLeaving final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void closingEndsTheStreams();
    void closingEndsConnectionsOfTheSetupFile();
    void controllersOfTheSetupFileAreStoppedSideBySide();
    void destroyingEndsWhatWasNotClosed();
    void closingTwiceStopsAndDeletesOnce();
    void closingSaysThatItDisconnects();
    void closingWithoutAConnectionSaysNothing();
    void closingTakesAllWindowsAlong();
    void exitEntryCloses();
    void nothingTicksBehindTheEnd();
    void slotsAreHarmlessBehindTheEnd();
    void leavingInTheMiddleOfARunStopsTheStream();
    void leavingBeforeLossesAreToldWarnsOfNothing();
    void whatComesUpBehindTheEndIsDropped();
    void closingEndsTheServiceDialogsConnection();

    void setupAndOverviewOpen();
    void parametersAndRecordingOpenAndClose();
    void serviceDialogNeedsAConnection();
    void missingManualIsTold_data();
    void missingManualIsTold();
    void manualOpensFromTheProgramsFolder_data();
    void manualOpensFromTheProgramsFolder();
    void failedOpeningIsTold();
};

void TestFrameLeaving::closingEndsTheStreams()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startStream(fixture));
    QTRY_VERIFY(fixture.controller(1).isStreaming());
    QVERIFY(fixture.window().close());
    QVERIFY(!fixture.window().isVisible());
    for (int number = 0; number < 2; ++number) {
        QVERIFY(!fixture.controller(number).isStreaming());
        QCOMPARE(fixture.controller(number).commands().last(), QByteArray("CLS;"));
        QTRY_VERIFY(!fixture.controller(number).isConnected());
    }
    QVERIFY(fixture.window().liveConnections().empty());
}

void TestFrameLeaving::closingEndsConnectionsOfTheSetupFile()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.writeSetupFile({fixture.record()}));
    QVERIFY(fixture.open());
    QCOMPARE(fixture.window().liveConnections().size(), std::size_t(1));
    QCOMPARE(fixture.window().shownConnections(), QList<int>{0});
    QVERIFY(startStream(fixture));
    fixture.controller().clearWire();
    QVERIFY(fixture.window().close());
    QCOMPARE(fixture.controller().commands(), QByteArrayList{"CLS;"});
    QTRY_VERIFY(!fixture.controller().isConnected());
    // The setup file is the user's: leaving does not touch it.
    fixture.destroyWindow();
    QVERIFY(fixture.open());
    QCOMPARE(fixture.window().liveConnections().size(), std::size_t(1));
}

void TestFrameLeaving::controllersOfTheSetupFileAreStoppedSideBySide()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1), fixture.record(2)}));
    QVERIFY(fixture.open());
    emulator::Faults silent;
    silent.silent = {"CLS"};
    for (int number = 0; number < 3; ++number) {
        fixture.controller(number).clearWire();
        fixture.controller(number).setFaults(silent);
    }
    QVERIFY(fixture.window().close());
    QVERIFY(fixture.window().liveConnections().empty());
    // The first stop of each comes before anybody's is given up and repeated.
    QVector<qint64> firstNs;
    QVector<qint64> repeatNs;
    for (int number = 0; number < 3; ++number) {
        const QVector<qint64> stopsNs = timesOfStops(fixture.controller(number));
        QCOMPARE(stopsNs.size(), 2);
        firstNs.append(stopsNs.first());
        repeatNs.append(stopsNs.last());
        QTRY_VERIFY(!fixture.controller(number).isConnected());
    }
    QVERIFY(*std::max_element(firstNs.begin(), firstNs.end())
            < *std::min_element(repeatNs.begin(), repeatNs.end()));
}

void TestFrameLeaving::destroyingEndsWhatWasNotClosed()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startStream(fixture));
    fixture.controller().clearWire();
    fixture.destroyWindow();
    QVERIFY(!fixture.controller().isStreaming());
    QCOMPARE(fixture.controller().commands(), QByteArrayList{"CLS;"});
    QTRY_VERIFY(!fixture.controller().isConnected());
}

void TestFrameLeaving::closingTwiceStopsAndDeletesOnce()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(startStream(fixture));
    fixture.controller().clearWire();
    const LogCapture log;
    QVERIFY(fixture.window().close());
    QVERIFY(fixture.window().close());
    fixture.destroyWindow();
    QCOMPARE(fixture.controller().commands(), QByteArrayList{"CLS;"});
    QCOMPARE(log.count("debug: Deleting TCP connection"), 1);
    QCOMPARE(log.count("debug: Destroying main window"), 1);
    QCOMPARE(log.lines().filter("warning: "), QStringList());
}

void TestFrameLeaving::closingSaysThatItDisconnects()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const NoticeReader reader;
    QVERIFY(fixture.window().close());
    QCOMPARE(reader.texts, QStringList("Disconnecting ..."));
    QVERIFY(reader.pointerWaited);
    QVERIFY(!NoticeReader::isShown());
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestFrameLeaving::closingWithoutAConnectionSaysNothing()
{
    WindowFixture fixture;
    QVERIFY(fixture.open());
    const NoticeReader reader;
    QVERIFY(fixture.window().close());
    QCOMPARE(reader.texts, QStringList());
}

void TestFrameLeaving::closingTakesAllWindowsAlong()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.find<QAction>("actionSetup")->trigger();
    fixture.find<QAction>("actionConfiguration")->trigger();
    fixture.window().errorStreamStart();
    auto* box = fixture.find<QMessageBox>("streamErrorBox");
    QVERIFY(box->isVisible());
    QVERIFY(fixture.window().close());
    QVERIFY(!box->isVisible());
    for (const QWidget* widget : QApplication::topLevelWidgets())
        QVERIFY2(!widget->isVisible(), widget->metaObject()->className());
}

void TestFrameLeaving::exitEntryCloses()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.find<QAction>("actionExit")->trigger();
    QVERIFY(!fixture.window().isVisible());
    QVERIFY(fixture.window().liveConnections().empty());
}

void TestFrameLeaving::nothingTicksBehindTheEnd()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QTRY_VERIFY(fixture.controller().commands().count("GSF;") > 2);
    QVERIFY(fixture.window().close());
    fixture.controller().clearWire();
    QTest::qWait(100);
    QVERIFY(fixture.controller().wire().isEmpty());
}

void TestFrameLeaving::slotsAreHarmlessBehindTheEnd()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const QString address = fixture.controller().address();
    QVERIFY(startStream(fixture));
    QVERIFY(fixture.window().close());
    MainWindow& window = fixture.window();
    QVERIFY(!fixture.find<QAction>("startAction")->isEnabled());
    QVERIFY(!fixture.find<QPushButton>("push_Stab1")->isEnabled());

    pressSwitch(fixture, 1);
    pressSwitch(fixture, 2);
    window.startStopDataAcquisition();
    window.resetPlotsAndDisplays();
    window.showConnection(address, true);
    window.showConnection(address, false);
    window.activeStage(address, 1, true);
    window.changeLabel(address, "late");
    window.updateColorGraph(address, Qt::red, 0);
    window.showServiceDialog();
    QVERIFY(!window.getStabilAndActiveStatus());
    QVERIFY(!window.getActiveStatus(0x80));
    QVERIFY(!window.closedConnection(address));
    QVERIFY(!window.disconnectConnection(address));
    window.stopDrawingPlots();
    fixture.tick();
    QVERIFY(window.liveConnections().empty());
}

void TestFrameLeaving::leavingInTheMiddleOfARunStopsTheStream()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.click("pointingRadio"));
    QVERIFY(fixture.click("checkBox_Stats1"));
    QVERIFY(startStream(fixture));
    QTRY_VERIFY(pointsOf(fixture.pointingPlot(1), 0).size() > 20);
    fixture.destroyWindow();
    QVERIFY(!fixture.controller().isStreaming());
}

void TestFrameLeaving::leavingBeforeLossesAreToldWarnsOfNothing()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.openWithSystems());
    for (int number = 0; number < 3; ++number)
        fixture.controller(number).closeConnection();
    QVERIFY(waitWithoutEvents([&] {
        const auto& links = fixture.window().liveConnections();
        return std::none_of(links.begin(), links.end(),
                            [](const auto& link) { return link->isRunning(); });
    }));
    // The window has not been told of the losses yet: that waits in the queue while it leaves.
    const LogCapture log;
    fixture.destroyWindow();
    QCOMPARE(log.count("debug: Deleting TCP connection"), 3);
    QCOMPARE(log.lines().filter("warning: "), QStringList());
}

void TestFrameLeaving::whatComesUpBehindTheEndIsDropped()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    QVERIFY(fixture.window().close());
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(fixture.window().liveConnections().empty());
    QVERIFY(fixture.window().liveStatuses().isEmpty());
    QTRY_VERIFY(!fixture.controller().isConnected());
}

void TestFrameLeaving::closingEndsTheServiceDialogsConnection()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const auto* service = fixture.window().findChild<ServiceDialog*>();
    fixture.window().showServiceDialog();
    QCOMPARE(service->connection(), &fixture.connection());
    QVERIFY(fixture.window().close());
    QVERIFY(!service->connection());
    QCOMPARE(fixture.pointingPlot(1).curveCount(), 0);
}

void TestFrameLeaving::setupAndOverviewOpen()
{
    WindowFixture fixture(0);
    QVERIFY(fixture.open());
    const auto* overview = fixture.window().findChild<ConnectionOverviewDialog*>();
    QVERIFY(!overview->isVisible());
    fixture.find<QAction>("actionConfiguration")->trigger();
    QVERIFY(overview->isVisible());
    const auto* settings = fixture.window().findChild<SettingsDialog*>();
    QVERIFY(!settings->isVisible());
    fixture.find<QAction>("actionSetup")->trigger();
    QVERIFY(settings->isVisible());
}

void TestFrameLeaving::parametersAndRecordingOpenAndClose()
{
    WindowFixture fixture(0);
    QVERIFY(fixture.open());
    const auto* parameters = fixture.window().findChild<ParamsDialog*>();
    fixture.find<QAction>("actionOpenParams")->trigger();
    QVERIFY(parameters->isVisible());
    fixture.find<QAction>("actionCloseParams")->trigger();
    QVERIFY(!parameters->isVisible());

    const auto* recording = fixture.window().findChild<DataLoggerDialog*>();
    QVERIFY(fixture.type("samplingRateCounter", "321"));
    fixture.window().showDataloggerDialog();
    QVERIFY(recording->isVisible());
    QCOMPARE(recording->saveRate(), 321);
    fixture.window().closeDataloggerDialog();
    QVERIFY(!recording->isVisible());
    fixture.window().closeDataloggerDialog();
    QVERIFY(!recording->isVisible());
}

void TestFrameLeaving::serviceDialogNeedsAConnection()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    const auto* service = fixture.window().findChild<ServiceDialog*>();
    fixture.window().showServiceDialog();
    QVERIFY(!service->isVisible());
    QVERIFY(fixture.registerSystem(0));
    fixture.window().showServiceDialog();
    QVERIFY(service->isVisible());
    QCOMPARE(service->connection(), &fixture.connection());
}

void TestFrameLeaving::missingManualIsTold_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("software") << QByteArray("actionSoftware");
    QTest::newRow("hardware") << QByteArray("actionLumetra");
}

void TestFrameLeaving::missingManualIsTold()
{
    QFETCH(QByteArray, action);
    WindowFixture fixture;
    QVERIFY(fixture.open());
    const Desktop desktop;
    const BoxAnswers answers;
    fixture.find<QAction>(action.constData())->trigger();
    QCOMPARE(answers.titles(), QStringList{"File not found"});
    QCOMPARE(answers.texts(),
             QStringList{"Cannot open user manual.\n\n"
                         "Please check if the pdf file is in the program folder."});
    QVERIFY(desktop.opened.isEmpty());
}

void TestFrameLeaving::manualOpensFromTheProgramsFolder_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("software") << QByteArray("actionSoftware") << QByteArray(softwareManual);
    QTest::newRow("hardware") << QByteArray("actionLumetra") << QByteArray(hardwareManual);
}

void TestFrameLeaving::manualOpensFromTheProgramsFolder()
{
    QFETCH(QByteArray, action);
    QFETCH(QByteArray, file);
    WindowFixture fixture;
    QVERIFY(fixture.open());
    const ProgramFile manual(file.constData());
    const Desktop desktop;
    const BoxAnswers answers;
    fixture.find<QAction>(action.constData())->trigger();
    QCOMPARE(answers.count(), 0);
    QCOMPARE(desktop.opened.size(), 1);
    QCOMPARE(desktop.opened.first().toString(), "file://" + manual.path());
}

void TestFrameLeaving::failedOpeningIsTold()
{
    WindowFixture fixture;
    QVERIFY(fixture.open());
    const ProgramFile manual(softwareManual);
    const Desktop desktop(Desktop::Readers::Missing);
    const BoxAnswers answers;
    fixture.find<QAction>("actionSoftware")->trigger();
    QCOMPARE(answers.titles(), QStringList{"Error"});
    QCOMPARE(answers.texts(), QStringList{"Error with opening user manual"});
}

QTEST_MAIN(TestFrameLeaving)
#include "tst_frameleaving.moc"
