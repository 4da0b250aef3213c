// What of the window follows the systems that are on the plots.

#include "dialogue.h"
#include "link/connection.h"
#include "noticereader.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "setup/connectionoverviewdialog.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QtTest>

namespace {

const char* const axisLabels[] = {"x_axis_label",  "y_axis_label",  "i_axis_label",
                                  "x_axis_label2", "y_axis_label2", "i_axis_label2"};

QList<QColor> labelColors(const WindowFixture& fixture)
{
    QList<QColor> colors;
    for (const char* label : axisLabels)
        colors.append(fixture.find<QLabel>(label)->palette().color(QPalette::WindowText));
    return colors;
}

QList<QColor> allOf(const QColor& color)
{
    return {color, color, color, color, color, color};
}

/// A desktop with light text on dark windows for as long as it lives.
class DarkDesktop final
{
public:
    static constexpr QColor text{QColor::Rgb, 0xffff, 0xeeee, 0xeeee, 0xeeee};

    DarkDesktop()
        : usual(QApplication::palette())
    {
        QPalette dark(QColor(48, 48, 48));
        dark.setColor(QPalette::WindowText, text);
        QApplication::setPalette(dark);
    }
    ~DarkDesktop() { QApplication::setPalette(usual); }
    DarkDesktop(const DarkDesktop&) = delete;
    DarkDesktop& operator=(const DarkDesktop&) = delete;

private:
    QPalette usual;
};

/// The check box that shows a system, in its row of the overview.
QAbstractButton& showBox(const WindowFixture& fixture, int number)
{
    constexpr int headerRows = 1;
    auto* list = fixture.window().findChild<ConnectionOverviewDialog*>()->findChild<QListWidget*>();
    QListWidgetItem* item = list->item(number + headerRows);
    list->scrollToItem(item);
    return *list->itemWidget(item)->findChild<QAbstractButton*>("showCheckBox");
}

} // namespace

class TestShownSystems final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void recolouringAHiddenSystemLeavesTheLabels();
    void showingAShownSystemAgainDoesNothing();
    void recordingNeedsAShownSystem();
    void labelsOfSeveralCanBeReadOnADarkDesktop();
    void theSystemBeyondFiftyIsNotShown();
    void hidingAnIdleSystemSaysThatItDisconnects();
    void hidingAStreamingSystemShowsNoNotice();
};

void TestShownSystems::recolouringAHiddenSystemLeavesTheLabels()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    fixture.window().showConnection(fixture.connection(1).address(), false);
    const QList<QColor> before = labelColors(fixture);
    QCOMPARE(before.first(), QColor(Qt::red));

    for (const int graph : {0, 1, 2})
        fixture.window().updateColorGraph(fixture.connection(1).address(), Qt::cyan, graph);
    QCOMPARE(labelColors(fixture), before);
    QCOMPARE(fixture.positionPlot(1).curveColor(2), QColor(Qt::cyan));

    fixture.window().updateColorGraph(fixture.connection(0).address(), Qt::yellow, 0);
    QCOMPARE(labelColors(fixture).first(), QColor(Qt::yellow));
}

void TestShownSystems::showingAShownSystemAgainDoesNothing()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QTRY_VERIFY(pointsOf(fixture.pointingPlot(1), 0).size() > 3);
    fixture.controller(0).clearWire();
    fixture.window().showConnection(fixture.connection(0).address(), true);
    QCOMPARE(fixture.window().shownConnections(), (QList<int>{0, 1}));
    QCOMPARE(fixture.controller(0).commands(), QByteArrayList());
    QVERIFY(pointsOf(fixture.pointingPlot(1), 0).size() > 3);
}

void TestShownSystems::recordingNeedsAShownSystem()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    const auto* recording = fixture.window().findChild<DataLoggerDialog*>();
    QVERIFY(!recording->isRecordingEnabled());
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(recording->isRecordingEnabled());
    QVERIFY(fixture.registerSystem(1));
    QVERIFY(recording->isRecordingEnabled());
    fixture.window().showConnection(fixture.connection(0).address(), false);
    QVERIFY(recording->isRecordingEnabled());
    fixture.window().showConnection(fixture.connection(1).address(), false);
    QVERIFY(!recording->isRecordingEnabled());
}

void TestShownSystems::labelsOfSeveralCanBeReadOnADarkDesktop()
{
    const DarkDesktop desktop;
    WindowFixture fixture(2);
    QVERIFY(fixture.open());
    QCOMPARE(labelColors(fixture), allOf(DarkDesktop::text));
    QVERIFY(fixture.registerSystem(0));
    QVERIFY(labelColors(fixture) != allOf(DarkDesktop::text));
    QVERIFY(fixture.registerSystem(1));
    QCOMPARE(labelColors(fixture), allOf(DarkDesktop::text));
}

void TestShownSystems::theSystemBeyondFiftyIsNotShown()
{
    constexpr int count = 51;
    emulator::ControllerOptions quiet;
    quiet.script = {emulator::PacketValues{}};
    WindowFixture fixture(count, quiet);
    QVERIFY(fixture.open());
    for (int i = 0; i < count; ++i)
        QVERIFY(fixture.registerSystem(i));
    QCOMPARE(fixture.window().shownConnections().size(), 50);
    fixture.tick();
    fixture.find<QAction>("actionConfiguration")->trigger();
    QVERIFY(showBox(fixture, 49).isChecked());
    QVERIFY(!showBox(fixture, 50).isChecked());

    // The tick is taken back.
    QVERIFY(user::click(&showBox(fixture, 50)));
    QCOMPARE(fixture.window().shownConnections().size(), 50);
    QVERIFY(!fixture.window().shownConnections().contains(50));
    fixture.tick();
    QVERIFY(!showBox(fixture, 50).isChecked());

    // With one hidden there is room for it.
    QVERIFY(user::click(&showBox(fixture, 0)));
    QVERIFY(user::click(&showBox(fixture, 50)));
    QVERIFY(!fixture.window().shownConnections().contains(0));
    QVERIFY(fixture.window().shownConnections().contains(50));
    fixture.tick();
    QVERIFY(showBox(fixture, 50).isChecked());
}

void TestShownSystems::hidingAnIdleSystemSaysThatItDisconnects()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    fixture.tick();
    const NoticeReader reader;
    showBox(fixture, 0).click();
    QVERIFY(fixture.window().shownConnections().isEmpty());
    QCOMPARE(reader.texts, QStringList("Disconnecting ..."));
    QVERIFY(reader.pointerWaited);
    QVERIFY(!NoticeReader::isShown());
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestShownSystems::hidingAStreamingSystemShowsNoNotice()
{
    WindowFixture fixture(1);
    QVERIFY(fixture.openWithSystems());
    QVERIFY(fixture.clickAction("startAction"));
    QVERIFY(fixture.connection().isStreaming());
    fixture.tick();
    const NoticeReader reader;
    showBox(fixture, 0).click();
    QVERIFY(fixture.window().shownConnections().isEmpty());
    QCOMPARE(reader.texts, QStringList());
}

QTEST_MAIN(TestShownSystems)
#include "tst_shownsystems.moc"
