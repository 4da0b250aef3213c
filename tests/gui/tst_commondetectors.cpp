// Common detectors in the window. Nothing in it shows one yet.

#include "noticereader.h"
#include "plots/genericplot.h"
#include "support/scriptedconnection.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QDateTime>
#include <QLCDNumber>
#include <QtTest>

namespace {

void showCommonSamples(const WindowFixture& fixture)
{
    QVERIFY(QMetaObject::invokeMethod(&fixture.window(), "updateDataCommon", Qt::DirectConnection));
}

/// A displayed system whose controller is a script.
ScriptedConnection& registerSystem(const WindowFixture& fixture)
{
    auto made = std::make_unique<ScriptedConnection>();
    ScriptedConnection& connection = *made;
    if (!connection.startAndWait())
        qFatal("The thread of a connection does not start");
    fixture.window().newConnection(std::move(made), {});
    return connection;
}

/// What the application has no way to do.
void showCommonDetectorOf(const WindowFixture& fixture, const Connection& connection)
{
    const_cast<LiveSystems&>(fixture.window().liveSystems()).showCommon(&connection, true);
}

MeasureSample sampleNow()
{
    MeasureSample sample;
    sample.timeMs = quint64(QDateTime::currentMSecsSinceEpoch());
    sample.x1 = 1500;
    sample.y1 = -2500;
    return sample;
}

} // namespace

class TestCommonDetectors final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void samplesThatWaitReachThePlots();
    void systemThatStreamsOnIsHiddenWithoutANotice();
    void withoutACommonDetectorThePassLeavesTheStreams();
    void wishForACommonDetectorHasNoEffect();
};

void TestCommonDetectors::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestCommonDetectors::samplesThatWaitReachThePlots()
{
    WindowFixture fixture;
    QVERIFY(fixture.open());
    ScriptedConnection& connection = registerSystem(fixture);
    showCommonDetectorOf(fixture, connection);
    fixture.window().showConnection(connection.address(), false);
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(connection.isStreaming());

    connection.storeCommonSamples({sampleNow()});
    showCommonSamples(fixture);
    QCOMPARE(pointsOf(fixture.pointingPlot(1), 1), QVector<QPointF>{QPointF(1.5, -2.5)});
    QCOMPARE(pointsOf(fixture.positionPlot(1), 2).size(), 1);
    QCOMPARE(fixture.find<QLCDNumber>("lcd1x")->value(), 1.5);
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).isEmpty());
}

void TestCommonDetectors::systemThatStreamsOnIsHiddenWithoutANotice()
{
    WindowFixture fixture;
    QVERIFY(fixture.open());
    ScriptedConnection& connection = registerSystem(fixture);
    showCommonDetectorOf(fixture, connection);
    const NoticeReader reader;
    fixture.window().showConnection(connection.address(), false);
    QCOMPARE(reader.texts, QStringList());
    QVERIFY(!connection.controller().mnemonics().contains("CLS"));
}

void TestCommonDetectors::withoutACommonDetectorThePassLeavesTheStreams()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    const Connection& connection = fixture.connection();
    QVERIFY(waitWithoutEvents([&] { return connection.samplesStored() > 0; }));
    fixture.find<QAction>("clearAction")->trigger();
    showCommonSamples(fixture);
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).isEmpty());
    fixture.tick();
    QVERIFY(!pointsOf(fixture.pointingPlot(1), 0).isEmpty());
}

void TestCommonDetectors::wishForACommonDetectorHasNoEffect()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    const MainWindow& window = fixture.window();
    for (const bool show : {true, false}) {
        fixture.window().showConnectionCommonDetector(fixture.controller().address(), show);
        QVERIFY(window.liveSystems().common().isEmpty());
        QCOMPARE(window.shownConnections(), QList<int>{0});
    }
    QCOMPARE(fixture.controller().commands(), QByteArrayList());
}

QTEST_MAIN(TestCommonDetectors)
#include "tst_commondetectors.moc"
