// The parameter dialog in its window: who opens and closes it, and what the window has of it.

#include "link/connection.h"
#include "model/detectorpair.h"
#include "params/paramsdialog.h"
#include "plots/counter.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/overviewwidget.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

using emulator::on;

namespace {

ParamsDialog& parameters(const WindowFixture& fixture)
{
    return *fixture.window().findChild<ParamsDialog*>();
}

/// Presses "Parameters" in the overview's row of a system.
bool openByOverview(const WindowFixture& fixture, int index)
{
    fixture.find<QAction>("actionConfiguration")->trigger();
    auto& overview = *fixture.window().findChild<ConnectionOverviewDialog*>();
    if (!QTest::qWaitForWindowExposed(&overview))
        return false;
    // The row may need the place that the layout has not given it yet.
    QCoreApplication::processEvents();
    for (auto* row : overview.findChildren<OverviewWidget*>()) {
        if (row->connection() != &fixture.connection(index))
            continue;
        return user::click(row->findChild<QPushButton*>("parameterPushButton"))
               && QTest::qWaitForWindowExposed(&parameters(fixture));
    }
    return false;
}

bool clickAndWait(const ParamsDialog& dialog, const char* name)
{
    auto& button = in<QPushButton>(dialog, name);
    const auto isEnabled = [&] { return button.isEnabled(); };
    return QTest::qWaitFor(isEnabled) && user::click(&button) && QTest::qWaitFor(isEnabled);
}

/// Chooses the type of stage 1 as the keyboard does, its length, and applies both.
bool applyTypeInLength(const ParamsDialog& dialog, int type)
{
    auto& types = in<QComboBox>(dialog, "comboBox_DetecType");
    types.setFocus();
    while (types.currentIndex() < type)
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Down);
    return user::click(&in<QWidget>(dialog, "radioButtonPositionInLength"))
           && clickAndWait(dialog, "pushButtonApply");
}

} // namespace

class TestParameters final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void overviewOpensTheParametersOfItsSystem();
    void acquisitionGoesOnWhileTheDialogIsOpen();
    void appliedDetectorIsThatOfTheWindow();
    void streamThatFailsIsToldByTheWindow();
    void streamWithoutARateGetsThatOfTheToolBar();
    void dialogClosesWhenItsSystemIsDisconnected();
    void dialogClosesWhenItsSystemIsClosed();
    void dialogClosesWhenTheLinkIsLost();
    void windowClosesWithTheDialogOpen();
};

void TestParameters::overviewOpensTheParametersOfItsSystem()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.window().changeLabel(fixture.connection(1).address(), "second laser");
    QVERIFY(openByOverview(fixture, 1));
    QCOMPARE(in<QLabel>(parameters(fixture), "nameLabel").text(), QString("second laser"));
    QVERIFY(fixture.controller(1).count("GPF") > 0);
    QCOMPARE(fixture.controller(0).count("GPF"), 0);
}

void TestParameters::acquisitionGoesOnWhileTheDialogIsOpen()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(openByOverview(fixture, 0));
    QVERIFY(clickAndWait(parameters(fixture), "pushButtonApply"));
    QVERIFY(fixture.find<QAction>("startAction")->isChecked());
    const quint64 before = fixture.connection().samplesStored();
    QVERIFY(QTest::qWaitFor([&] { return fixture.connection().samplesStored() > before; }));
    // The tool bar is not blocked.
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(!fixture.find<QAction>("startAction")->isChecked());
    QVERIFY(parameters(fixture).isVisible());
}

void TestParameters::appliedDetectorIsThatOfTheWindow()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(openByOverview(fixture, 0));
    QVERIFY(applyTypeInLength(parameters(fixture), PsdDetector));
    const DetectorPair& detectors = *fixture.window().liveSystems().at(0).detectors;
    QCOMPARE(detectors[0]->typeCode(), int(PsdDetector));
    fixture.tick();
    const QString unit = fixture.find<QLabel>("xyLabel1")->text();
    QVERIFY2(unit.contains("mm"), qPrintable(unit));
}

void TestParameters::streamThatFailsIsToldByTheWindow()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(openByOverview(fixture, 0));
    QVERIFY(!fixture.find<QMessageBox>("streamErrorBox")->isVisible());
    fixture.controller().setRules({on("SLS").refuse()});
    QVERIFY(clickAndWait(parameters(fixture), "pushButtonRefresh"));
    QVERIFY(fixture.find<QMessageBox>("streamErrorBox")->isVisible());
}

void TestParameters::streamWithoutARateGetsThatOfTheToolBar()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.type("samplingRateCounter", "123"));
    fixture.connection().startStream(command::streamArgument(50));
    QByteArray reply;
    QVERIFY(fixture.connection().fetchReply(reply));
    QVERIFY(openByOverview(fixture, 0));
    QCOMPARE(fixture.controller().streamRate(), 123);
}

void TestParameters::dialogClosesWhenItsSystemIsDisconnected()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(openByOverview(fixture, 1));
    fixture.window().disconnectLink(&fixture.connection(0));
    QVERIFY(parameters(fixture).isVisible());
    fixture.window().disconnectLink(&fixture.connection(1));
    QVERIFY(!parameters(fixture).isVisible());
}

void TestParameters::dialogClosesWhenItsSystemIsClosed()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(openByOverview(fixture, 1));
    QVERIFY(fixture.window().closeConnection(&fixture.connection(0)));
    QVERIFY(parameters(fixture).isVisible());
    QVERIFY(clickAndWait(parameters(fixture), "pushButtonRefresh"));
    QVERIFY(fixture.window().closeConnection(&fixture.connection(0)));
    QVERIFY(!parameters(fixture).isVisible());
}

void TestParameters::dialogClosesWhenTheLinkIsLost()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.open());
    makeShortConnections(fixture);
    QVERIFY(connectByDialog(fixture, 0, "bench"));
    QVERIFY(openByOverview(fixture, 0));
    fixture.controller().closeConnection();
    QTRY_VERIFY(!parameters(fixture).isVisible());
}

void TestParameters::windowClosesWithTheDialogOpen()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(openByOverview(fixture, 0));
    fixture.window().close();
    fixture.destroyWindow();
    QVERIFY(!fixture.controller().isStreaming());
}

QTEST_MAIN(TestParameters)
#include "tst_parameters.moc"
