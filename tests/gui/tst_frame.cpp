// What stands around the plots: menus, tool bar, names, texts and defaults.

#include "app/switches.h"
#include "plots/counter.h"
#include "plots/genericplot.h"
#include "support/logcapture.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QIcon>
#include <QLCDNumber>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTextDocument>
#include <QToolBar>
#include <QtTest>

namespace {

/// Texts of a menu's or menu bar's visible entries, "-" for separators.
QStringList visibleEntries(const QWidget& menu)
{
    QStringList texts;
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions) {
        if (action->isVisible())
            texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return texts;
}

QImage picture(const QString& file, const QSize& size)
{
    return QIcon(file).pixmap(size).toImage();
}

void addTexts(const QVector<QPair<const char*, const char*>>& texts)
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    for (const auto& row : texts)
        QTest::newRow(row.first) << QByteArray(row.first) << QString(row.second);
}

} // namespace

class TestFrame final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void titleSizeAndFlags();
    void menusHoldTheirEntries_data();
    void menusHoldTheirEntries();
    void serviceMenuAppearsInServiceModeOnly();
    void everythingThatIsShownIsOffered();
    void labelsHaveTheirTexts_data();
    void labelsHaveTheirTexts();
    void buttonsHaveTheirTexts_data();
    void buttonsHaveTheirTexts();
    void switchesStartRedAndDisabled();
    void lightsAreSmallAndRed();
    void readoutsAreGreenOnBlack();
    void toolBarIsFixedAtTheTop();
    void toolBarHoldsItsItemsInOrder();
    void countersHaveTheirRanges_data();
    void countersHaveTheirRanges();
    void theUpdateRateFollowsTheSamplingRate();
    void countersIgnoreTheWheelWithoutFocus();
    void onlyPointingModeCountsSamples();
    void startWaitsForASystem();
    void recordingLightIsRed();
    void constructionIsLogged();

private:
    std::unique_ptr<WindowFixture> fixture;
};

void TestFrame::initTestCase()
{
    fixture = std::make_unique<WindowFixture>();
    QVERIFY(fixture->open());
}

void TestFrame::cleanupTestCase()
{
    fixture.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestFrame::titleSizeAndFlags()
{
    const MainWindow& window = fixture->window();
    QCOMPARE(window.windowTitle(), QString("Zev Lumetra"));
    QCOMPARE(window.minimumSize(), QSize(600, 450));
    QCOMPARE(window.contextMenuPolicy(), Qt::NoContextMenu);
    // Qt adds the system menu to everything that has such buttons.
    const Qt::WindowFlags wanted = Qt::CustomizeWindowHint | Qt::WindowTitleHint
                                   | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint
                                   | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;
    QCOMPARE(window.windowFlags() & ~Qt::WindowType_Mask & ~Qt::WindowFullscreenButtonHint, wanted);
    QVERIFY(!window.windowIcon().isNull());
}

void TestFrame::menusHoldTheirEntries_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("entries");

    QTest::newRow("file") << QByteArray("menuFile") << "File" << QStringList{"Exit"};
    QTest::newRow("connection") << QByteArray("menuSerial_port") << "Connection"
                                << QStringList{"Connect / Settings", "System Configuration"};
    QTest::newRow("recording") << QByteArray("menuData_recording") << "Data recording"
                               << QStringList{"Open", "Close"};
    QTest::newRow("help") << QByteArray("menuWhats") << "?"
                          << QStringList{"User Manual", "About the Software"};
    QTest::newRow("manual") << QByteArray("menuUser_Manual") << "User Manual"
                            << QStringList{"Software", "Lumetra"};
    QTest::newRow("parameters") << QByteArray("menuParameters") << "Parameters"
                                << QStringList{"Open", "Close"};
    QTest::newRow("service") << QByteArray("menuService") << "Service"
                             << QStringList{"Operation Tests"};
    QTest::newRow("menu bar") << QByteArray("menubar") << QString()
                              << QStringList{"File", "Connection", "Data recording", "?"};
}

void TestFrame::menusHoldTheirEntries()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, title);
    const auto* menu = fixture->find<QWidget>(name.constData());
    QVERIFY(menu);
    QTEST(visibleEntries(*menu), "entries");
    QCOMPARE(menu->property("title").toString(), title);
}

void TestFrame::serviceMenuAppearsInServiceModeOnly()
{
    switches::serviceMode = true;
    WindowFixture service;
    const bool opened = service.open();
    switches::serviceMode = false;
    QVERIFY(opened);
    QCOMPARE(visibleEntries(*service.find<QMenuBar>("menubar")).last(), QString("Service"));
}

void TestFrame::everythingThatIsShownIsOffered()
{
    for (const char* name : {"actionExit", "actionSetup", "actionConfiguration", "actionSoftware",
                             "actionLumetra", "actionAbout_the_Software", "actionOpenDataLog",
                             "actionCloseDataLog", "actionOperation_Tests"})
        QVERIFY2(fixture->find<QAction>(name)->isEnabled(), name);
    for (const char* name : {"actionConnect", "actionDisconnect"})
        QVERIFY2(!fixture->find<QAction>(name)->isVisible(), name);
    QVERIFY(!fixture->find<QMenuBar>("menubar")->actions().contains(
        fixture->find<QMenu>("menuParameters")->menuAction()));
}

void TestFrame::labelsHaveTheirTexts_data()
{
    addTexts({{"xyLabel1", " [V]"},
              {"xyLabel2", " [V]"},
              {"xLabel1", "X [V]"},
              {"yLabel1", "Y [V]"},
              {"xLabel2", "X [V]"},
              {"yLabel2", "Y [V]"},
              {"label_42", "Position x [V]"},
              {"label_44", "Position y [V]"},
              {"label_17", "Position x [V]"},
              {"label_11", "Position y [V]"},
              {"label_43", "Intensity [V]"},
              {"label_14", "Intensity [V]"},
              {"x_axis_label", "x"},
              {"y_axis_label", "y "},
              {"i_axis_label", "I"},
              {"x_axis_label2", "x"},
              {"y_axis_label2", "y "},
              {"i_axis_label2", "I"},
              {"labelStage1", "Stage 1"},
              {"labelStage2", "Stage 2"},
              {"timeLabel1", "Time [s]"},
              {"timeLabel2", "Time [s]"},
              {"label_15", "Piezo range [V]"},
              {"label_16", "Piezo range [V]"},
              {"label_49", "Stabilization"},
              {"label_50", "Stabilization"},
              {"iLabel1", " [V]"},
              {"label_48", " [V]"},
              {"label_ActiveText", "Inactive"},
              {"label_ActiveText_2", "Inactive"},
              {"recordingText", "Data recording disabled"}});
}

void TestFrame::labelsHaveTheirTexts()
{
    QFETCH(QByteArray, name);
    QString text = fixture->find<QLabel>(name.constData())->text();
    if (Qt::mightBeRichText(text)) {
        QTextDocument document;
        document.setHtml(text);
        text = document.toPlainText();
    }
    QTEST(text, "text");
}

void TestFrame::buttonsHaveTheirTexts_data()
{
    addTexts({{"push_Stab1", "OFF"},
              {"push_Stab2", "OFF"},
              {"checkBox_Stats1", "   Show\n statistics"},
              {"checkBox_Stats2", "   Show\n statistics"},
              {"pushButton_Zoom1", "Reset zoom"},
              {"pushButton_Zoom2", "Reset zoom"},
              {"pushButton_Zoom3", "Reset zoom"},
              {"pushButton_Zoom4", "Reset zoom"},
              {"oscilloscopeRadio", "Oscilloscope"},
              {"pointingRadio", "Pointing mode"}});
}

void TestFrame::buttonsHaveTheirTexts()
{
    QFETCH(QByteArray, name);
    const auto* button = fixture->find<QAbstractButton>(name.constData());
    QTEST(button->text(), "text");
    if (name.startsWith("checkBox"))
        QVERIFY(!button->isEnabled() && !button->isChecked());
}

void TestFrame::switchesStartRedAndDisabled()
{
    for (const char* name : {"push_Stab1", "push_Stab2"}) {
        const auto* button = fixture->find<QPushButton>(name);
        QVERIFY(button->isCheckable() && !button->isChecked() && !button->isEnabled());
        QCOMPARE(button->palette().color(QPalette::Active, QPalette::Button), QColor("lightcoral"));
    }
}

void TestFrame::lightsAreSmallAndRed()
{
    for (const char* name : {"label_ActiveIcon", "label_ActiveIcon_2"}) {
        const auto* light = fixture->find<QLabel>(name);
        QCOMPARE(light->maximumSize(), QSize(13, 13));
        QCOMPARE(light->pixmap(Qt::ReturnByValue).toImage(),
                 picture(":/images/red_light.png", QSize(13, 13)));
    }
}

void TestFrame::readoutsAreGreenOnBlack()
{
    for (const char* name : {"lcd1x", "lcd1y", "lcd1i", "lcd2x", "lcd2y", "lcd2i"}) {
        const auto* readout = fixture->find<QLCDNumber>(name);
        QCOMPARE(readout->digitCount(), 7);
        QCOMPARE(readout->segmentStyle(), QLCDNumber::Flat);
        QCOMPARE(readout->value(), 0.0);
        QCOMPARE(readout->palette().color(QPalette::WindowText), QColor(Qt::green));
        QCOMPARE(readout->palette().color(QPalette::Window), QColor(Qt::black));
    }
}

void TestFrame::toolBarIsFixedAtTheTop()
{
    const auto* bar = fixture->find<QToolBar>("toolBar");
    QVERIFY(bar->inherits("Qor_ToolBar"));
    QCOMPARE(bar->allowedAreas(), Qt::TopToolBarArea);
    QVERIFY(!bar->isMovable());
    QVERIFY(!bar->isFloatable());
    QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QCOMPARE(bar->iconSize(), QSize(22, 22));
}

void TestFrame::toolBarHoldsItsItemsInOrder()
{
    // Wide enough for the large type of a screen without fonts of its own.
    const QSize usual = fixture->window().size();
    fixture->window().resize(1700, usual.height());
    const auto* bar = fixture->find<QToolBar>("toolBar");
    QTRY_COMPARE(bar->width(), 1700);
    QStringList names;
    int last = -1;
    const QList<QAction*> actions = bar->actions();
    for (QAction* action : actions) {
        const QWidget* widget = bar->widgetForAction(action);
        const QString name =
            action->objectName().isEmpty() ? widget->objectName() : action->objectName();
        if (name.isEmpty() || name == "qt_toolbar_ext_button")
            continue;
        names.append(name);
        QVERIFY2(widget->isVisible() && widget->x() > last, qPrintable(name));
        last = widget->x();
    }
    QCOMPARE(names,
             (QStringList{"startAction", "clearAction", "updateRateCounter", "samplingRateCounter",
                          "oscilloscopeRadio", "pointingRadio", "samplesToTakeCounter",
                          "recordingLight", "recordingText", "logo"}));
    QVERIFY(fixture->find<QAction>("startAction")->isCheckable());
    QVERIFY(!fixture->find<QAction>("clearAction")->isCheckable());
    QCOMPARE(fixture->find<QAction>("startAction")->text(), QString("Start"));
    QCOMPARE(fixture->find<QAction>("clearAction")->text(), QString("Clear"));
    QCOMPARE(fixture->find<QAction>("startAction")->icon().pixmap(22).toImage(),
             picture(":/images/go.xpm", QSize(22, 22)));
    QCOMPARE(fixture->find<QAction>("clearAction")->icon().pixmap(22).toImage(),
             picture(":/images/clear.png", QSize(22, 22)));
    QCOMPARE(fixture->find<QLabel>("logo")->maximumSize(), QSize(77, 30));
    // The stretch keeps the logo at the right end, 20 pixels from it.
    const auto* logo = fixture->find<QLabel>("logo");
    QVERIFY(bar->width() - logo->geometry().right() <= 20 + 10);
    fixture->window().resize(usual);
    QTRY_COMPARE(bar->width(), usual.width());
}

void TestFrame::countersHaveTheirRanges_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVector<int>>("numbers"); // lowest, highest, step, default

    QTest::newRow("update rate") << QByteArray("updateRateCounter") << "Update rate [Hz] "
                                 << QVector<int>{1, 430, 1, 100};
    QTest::newRow("sampling rate") << QByteArray("samplingRateCounter") << "Sampling rate [Hz] "
                                   << QVector<int>{1, 430, 1, 100};
    QTest::newRow("samples") << QByteArray("samplesToTakeCounter") << "Samples to take "
                             << QVector<int>{1, 10000000, 1000, 1000000};
}

void TestFrame::countersHaveTheirRanges()
{
    QFETCH(QByteArray, name);
    const auto* counter = fixture->find<Counter>(name.constData());
    const QSpinBox& box = *counter->spinBox;
    QTEST((QVector<int>{box.minimum(), box.maximum(), box.singleStep(), box.value()}), "numbers");
    QTEST(counter->findChild<QLabel*>()->text(), "text");
}

void TestFrame::theUpdateRateFollowsTheSamplingRate()
{
    const auto* update = fixture->find<Counter>("updateRateCounter");
    QCOMPARE(update->partner.data(), fixture->find<Counter>("samplingRateCounter"));
    QVERIFY(fixture->type("samplingRateCounter", "40"));
    QCOMPARE(update->spinBox->value(), 40);
    QVERIFY(fixture->type("samplingRateCounter", "300"));
    QCOMPARE(update->spinBox->value(), 100);
    QVERIFY(fixture->type("updateRateCounter", "350"));
    QCOMPARE(update->spinBox->value(), 300);
    QVERIFY(fixture->type("updateRateCounter", "100"));
    QVERIFY(fixture->type("samplingRateCounter", "100"));
    QCOMPARE(update->spinBox->value(), 100);
}

void TestFrame::countersIgnoreTheWheelWithoutFocus()
{
    QSpinBox& box = *fixture->find<Counter>("samplingRateCounter")->spinBox;
    const auto turn = [&box] {
        const QPoint centre = box.rect().center();
        QWheelEvent event(centre, box.mapToGlobal(centre), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&box, &event);
    };
    QApplication::setActiveWindow(&fixture->window());
    fixture->find<QPushButton>("pushButton_Zoom1")->setFocus();
    QVERIFY(!box.hasFocus());
    turn();
    QCOMPARE(box.value(), 100);
    box.setFocus();
    turn();
    QCOMPARE(box.value(), 101);
    QVERIFY(fixture->type("samplingRateCounter", "100"));
}

void TestFrame::onlyPointingModeCountsSamples()
{
    const auto* counter = fixture->find<Counter>("samplesToTakeCounter");
    QVERIFY(fixture->find<QRadioButton>("oscilloscopeRadio")->isChecked());
    QVERIFY(!counter->isEnabled());
    QVERIFY(fixture->click("pointingRadio"));
    QVERIFY(counter->isEnabled());
    QVERIFY(!fixture->find<QRadioButton>("oscilloscopeRadio")->isChecked());
    QVERIFY(fixture->click("oscilloscopeRadio"));
    QVERIFY(!counter->isEnabled());
}

void TestFrame::startWaitsForASystem()
{
    QVERIFY(!fixture->find<QAction>("startAction")->isEnabled());
    QVERIFY(fixture->find<QAction>("clearAction")->isEnabled());
    QVERIFY(!fixture->clickAction("startAction"));
}

void TestFrame::recordingLightIsRed()
{
    const auto* light = fixture->find<QLabel>("recordingLight");
    QCOMPARE(light->maximumSize(), QSize(22, 22));
    QVERIFY(light->hasScaledContents());
    QCOMPARE(light->pixmap(Qt::ReturnByValue).toImage(),
             picture(":/images/red_light.png", QSize(22, 22)));
}

void TestFrame::constructionIsLogged()
{
    WindowFixture other;
    LogCapture log;
    QVERIFY(other.open());
    const QStringList built = log.lines();
    QCOMPARE(built.indexOf("debug: Constructing main window"), 0);
    QVERIFY(built.contains("debug: Constructing ToolBar"));
    QVERIFY(built.contains("debug: Finished constructing main window"));
    QVERIFY(built.indexOf("debug: Constructing ToolBar")
            < built.indexOf("debug: Finished constructing main window"));
    log.clear();
    other.destroyWindow();
    QCOMPARE(log.lines().first(), QString("debug: Destroying main window"));
    QCOMPARE(log.lines().last(), QString("debug: Finished destroying main window"));
}

QTEST_MAIN(TestFrame)
#include "tst_frame.moc"
