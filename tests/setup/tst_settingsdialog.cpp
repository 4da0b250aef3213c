#include "dialogbench.h"
#include "records.h"
#include "setup/setupdocument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QtTest>

using widgettest::click;
using widgettest::named;

namespace {

ConnectionSettings quiet(const QString& key, const QString& address, const QString& label)
{
    ConnectionSettings record = records::tcp(key, label);
    record.autoConnect = false;
    record.name.set(address);
    return record;
}

ConnectionSettings quietSerial(const QString& key, const QString& port, const QString& label)
{
    ConnectionSettings record = records::serial(key, label);
    record.name.set(port);
    return record;
}

QByteArray file(const QList<ConnectionSettings>& list)
{
    return *setupdocument::withDetectors(setupdocument::connections(list), list);
}

QStringList labelsIn(const QByteArray& xml)
{
    QStringList labels;
    const auto content = setupdocument::read(xml);
    if (content) {
        for (const ConnectionSettings& record : content->records)
            labels.append(record.label.text());
    }
    return labels;
}

} // namespace

class TestSettingsDialog final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<DialogBench>(); }
    void cleanup();

    // How it comes.
    void itComesAsItIsLaidDown();
    void showingTakesItsSizeAndPlace();
    void showingClearsTheFieldsThatAreEnabled();
    void showingSearchesUnlessSwitchedOff();
    void infoLabelsAreHiddenUntilThereIsRoomForThem();
    void aTabGivesItsConnectButtonTheFocus();
    void enterConnectsInTheTabInFront();
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

    // Loading without connecting.
    void aStoredSystemIsListedUnconnected();
    void aStoredSerialSystemIsFoundByItsIdentification();
    void aSystemThatIsThereAlreadyIsSkipped();
    void aRepeatedSystemIsTakenOnce();
    void aStoredAddressThatIsNoneCanBeDeleted();
    void aStoredAddressIsKeptAsTheConnectionWritesIt();
    void badFilesFail_data();
    void badFilesFail();
    void loadingTheDefaultFileIsSilent();
    void loadClosesEverythingFirst();
    void loadWithoutAFileFailsAfterEverythingWasClosed();
    void aCancelledLoadDoesNothing();
    void aConnectionThatDoesNotCloseStays();

    // Saving.
    void savingWritesTheDefaultFile();
    void savingFollowsTheShownOrder();
    void savingAsTakesTheChosenFile();
    void aCancelledSaveDoesNothing();
    void savingWithoutConnectionsMakesARootOnly();
    void aSaveThatFailsSaysSo_data();
    void aSaveThatFailsSaysSo();
    void autoConnectReachesTheFile();

    // Lines.
    void aLabelIsPassedOn();
    void reconnectingMarksTheLine();
    void aReconnectThatFailsSaysSo();
    void anotherControllerIsRejectedOnReconnect();
    void disconnectingMarksTheLine();
    void aDisconnectThatFailsSaysSo();
    void deletingRemovesLineAndRecord();
    void aDeleteThatTheRegistryRefusesDoesNothing();
    void closingAllGoesFromTheLastToTheFirst();

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

void TestSettingsDialog::showingTakesItsSizeAndPlace()
{
    widgettest::show(bench->dialog);
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(bench->dialog.frameGeometry().height(), available.height());
    QVERIFY(available.contains(bench->dialog.frameGeometry()));
    QVERIFY(bench->dialog.width() <= bench->dialog.maximumWidth());
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
    bench->found = {{"Zev one", "ttyUSB0", "115200", "1"}, {"Zev two", "ttyUSB1", "921600", "0"}};
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
    bench->found = {{records::idWithKey("AB000000001"), "ttyUSB0", "115200", "1"},
                    {records::idWithKey("CD000000002"), "ttyUSB1", "115200", "1"},
                    {records::idWithKey("EF000000003"), "ttyUSB2", "115200", "1"}};
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
    load({quiet("AB000000001", "127.0.0.77", "a")});
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

void TestSettingsDialog::aStoredSystemIsListedUnconnected()
{
    ConnectionSettings stored = quiet("AB000000001", "127.0.0.77", "arm");
    stored.model = {2, 0};
    load({stored});
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QCOMPARE(bench->registry.statesWhenNew.first(), LinkState::NotConnected);
    QVERIFY(!bench->registry.runningWhenNew.first());
    QCOMPARE(bench->registry.connections.front()->label(), QStringLiteral("arm"));
    QCOMPARE(bench->registry.records.first().model[0], 2);
    QCOMPARE(bench->registry.records.first().serial.text(), QStringLiteral("AB000000001"));
    QCOMPARE(bench->tcpLines().size(), 1);
    const ConnectionWidget& line = *bench->tcpLines().first();
    QCOMPARE(line.number(), records::idWithKey("AB000000001"));
    QCOMPARE(line.address(), QStringLiteral("127.0.0.77"));
    QCOMPARE(named<QPushButton>(line, "Button").text(), QStringLiteral("Reconnect"));
    QVERIFY(!named<QCheckBox>(line, "checkBoxAutoConnect").isChecked());
    QVERIFY(bench->serialLines().isEmpty());
}

void TestSettingsDialog::aStoredSerialSystemIsFoundByItsIdentification()
{
    switches::autoSerialSearch = true;
    bench->found = {{"Zev other", "ttyUSB0", "115200", "1"},
                    {records::idWithKey("AB000000001"), "ttyUSB7", "115200", "1"}};
    load({quietSerial("AB000000001", "ttyUSB0", "a"), quietSerial("CD000000002", "ttyUSB1", "b")});
    QCOMPARE(bench->registry.calls, QStringList({"new ttyUSB7", "new ttyUSB1"}));
    QCOMPARE(bench->serialLines().at(0)->address(), QStringLiteral("ttyUSB7"));
    QCOMPARE(bench->registry.records.first().name.text(), QStringLiteral("ttyUSB7"));
    QCOMPARE(bench->registry.connections.front()->connectionType(), 0);
    QCOMPARE(bench->registry.connections.front()->portOrBaud(), 921600);
}

void TestSettingsDialog::aSystemThatIsThereAlreadyIsSkipped()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->dialog.loadConnection(QString());
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QCOMPARE(bench->tcpLines().size(), 1);
    // After a read that fails the walk goes over the old records.
    bench->dialog.loadConnection(bench->path("none.xml"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading failed"));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QCOMPARE(bench->tcpLines().size(), 1);
}

void TestSettingsDialog::aRepeatedSystemIsTakenOnce()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quiet("AB000000001", "127.0.0.78", "b")});
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    // Records and connections stay one to one, or a save would mix them up.
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"a"}));
}

void TestSettingsDialog::aStoredAddressThatIsNoneCanBeDeleted()
{
    ConnectionSettings bad = quiet("AB000000001", "nonsense", "a");
    bad.autoConnect = true;
    load({bad, quiet("CD000000002", "127.0.0.77", "b")});
    QCOMPARE(bench->registry.calls, QStringList({"new ", "new 127.0.0.77"}));
    QCOMPARE(bench->tcpLines().first()->address(), QStringLiteral("nonsense"));
    QVERIFY(!bench->registry.runningWhenNew.first());

    bench->dialog.deleteConnectionSlot("nonsense");
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("close "));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->registry.connections.size(), std::size_t(1));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b"}));
}

void TestSettingsDialog::aStoredAddressIsKeptAsTheConnectionWritesIt()
{
    load({quiet("AB000000001", " 127.0.0.77 ", "a")});
    QCOMPARE(bench->tcpLines().first()->address(), QStringLiteral("127.0.0.77"));
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    QVERIFY(bench->tcpLines().isEmpty());
}

void TestSettingsDialog::badFilesFail_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << file({quiet("AB000000001", "127.0.0.77", "a")}).left(150);
    QTest::newRow("not XML") << QByteArray("no\n");
    QTest::newRow("other root") << QByteArray("<Root/>");
    QTest::newRow("no device") << QByteArray("<Zev_Lumetra/>");
    QTest::newRow("no identification")
        << QByteArray("<Zev_Lumetra><Device_A><Settings label=\"a\"/></Device_A></Zev_Lumetra>");
}

void TestSettingsDialog::badFilesFail()
{
    QFETCH(QByteArray, content);
    bench->put(bench->path("bad.xml"), content);
    bench->dialog.loadConnection(bench->path("bad.xml"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading failed"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Loading failed"));
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestSettingsDialog::loadingTheDefaultFileIsSilent()
{
    QSignalSpy finished(&bench->dialog, &SettingsDialog::loadingFinished);
    QSignalSpy connecting(&bench->dialog, &SettingsDialog::connectingTo);
    bench->dialog.loadConnection(QString());
    load({quiet("AB000000001", "127.0.0.77", "a")});
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Info"));
    QCOMPARE(finished.size(), 2);
    QCOMPARE(connecting.size(), 0);
}

void TestSettingsDialog::loadClosesEverythingFirst()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->put(bench->path("other.xml"), file({quiet("CD000000002", "127.0.0.78", "b"),
                                               quietSerial("EF000000003", "ttyUSB0", "c")}));
    widgettest::show(bench->dialog);
    bench->chooseFile(bench->path("other.xml"));
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));

    QCOMPARE(bench->titleOfFileDialog, QStringLiteral("Load Connection Setup"));
    QCOMPARE(bench->modeOfFileDialog, QFileDialog::AcceptOpen);
    QCOMPARE(bench->registry.calls,
             QStringList({"new 127.0.0.77", "close 127.0.0.77", "new 127.0.0.78", "new ttyUSB0"}));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->tcpLines().first()->number(), records::idWithKey("CD000000002"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Loading was successful"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading successful"));
    QVERIFY(bench->child<QPushButton>("loadConnectionButton").isEnabled());
}

void TestSettingsDialog::loadWithoutAFileFailsAfterEverythingWasClosed()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    widgettest::show(bench->dialog);
    // The ending is added to what was chosen.
    bench->chooseFile(bench->path("none"));
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading failed"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Loading failed"));
    QVERIFY(bench->tcpLines().isEmpty());
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77", "close 127.0.0.77"}));
    QVERIFY(!QFile::exists(bench->path("none.xml")));
}

void TestSettingsDialog::aCancelledLoadDoesNothing()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    widgettest::show(bench->dialog);
    bench->cancelFileDialog();
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QVERIFY(bench->child<QPushButton>("loadConnectionButton").isEnabled());
}

void TestSettingsDialog::aConnectionThatDoesNotCloseStays()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->registry.closes = false;
    bench->dialog.closeAllConnections();
    QCOMPARE(bench->tcpLines().size(), 1);
}

void TestSettingsDialog::savingWritesTheDefaultFile()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    QVERIFY(QFile::remove(bench->defaultFile()));
    widgettest::show(bench->dialog);
    QVERIFY(click(bench->child<QPushButton>("saveConnectionButton")));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("update"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection setup saved"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Connection setup saved"));
    const QByteArray saved = bench->contentOf(bench->defaultFile());
    QCOMPARE(labelsIn(saved), QStringList({"a"}));
    for (const char* part : {"Settings", "DisplayColors", "Detector1", "Detector2", "General"})
        QVERIFY2(saved.contains(QByteArray("<") + part), part);
    QVERIFY(bench->child<QPushButton>("saveConnectionButton").isEnabled());
}

void TestSettingsDialog::savingFollowsTheShownOrder()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quiet("CD000000002", "127.0.0.78", "b"),
          quiet("EF000000003", "127.0.0.79", "c")});
    bench->registry.order = {1, 2, 0};
    for (int times = 0; times < 2; ++times) {
        bench->child<QPushButton>("saveConnectionButton").click();
        QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b", "c", "a"}));
    }
}

void TestSettingsDialog::savingAsTakesTheChosenFile()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    QVERIFY(QFile::remove(bench->defaultFile()));
    widgettest::show(bench->dialog);
    bench->chooseFile(bench->path("mine"));
    QVERIFY(click(bench->child<QPushButton>("saveAsConnectionButton")));
    QCOMPARE(bench->titleOfFileDialog, QStringLiteral("Save Connection Setup"));
    QCOMPARE(bench->modeOfFileDialog, QFileDialog::AcceptSave);
    QCOMPARE(labelsIn(bench->contentOf(bench->path("mine.xml"))), QStringList({"a"}));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection setup saved"));
    QVERIFY(!QFile::exists(bench->defaultFile()));

    // The chosen file is not remembered.
    QVERIFY(QFile::remove(bench->path("mine.xml")));
    QVERIFY(click(bench->child<QPushButton>("saveConnectionButton")));
    QVERIFY(QFile::exists(bench->defaultFile()));
    QVERIFY(!QFile::exists(bench->path("mine.xml")));
}

void TestSettingsDialog::aCancelledSaveDoesNothing()
{
    widgettest::show(bench->dialog);
    bench->cancelFileDialog();
    QVERIFY(click(bench->child<QPushButton>("saveAsConnectionButton")));
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->child<QPushButton>("saveAsConnectionButton").isEnabled());
}

void TestSettingsDialog::savingWithoutConnectionsMakesARootOnly()
{
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(bench->contentOf(bench->defaultFile()),
             QByteArray("<!DOCTYPE SetupML>\n<Zev_Lumetra/>\n"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection setup saved"));
}

void TestSettingsDialog::aSaveThatFailsSaysSo_data()
{
    QTest::addColumn<bool>("updates");
    QTest::newRow("the window's lists do not fit") << false;
    QTest::newRow("no file can be made") << true;
}

void TestSettingsDialog::aSaveThatFailsSaysSo()
{
    QFETCH(bool, updates);
    bench->registry.updates = updates;
    if (updates)
        QVERIFY(QDir().mkpath(bench->defaultFile()));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Error saving connection setup"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Error saving connection setup"));
    QVERIFY(!QFileInfo(bench->defaultFile()).isFile());
}

void TestSettingsDialog::autoConnectReachesTheFile()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quiet("CD000000002", "127.0.0.78", "b")});
    named<QCheckBox>(*bench->tcpLines().at(1), "checkBoxAutoConnect").click();
    bench->child<QPushButton>("saveConnectionButton").click();
    const auto content = setupdocument::read(bench->contentOf(bench->defaultFile()));
    QVERIFY(content);
    QVERIFY(!content->records.at(0).autoConnect);
    QVERIFY(content->records.at(1).autoConnect);
}

void TestSettingsDialog::aLabelIsPassedOn()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    QSignalSpy spy(&bench->dialog, &SettingsDialog::newLabel);
    QTest::keyClicks(&named<QLineEdit>(*bench->tcpLines().first(), "lineEdit"), "b");
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), QList<QVariant>({"127.0.0.77", "ab"}));
}

void TestSettingsDialog::reconnectingMarksTheLine()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quietSerial("CD000000002", "ttyUSB0", "b")});
    bench->registry.answeringId = records::idWithKey("AB000000001");
    bench->showWide();
    auto& button = named<QPushButton>(*bench->tcpLines().first(), "Button");
    QVERIFY(click(button));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("reconnect 127.0.0.77"));
    QCOMPARE(button.text(), QStringLiteral("Disconnect"));
    QCOMPARE(bench->tcpInfo(), QString());
    QCOMPARE(named<QPushButton>(*bench->serialLines().first(), "Button").text(),
             QStringLiteral("Reconnect"));
}

void TestSettingsDialog::aReconnectThatFailsSaysSo()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->registry.reconnects = false;
    bench->showWide();
    auto& button = named<QPushButton>(*bench->tcpLines().first(), "Button");
    QVERIFY(click(button));
    QCOMPARE(button.text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Could not establish connection."));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Could not establish connection."));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("reconnect 127.0.0.77"));
}

void TestSettingsDialog::anotherControllerIsRejectedOnReconnect()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->registry.answeringId = records::idWithKey("XX000000009");
    bench->showWide();
    auto& button = named<QPushButton>(*bench->tcpLines().first(), "Button");
    QVERIFY(click(button));
    const QString text = "Could not establish connection. Controller ID mismatch.";
    QCOMPARE(bench->tcpInfo(), text);
    QCOMPARE(bench->serialInfo(), text);
    QCOMPARE(button.text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("disconnect 127.0.0.77"));
}

void TestSettingsDialog::disconnectingMarksTheLine()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    ConnectionWidget& line = *bench->tcpLines().first();
    line.setConnected(true);
    bench->child<QLabel>("infoLabel2").setText("old");
    bench->showWide();
    QVERIFY(click(named<QPushButton>(line, "Button")));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("disconnect 127.0.0.77"));
    QCOMPARE(named<QPushButton>(line, "Button").text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->tcpInfo(), QString());
}

void TestSettingsDialog::aDisconnectThatFailsSaysSo()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    ConnectionWidget& line = *bench->tcpLines().first();
    line.setConnected(true);
    bench->registry.disconnects = false;
    bench->dialog.on_WidgetDisconnect("127.0.0.77");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Could not disconnect."));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Could not disconnect."));
    QCOMPARE(named<QPushButton>(line, "Button").text(), QStringLiteral("Disconnect"));
}

void TestSettingsDialog::deletingRemovesLineAndRecord()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quiet("CD000000002", "127.0.0.78", "b")});
    bench->showWide();
    QVERIFY(click(named<QPushButton>(*bench->tcpLines().first(), "deleteButton")));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("close 127.0.0.77"));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->tcpLines().first()->number(), records::idWithKey("CD000000002"));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b"}));
}

void TestSettingsDialog::aDeleteThatTheRegistryRefusesDoesNothing()
{
    load({quiet("AB000000001", "127.0.0.77", "a")});
    bench->registry.closes = false;
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    bench->dialog.deleteConnectionSlot("127.0.0.99");
    QCOMPARE(bench->tcpLines().size(), 1);
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"a"}));
}

void TestSettingsDialog::closingAllGoesFromTheLastToTheFirst()
{
    load({quiet("AB000000001", "127.0.0.77", "a"), quietSerial("CD000000002", "ttyUSB0", "b"),
          quiet("EF000000003", "127.0.0.79", "c"), quietSerial("GH000000004", "ttyUSB1", "d")});
    bench->registry.calls.clear();
    bench->dialog.closeAllConnections();
    QCOMPARE(bench->registry.calls, QStringList({"close ttyUSB1", "close ttyUSB0",
                                                 "close 127.0.0.79", "close 127.0.0.77"}));
    QVERIFY(bench->tcpLines().isEmpty());
    QVERIFY(bench->serialLines().isEmpty());
    bench->child<QPushButton>("saveConnectionButton").click();
    QVERIFY(labelsIn(bench->contentOf(bench->defaultFile())).isEmpty());
}

QTEST_MAIN(TestSettingsDialog)
#include "tst_settingsdialog.moc"
