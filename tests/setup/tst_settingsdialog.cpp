#include "dialogbench.h"
#include "records.h"
#include "setup/setupdocument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QtTest>

using records::file;
using records::quietSerial;
using records::quietTcp;
using widgettest::click;
using widgettest::named;

class TestSettingsDialog final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<DialogBench>(); }
    void cleanup();

    // How it comes.
    void itComesAsItIsLaidDown();
    void showingTakesItsSizeAndPlace_data();
    void showingTakesItsSizeAndPlace();
    void showingClearsTheFieldsThatAreEnabled();
    void showingSearchesUnlessSwitchedOff();
    void infoLabelsAreHiddenUntilThereIsRoomForThem();
    void aTabGivesItsConnectButtonTheFocus();
    void enterConnectsInTheTabInFront();
    void tabFollowsTheEye();
    void closeAndEscapeClose();
    void labelsTakeLettersDigitsAndUnderscoreOnly_data();
    void labelsTakeLettersDigitsAndUnderscoreOnly();

    // The serial tab.
    void theSearchFillsTheDeviceBox();
    void theSearchIsToldWhatToTry();
    void onlyTheLastLineHidesItsDevice();
    void aSerialLabelIsNeeded();
    void aSerialDeviceIsNeeded();
    void changingASerialFieldClearsTheMessage();

    // TCP fields.
    void emptyTcpFieldsAreMarkedWithoutAWord_data();
    void emptyTcpFieldsAreMarkedWithoutAWord();
    void aPortThatIsNoneIsRefused_data();
    void aPortThatIsNoneIsRefused();
    void anAddressThatIsNoneIsRefused_data();
    void anAddressThatIsNoneIsRefused();
    void anAddressInUseIsRefused_data();
    void anAddressInUseIsRefused();
    void editingAFieldClearsItsMark();

private:
    void load(const QList<ConnectionSettings>& list)
    {
        bench->put(bench->defaultFile(), file(list));
        bench->dialog.loadConnection(QString());
    }

    std::unique_ptr<DialogBench> bench;
};

void TestSettingsDialog::cleanup()
{
    bench.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestSettingsDialog::itComesAsItIsLaidDown()
{
    QCOMPARE(bench->dialog.windowTitle(), QStringLiteral("Connection settings"));
    auto& tabs = bench->child<QTabWidget>("tabWidget");
    QCOMPARE(tabs.count(), 2);
    QCOMPARE(tabs.tabText(0), QStringLiteral("Serial"));
    QCOMPARE(tabs.tabText(1), QStringLiteral("TCP/IP"));
    const QMap<QString, QString> buttons{{"saveAsConnectionButton", "Save Settings As"},
                                         {"saveConnectionButton", "Save Settings"},
                                         {"loadConnectionButton", "Load Settings"},
                                         {"closeButton", "Close"},
                                         {"rescanButton", "Scan"},
                                         {"connectSerialButton", "Connect"},
                                         {"connectTcpButton", "Connect"}};
    for (auto it = buttons.cbegin(); it != buttons.cend(); ++it)
        QCOMPARE(bench->child<QPushButton>(it.key()).text(), it.value());
    auto& rates = bench->child<QComboBox>("baudrateComboBox");
    QCOMPARE(rates.count(), 2);
    QCOMPARE(rates.itemData(0).toInt(), 115200);
    QCOMPARE(rates.itemText(1), QStringLiteral("921600"));
}

void TestSettingsDialog::showingTakesItsSizeAndPlace_data()
{
    QTest::addColumn<int>("spareWidth");
    QTest::newRow("wider than the screen") << -50;
    QTest::newRow("narrower than the screen") << 50;
}

void TestSettingsDialog::showingTakesItsSizeAndPlace()
{
    QFETCH(int, spareWidth);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    const int maximum = available.width() - spareWidth;
    bench->dialog.setMaximumWidth(maximum);
    QVERIFY(bench->dialog.minimumSizeHint().width() < qMin(maximum, available.width()));
    widgettest::show(bench->dialog);
    const int border = bench->dialog.frameGeometry().width() - bench->dialog.width();
    QCOMPARE(bench->dialog.width(), qMin(maximum, available.width() - border));
    QCOMPARE(bench->dialog.frameGeometry().height(), available.height());
    QVERIFY(available.contains(bench->dialog.frameGeometry()));
    const QPoint middle = bench->dialog.frameGeometry().center();
    QVERIFY((middle - available.center()).manhattanLength() <= 2);
}

void TestSettingsDialog::showingClearsTheFieldsThatAreEnabled()
{
    bench->fillTcp("127.0.0.1", "12", "label");
    bench->child<QLineEdit>("serialPortLabel_2").setText("other");
    bench->child<QLineEdit>("labelTcpEdit").setEnabled(false);
    widgettest::show(bench->dialog);
    QCOMPARE(bench->child<QLineEdit>("addressTcpEdit").text(), QString());
    QCOMPARE(bench->child<QLineEdit>("serialPortLabel_2").text(), QString());
    QCOMPARE(bench->child<QLineEdit>("labelTcpEdit").text(), QStringLiteral("label"));
    QCOMPARE(bench->child<QLineEdit>("portLineEdit").text(), QStringLiteral("12"));
}

void TestSettingsDialog::showingSearchesUnlessSwitchedOff()
{
    widgettest::show(bench->dialog);
    QCOMPARE(bench->searches.size(), 0);
    QVERIFY(click(bench->child<QPushButton>("closeButton")));
    switches::autoSerialSearch = true;
    widgettest::show(bench->dialog);
    QCOMPARE(bench->searches.size(), 1);
}

void TestSettingsDialog::infoLabelsAreHiddenUntilThereIsRoomForThem()
{
    widgettest::show(bench->dialog);
    auto& info = bench->child<QLabel>("infoLabel2");
    QVERIFY(!info.isVisible());
    const int listTop = bench->child<QListWidget>("listWidgetTcp").y();
    bench->dialog.resizeSmall();
    QVERIFY(info.isVisible());
    QCOMPARE(info.text(), QString());
    QVERIFY(!bench->child<QLabel>("infoLabel").isHidden());
    QCoreApplication::processEvents();
    QCOMPARE(bench->child<QListWidget>("listWidgetTcp").y(), listTop);
}

void TestSettingsDialog::aTabGivesItsConnectButtonTheFocus()
{
    widgettest::show(bench->dialog);
    auto& tabs = bench->child<QTabWidget>("tabWidget");
    tabs.setCurrentIndex(0);
    QVERIFY(bench->child<QPushButton>("connectSerialButton").hasFocus());
    tabs.setCurrentIndex(1);
    QVERIFY(bench->child<QPushButton>("connectTcpButton").hasFocus());
}

void TestSettingsDialog::enterConnectsInTheTabInFront()
{
    widgettest::show(bench->dialog);
    QTest::keyClick(&bench->child<QLineEdit>("addressTcpEdit"), Qt::Key_Return);
    QCOMPARE(bench->child<QLineEdit>("labelTcpEdit").styleSheet(), QString(redBorder));
    QCOMPARE(bench->serialInfo(), QString());
    bench->child<QTabWidget>("tabWidget").setCurrentIndex(0);
    QTest::keyClick(&bench->child<QLineEdit>("serialPortLabel_2"), Qt::Key_Return);
    QCOMPARE(bench->serialInfo(), QStringLiteral("Please insert a label"));
}

void TestSettingsDialog::tabFollowsTheEye()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietSerial("CD000000002", "ttyUSB0", "b"),
          quietTcp("EF000000003", "127.0.0.79", "c")});
    bench->showWide();
    bench->child<QLineEdit>("addressTcpEdit").setFocus();
    QStringList visited;
    for (int i = 0; i < 20 && visited.value(visited.size() - 1) != "closeButton"; ++i) {
        visited.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QStringList ofALine{"lineEdit", "Button", "checkBoxAutoConnect", "deleteButton"};
    QCOMPARE(visited,
             QStringList({"addressTcpEdit", "portLineEdit", "labelTcpEdit", "connectTcpButton"})
                 + ofALine + ofALine
                 + QStringList({"saveAsConnectionButton", "saveConnectionButton",
                                "loadConnectionButton", "closeButton"}));
}

void TestSettingsDialog::closeAndEscapeClose()
{
    widgettest::show(bench->dialog);
    QVERIFY(click(bench->child<QPushButton>("closeButton")));
    QVERIFY(!bench->dialog.isVisible());
    widgettest::show(bench->dialog);
    QTest::keyClick(&bench->dialog, Qt::Key_Escape);
    QVERIFY(!bench->dialog.isVisible());
}

void TestSettingsDialog::labelsTakeLettersDigitsAndUnderscoreOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("serial") << "serialPortLabel_2";
    QTest::newRow("TCP") << "labelTcpEdit";
}

void TestSettingsDialog::labelsTakeLettersDigitsAndUnderscoreOnly()
{
    QFETCH(QString, name);
    auto& edit = bench->child<QLineEdit>(name);
    QTest::keyClicks(&edit, "a B-7_.\t");
    edit.insert(QString::fromUtf8("ä"));
    QCOMPARE(edit.text(), QStringLiteral("aB7_"));
    // A longer one would not fit the record.
    edit.clear();
    QTest::keyClicks(&edit, QString(70, 'w'));
    QCOMPARE(edit.text().size(), 63);
}

void TestSettingsDialog::theSearchFillsTheDeviceBox()
{
    auto& box = bench->child<QComboBox>("serialPortInfoListBox");
    box.addItem("old");
    bench->found = {{"Zev one", "ttyUSB0", 115200, 1}, {"Zev two", "ttyUSB1", 921600, 0}};
    widgettest::show(bench->dialog);
    bench->child<QTabWidget>("tabWidget").setCurrentIndex(0);
    QVERIFY(click(bench->child<QPushButton>("rescanButton")));
    QCOMPARE(box.count(), 2);
    QCOMPARE(box.itemText(0), QStringLiteral("Zev one"));
    QCOMPARE(box.itemText(1), QStringLiteral("Zev two"));
}

void TestSettingsDialog::theSearchIsToldWhatToTry()
{
    switches::autoSerialSearch = true;
    bench->dialog.loadConnection(QString());
    switches::anySerialDevice = true;
    bench->dialog.loadConnection(QString());
    switches::autoSerialSearch = false;
    bench->dialog.loadConnection(QString());
    QCOMPARE(bench->searches, (QList<QPair<bool, bool>>{{false, false}, {false, true}}));
}

void TestSettingsDialog::onlyTheLastLineHidesItsDevice()
{
    load({quietSerial("AB000000001", "ttyUSB0", "a"), quietSerial("CD000000002", "ttyUSB1", "b")});
    bench->found = {{records::idWithKey("AB000000001"), "ttyUSB0", 115200, 1},
                    {records::idWithKey("CD000000002"), "ttyUSB1", 115200, 1},
                    {records::idWithKey("EF000000003"), "ttyUSB2", 115200, 1}};
    bench->child<QPushButton>("rescanButton").click();
    auto& box = bench->child<QComboBox>("serialPortInfoListBox");
    QCOMPARE(box.count(), 2);
    QCOMPARE(box.itemText(0), records::idWithKey("AB000000001"));
    QCOMPARE(box.itemText(1), records::idWithKey("EF000000003"));
}

void TestSettingsDialog::aSerialLabelIsNeeded()
{
    widgettest::show(bench->dialog);
    bench->child<QTabWidget>("tabWidget").setCurrentIndex(0);
    QVERIFY(click(bench->child<QPushButton>("connectSerialButton")));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Please insert a label"));
    QVERIFY(bench->child<QLabel>("infoLabel").isVisible());
    QCOMPARE(bench->child<QLineEdit>("serialPortLabel_2").styleSheet(), QString(redBorder));

    QTest::keyClicks(&bench->child<QLineEdit>("serialPortLabel_2"), "x");
    QCOMPARE(bench->serialInfo(), QString());
    QCOMPARE(bench->child<QLineEdit>("serialPortLabel_2").styleSheet(), QString());
}

void TestSettingsDialog::aSerialDeviceIsNeeded()
{
    widgettest::show(bench->dialog);
    bench->child<QTabWidget>("tabWidget").setCurrentIndex(0);
    QTest::keyClicks(&bench->child<QLineEdit>("serialPortLabel_2"), "x");
    QVERIFY(click(bench->child<QPushButton>("connectSerialButton")));
    QCOMPARE(bench->serialInfo(), QStringLiteral("No device available"));
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSettingsDialog::changingASerialFieldClearsTheMessage()
{
    bench->child<QLabel>("infoLabel").setText("message");
    bench->child<QComboBox>("baudrateComboBox").setCurrentIndex(1);
    QCOMPARE(bench->serialInfo(), QString());
    bench->child<QLabel>("infoLabel").setText("message");
    bench->child<QComboBox>("serialPortInfoListBox").addItem("device");
    QCOMPARE(bench->serialInfo(), QString());
}

void TestSettingsDialog::emptyTcpFieldsAreMarkedWithoutAWord_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("marked");
    QTest::newRow("label") << "127.0.0.1"
                           << ""
                           << "labelTcpEdit";
    QTest::newRow("both") << ""
                          << ""
                          << "labelTcpEdit";
    QTest::newRow("address") << ""
                             << "x"
                             << "addressTcpEdit";
}

void TestSettingsDialog::emptyTcpFieldsAreMarkedWithoutAWord()
{
    QFETCH(QString, address);
    QFETCH(QString, label);
    QFETCH(QString, marked);
    widgettest::show(bench->dialog);
    bench->fillTcp(address, "", label);
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    for (const char* name : {"labelTcpEdit", "addressTcpEdit", "portLineEdit"})
        QCOMPARE(bench->child<QLineEdit>(name).styleSheet(),
                 name == marked ? QString(redBorder) : QString());
    const QLabel& info = bench->child<QLabel>("infoLabel2");
    QVERIFY(info.text().isEmpty() || !info.isVisible());
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSettingsDialog::aPortThatIsNoneIsRefused_data()
{
    QTest::addColumn<QString>("port");
    QTest::newRow("letters") << "abc";
    QTest::newRow("negative") << "-1";
    QTest::newRow("fraction") << "20.5";
    QTest::newRow("too long for a number") << "9999999999";
    QTest::newRow("blank") << " ";
}

void TestSettingsDialog::aPortThatIsNoneIsRefused()
{
    QFETCH(QString, port);
    widgettest::show(bench->dialog);
    bench->fillTcp("127.0.0.1", port, "x");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Port needs to be a positive natural number"));
    QCOMPARE(bench->child<QLineEdit>("portLineEdit").styleSheet(), QString(redBorder));
    QVERIFY(bench->child<QLabel>("infoLabel2").isVisible());
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSettingsDialog::anAddressThatIsNoneIsRefused_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("port");
    QTest::newRow("a name") << "localhost"
                            << "2000";
    QTest::newRow("too many numbers") << "127.0.0.1.5"
                                      << "2000";
    QTest::newRow("number too high") << "127.0.0.256"
                                     << "2000";
    QTest::newRow("port too high") << "127.0.0.1"
                                   << "65536";
    QTest::newRow("blank") << " "
                           << "2000";
}

void TestSettingsDialog::anAddressThatIsNoneIsRefused()
{
    QFETCH(QString, address);
    QFETCH(QString, port);
    widgettest::show(bench->dialog);
    bench->fillTcp(address, port, "x");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Please check the connection parameters"));
    QCOMPARE(bench->child<QLineEdit>("addressTcpEdit").styleSheet(), QString(redBorder));
    QCOMPARE(bench->child<QLineEdit>("labelTcpEdit").text(), QStringLiteral("x"));
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->tcpLines().isEmpty());
}

void TestSettingsDialog::anAddressInUseIsRefused_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("the same text") << "127.0.0.77";
    QTest::newRow("written otherwise") << " 127.0.0.77 ";
}

void TestSettingsDialog::anAddressInUseIsRefused()
{
    QFETCH(QString, typed);
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    widgettest::show(bench->dialog);
    bench->fillTcp(typed, "", "x");
    QVERIFY(click(bench->child<QPushButton>("connectTcpButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection already exists."));
    QCOMPARE(bench->child<QLineEdit>("addressTcpEdit").styleSheet(), QString(redBorder));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
}

void TestSettingsDialog::editingAFieldClearsItsMark()
{
    widgettest::show(bench->dialog);
    for (const char* name : {"addressTcpEdit", "labelTcpEdit", "portLineEdit"}) {
        auto& edit = bench->child<QLineEdit>(name);
        edit.setStyleSheet(redBorder);
        bench->child<QLabel>("infoLabel2").setText("message");
        QTest::keyClicks(&edit, "1");
        QCOMPARE(edit.styleSheet(), QString());
        QCOMPARE(bench->tcpInfo(), QString());
    }
}

QTEST_MAIN(TestSettingsDialog)
#include "tst_settingsdialog.moc"
