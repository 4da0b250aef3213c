// Systems of a setup file in the real window.

#include "app/switches.h"
#include "link/connection.h"
#include "plots/genericplot.h"
#include "setup/connectionoverviewdialog.h"
#include "setup/connectionwidget.h"
#include "setup/settings.h"
#include "setup/settingsdialog.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "tcptab.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QtTest>

#include <cmath>

namespace {

/// A system that no connection can be made to, as no network has such an address.
ConnectionSettings withoutAddress(const QString& name, const QString& key, const QString& label)
{
    ConnectionSettings record;
    record.type = ConnectionType::Tcp;
    record.name.set(name);
    record.label.set(label);
    record.id.set("Zev-V40-000000" + key + "-rest of the text");
    record.serial.set(key);
    return record;
}

QStringList registeredLabels(const WindowFixture& fixture)
{
    QStringList labels;
    for (const auto& connection : fixture.window().liveConnections())
        labels.append(connection->label());
    return labels;
}

void showTcpTab(const WindowFixture& fixture)
{
    fixture.find<QAction>("actionSetup")->trigger();
    in<QTabWidget>(settingsDialog(fixture), "tabWidget").setCurrentIndex(1);
}

/// Labels in the rows of the overview, which follows with the tick.
QStringList overviewLabels(const WindowFixture& fixture)
{
    fixture.tick();
    const auto& list =
        in<QListWidget>(*fixture.window().findChild<ConnectionOverviewDialog*>(), "listWidget");
    QStringList labels;
    for (int place = 1; place < list.count(); ++place)
        labels.append(in<QLabel>(*list.itemWidget(list.item(place)), "label").text());
    return labels;
}

/// When a controller got its label, which is the last thing of coming up; 0 if it got none.
qint64 labelledAtNs(const emulator::ControllerHandle& controller)
{
    const QVector<emulator::WireEvent> wire = controller.wire();
    for (const emulator::WireEvent& event : wire) {
        if (event.direction == emulator::WireEvent::FromHost && event.bytes.startsWith("SLA"))
            return event.timeNs;
    }
    return 0;
}

/// Presses "Save Settings". Labels of the systems of the file.
QStringList savedLabels(const WindowFixture& fixture)
{
    // The overview, which gives the order, follows with the tick.
    fixture.tick();
    if (!user::click(&in<QPushButton>(settingsDialog(fixture), "saveConnectionButton")))
        return {};
    Settings settings;
    QList<ConnectionSettings> records;
    if (!settings.read(QString()) || !settings.getList(records))
        return {};
    QStringList labels;
    for (const ConnectionSettings& record : qAsConst(records))
        labels.append(record.label.text());
    return labels;
}

} // namespace

class TestSetupFile final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void ofSystemsWithoutAnAddressTheRightOneIsDeleted_data();
    void ofSystemsWithoutAnAddressTheRightOneIsDeleted();
    void aLabelOfASystemWithoutAnAddressIsSaved();
    void impossibleDetectorDataLetTheWindowOpen_data();
    void impossibleDetectorDataLetTheWindowOpen();
    void rowsAndCurvesStandInTheOrderOfTheFileWhenTheFirstSystemIsLate();
    void closingTheWindowEndsALoad();
};

void TestSetupFile::ofSystemsWithoutAnAddressTheRightOneIsDeleted_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("the first") << 0 << QStringList({"two", "three"});
    QTest::newRow("the second") << 1 << QStringList({"one", "three"});
    QTest::newRow("the last") << 2 << QStringList({"one", "two"});
}

void TestSetupFile::ofSystemsWithoutAnAddressTheRightOneIsDeleted()
{
    QFETCH(int, line);
    QFETCH(QStringList, left);
    WindowFixture fixture;
    // Two of them do not even differ in what is stored.
    QVERIFY(fixture.writeSetupFile({withoutAddress("nowhere", "AB000000001", "one"),
                                    withoutAddress("somewhere", "CD000000002", "two"),
                                    withoutAddress("nowhere", "EF000000003", "three")}));
    QVERIFY(fixture.open());
    showTcpTab(fixture);
    QVERIFY(clickInLine(fixture, line, "deleteButton"));
    QCOMPARE(registeredLabels(fixture), left);
    QCOMPARE(fixture.window().liveStatuses().size(), left.size());
    QCOMPARE(savedLabels(fixture), left);
}

void TestSetupFile::aLabelOfASystemWithoutAnAddressIsSaved()
{
    WindowFixture fixture;
    QVERIFY(fixture.writeSetupFile({withoutAddress("nowhere", "AB000000001", "one"),
                                    withoutAddress("somewhere", "CD000000002", "two")}));
    QVERIFY(fixture.open());
    showTcpTab(fixture);
    QTest::keyClicks(&in<QLineEdit>(line(fixture, 1), "lineEdit"), "_b");
    QCOMPARE(savedLabels(fixture), QStringList({"one", "two_b"}));
}

void TestSetupFile::impossibleDetectorDataLetTheWindowOpen_data()
{
    QTest::addColumn<QByteArray>("attributes");
    for (const char* attributes :
         {R"(model="6" beamDiameter="nan")", R"(model="-1" beamDiameter="inf")",
          R"(model="2147483647" beamDiameter="-3")", ""})
        QTest::newRow(attributes) << QByteArray(attributes);
}

void TestSetupFile::impossibleDetectorDataLetTheWindowOpen()
{
    QFETCH(QByteArray, attributes);
    WindowFixture fixture(1);
    const ConnectionSettings record = fixture.record();
    QFile file(switches::configDir.filePath("ConnectionSetup.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString key = record.serial.text();
    file.write(QString("<Zev_Lumetra><Device_%1><Settings name=\"%2\" type=\"1\" label=\"bench\""
                       " id=\"%3\" autoConnect=\"1\" port=\"%4\"/>"
                       "<Detector1 calculation=\"1\" %5/><Detector2 calculation=\"1\" %5/>"
                       "<General pulsedLaser=\"0\"/></Device_%1></Zev_Lumetra>")
                   .arg(key, record.name.text(), record.id.text())
                   .arg(record.baudRateOrPort)
                   .arg(QString::fromLatin1(attributes))
                   .toUtf8());
    file.close();

    QVERIFY(fixture.open());
    QCOMPARE(registeredLabels(fixture), QStringList("bench"));
    QVERIFY(fixture.connection().isConnected());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.tickUntil([&] { return pointsOf(fixture.positionPlot(1), 0).size() > 3; }));
    const QVector<QPointF> points = pointsOf(fixture.positionPlot(1), 0);
    for (const QPointF& point : points)
        QVERIFY(std::isfinite(point.y()));
}

void TestSetupFile::rowsAndCurvesStandInTheOrderOfTheFileWhenTheFirstSystemIsLate()
{
    WindowFixture fixture;
    emulator::ControllerOptions slow;
    constexpr int lateMs = 500;
    slow.faults.lateMs = {{"GID", lateMs}};
    fixture.addController(slow);
    fixture.addController();
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1)}));
    QVERIFY(fixture.open());
    const QStringList labels{"System_1", "System_2"};
    QCOMPARE(registeredLabels(fixture), labels);
    QCOMPARE(overviewLabels(fixture), labels);
    QCOMPARE(fixture.window().shownConnections(), QList<int>({0, 1}));
    QVERIFY(labelledAtNs(fixture.controller(1)) > 0);
    QVERIFY(labelledAtNs(fixture.controller(1)) < labelledAtNs(fixture.controller(0)));
}

void TestSetupFile::closingTheWindowEndsALoad()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1)}));
    fixture.controller(0).stopListening();
    fixture.controller(1).stopListening();
    QVERIFY(fixture.open());
    SettingsDialog& dialog = settingsDialog(fixture);
    dialog.closeAllConnections();
    QStringList tried;
    connect(&dialog, &SettingsDialog::connectingTo, this, [&](const QString& label) {
        tried.append(label);
        QTimer::singleShot(0, &fixture.window(), &QWidget::close);
    });
    dialog.loadConnection(QString());
    QVERIFY(!fixture.window().isVisible());
    QVERIFY(fixture.window().liveConnections().empty());
    QCOMPARE(tried, QStringList("System_1"));
}

QTEST_MAIN(TestSetupFile)
#include "tst_setupfile.moc"
