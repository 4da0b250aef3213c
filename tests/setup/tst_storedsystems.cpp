#include "dialogbench.h"
#include "records.h"
#include "setup/setupdocument.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QtTest>

using records::file;
using records::labelsIn;
using records::quietSerial;
using records::quietTcp;
using widgettest::click;
using widgettest::named;

class TestStoredSystems final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<DialogBench>(); }
    void cleanup();

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
    void thePointerTellsToWaitWhileALabelIsSent();
    void reconnectingMarksTheLine();
    void aReconnectThatFailsSaysSo();
    void anotherControllerIsRejectedOnReconnect();
    void disconnectingMarksTheLine();
    void aDisconnectThatFailsSaysSo();
    void deletingRemovesLineAndRecord();
    void aDeleteThatTheRegistryRefusesDoesNothing();
    void closingAllGoesUpTheSerialListAndThenTheOther();

private:
    void load(const QList<ConnectionSettings>& list)
    {
        bench->put(bench->defaultFile(), file(list));
        bench->dialog.loadConnection(QString());
    }

    std::unique_ptr<DialogBench> bench;
};

void TestStoredSystems::cleanup()
{
    bench.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestStoredSystems::aStoredSystemIsListedUnconnected()
{
    ConnectionSettings stored = quietTcp("AB000000001", "127.0.0.77", "arm");
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

void TestStoredSystems::aStoredSerialSystemIsFoundByItsIdentification()
{
    switches::autoSerialSearch = true;
    bench->found = {{"Zev other", "ttyUSB0", 115200, 1},
                    {records::idWithKey("AB000000001"), "ttyUSB7", 115200, 1}};
    load({quietSerial("AB000000001", "ttyUSB0", "a"), quietSerial("CD000000002", "ttyUSB1", "b")});
    QCOMPARE(bench->registry.calls, QStringList({"new ttyUSB7", "new ttyUSB1"}));
    QCOMPARE(bench->serialLines().at(0)->address(), QStringLiteral("ttyUSB7"));
    QCOMPARE(bench->registry.records.first().name.text(), QStringLiteral("ttyUSB7"));
    QCOMPARE(bench->registry.connections.front()->connectionType(), 0);
    QCOMPARE(bench->registry.connections.front()->portOrBaud(), 921600);
}

void TestStoredSystems::aSystemThatIsThereAlreadyIsSkipped()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->dialog.loadConnection(QString());
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QCOMPARE(bench->tcpLines().size(), 1);
    // After a read that fails the walk goes over the old records.
    bench->dialog.loadConnection(bench->path("none.xml"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading failed"));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QCOMPARE(bench->tcpLines().size(), 1);
}

void TestStoredSystems::aRepeatedSystemIsTakenOnce()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("AB000000001", "127.0.0.78", "b")});
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    // Records and connections stay one to one, or a save would mix them up.
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"a"}));
}

void TestStoredSystems::aStoredAddressThatIsNoneCanBeDeleted()
{
    ConnectionSettings bad = quietTcp("AB000000001", "nonsense", "a");
    bad.autoConnect = true;
    load({bad, quietTcp("CD000000002", "127.0.0.77", "b")});
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

void TestStoredSystems::aStoredAddressIsKeptAsTheConnectionWritesIt()
{
    load({quietTcp("AB000000001", " 127.0.0.77 ", "a")});
    QCOMPARE(bench->tcpLines().first()->address(), QStringLiteral("127.0.0.77"));
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    QVERIFY(bench->tcpLines().isEmpty());
}

void TestStoredSystems::badFilesFail_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << file({quietTcp("AB000000001", "127.0.0.77", "a")}).left(150);
    QTest::newRow("not XML") << QByteArray("no\n");
    QTest::newRow("other root") << QByteArray("<Root/>");
    QTest::newRow("no device") << QByteArray("<Zev_Lumetra/>");
    QTest::newRow("no identification")
        << QByteArray("<Zev_Lumetra><Device_A><Settings label=\"a\"/></Device_A></Zev_Lumetra>");
}

void TestStoredSystems::badFilesFail()
{
    QFETCH(QByteArray, content);
    bench->put(bench->path("bad.xml"), content);
    bench->dialog.loadConnection(bench->path("bad.xml"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Loading failed"));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Loading failed"));
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestStoredSystems::loadingTheDefaultFileIsSilent()
{
    QSignalSpy finished(&bench->dialog, &SettingsDialog::loadingFinished);
    QSignalSpy connecting(&bench->dialog, &SettingsDialog::connectingTo);
    bench->dialog.loadConnection(QString());
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Info"));
    QCOMPARE(finished.size(), 2);
    QCOMPARE(connecting.size(), 0);
}

void TestStoredSystems::loadClosesEverythingFirst()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->put(bench->path("other.xml"), file({quietTcp("CD000000002", "127.0.0.78", "b"),
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

void TestStoredSystems::loadWithoutAFileFailsAfterEverythingWasClosed()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
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

void TestStoredSystems::aCancelledLoadDoesNothing()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    widgettest::show(bench->dialog);
    bench->cancelFileDialog();
    QVERIFY(click(bench->child<QPushButton>("loadConnectionButton")));
    QCOMPARE(bench->registry.calls, QStringList({"new 127.0.0.77"}));
    QVERIFY(bench->child<QPushButton>("loadConnectionButton").isEnabled());
}

void TestStoredSystems::aConnectionThatDoesNotCloseStays()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->registry.closes = false;
    bench->dialog.closeAllConnections();
    QCOMPARE(bench->tcpLines().size(), 1);
}

void TestStoredSystems::savingWritesTheDefaultFile()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
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

void TestStoredSystems::savingFollowsTheShownOrder()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b"),
          quietTcp("EF000000003", "127.0.0.79", "c")});
    bench->registry.order = {1, 2, 0};
    for (int times = 0; times < 2; ++times) {
        bench->child<QPushButton>("saveConnectionButton").click();
        QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b", "c", "a"}));
    }
}

void TestStoredSystems::savingAsTakesTheChosenFile()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
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

void TestStoredSystems::aCancelledSaveDoesNothing()
{
    widgettest::show(bench->dialog);
    bench->cancelFileDialog();
    QVERIFY(click(bench->child<QPushButton>("saveAsConnectionButton")));
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->child<QPushButton>("saveAsConnectionButton").isEnabled());
}

void TestStoredSystems::savingWithoutConnectionsMakesARootOnly()
{
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(bench->contentOf(bench->defaultFile()),
             QByteArray("<!DOCTYPE SetupML>\n<Zev_Lumetra/>\n"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Connection setup saved"));
}

void TestStoredSystems::aSaveThatFailsSaysSo_data()
{
    QTest::addColumn<bool>("updates");
    QTest::newRow("the window's lists do not fit") << false;
    QTest::newRow("no file can be made") << true;
}

void TestStoredSystems::aSaveThatFailsSaysSo()
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

void TestStoredSystems::autoConnectReachesTheFile()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b")});
    named<QCheckBox>(*bench->tcpLines().at(1), "checkBoxAutoConnect").click();
    bench->child<QPushButton>("saveConnectionButton").click();
    const auto content = setupdocument::read(bench->contentOf(bench->defaultFile()));
    QVERIFY(content);
    QVERIFY(!content->records.at(0).autoConnect);
    QVERIFY(content->records.at(1).autoConnect);
}

void TestStoredSystems::aLabelIsPassedOn()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    QSignalSpy spy(&bench->dialog, &SettingsDialog::newLabel);
    QTest::keyClicks(&named<QLineEdit>(*bench->tcpLines().first(), "lineEdit"), "b");
    QCOMPARE(bench->registry.relabelled, QList<int>{0});
    QCOMPARE(bench->registry.connections.front()->label(), QStringLiteral("ab"));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first(), QList<QVariant>({"127.0.0.77", "ab"}));
}

void TestStoredSystems::thePointerTellsToWaitWhileALabelIsSent()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bool waits = false;
    bench->registry.whenRelabelled = [&waits] { waits = showsWaitPointer(); };
    QTest::keyClicks(&named<QLineEdit>(*bench->tcpLines().first(), "lineEdit"), "b");
    QVERIFY(waits);
    QVERIFY(!showsWaitPointer());
}

void TestStoredSystems::reconnectingMarksTheLine()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietSerial("CD000000002", "ttyUSB0", "b")});
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

void TestStoredSystems::aReconnectThatFailsSaysSo()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->registry.reconnects = false;
    bench->showWide();
    auto& button = named<QPushButton>(*bench->tcpLines().first(), "Button");
    QVERIFY(click(button));
    QCOMPARE(button.text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Could not establish connection."));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Could not establish connection."));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("reconnect 127.0.0.77"));
}

void TestStoredSystems::anotherControllerIsRejectedOnReconnect()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->registry.answeringId = records::idWithKey("XX000000009");
    bench->showWide();
    auto& button = named<QPushButton>(*bench->tcpLines().first(), "Button");
    QVERIFY(click(button));
    const QString text = "Could not establish connection. Controller ID mismatch.";
    QCOMPARE(bench->tcpInfo(), text);
    QCOMPARE(bench->serialInfo(), text);
    QCOMPARE(button.text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("reconnect 127.0.0.77"));
}

void TestStoredSystems::disconnectingMarksTheLine()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    ConnectionWidget& line = *bench->tcpLines().first();
    line.setConnected(true);
    bench->child<QLabel>("infoLabel2").setText("old");
    bench->showWide();
    QVERIFY(click(named<QPushButton>(line, "Button")));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("disconnect 127.0.0.77"));
    QCOMPARE(named<QPushButton>(line, "Button").text(), QStringLiteral("Reconnect"));
    QCOMPARE(bench->tcpInfo(), QString());
}

void TestStoredSystems::aDisconnectThatFailsSaysSo()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    ConnectionWidget& line = *bench->tcpLines().first();
    line.setConnected(true);
    bench->registry.disconnects = false;
    bench->dialog.on_WidgetDisconnect("127.0.0.77");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Could not disconnect."));
    QCOMPARE(bench->serialInfo(), QStringLiteral("Could not disconnect."));
    QCOMPARE(named<QPushButton>(line, "Button").text(), QStringLiteral("Disconnect"));
}

void TestStoredSystems::deletingRemovesLineAndRecord()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietTcp("CD000000002", "127.0.0.78", "b")});
    bench->showWide();
    QVERIFY(click(named<QPushButton>(*bench->tcpLines().first(), "deleteButton")));
    QCOMPARE(bench->registry.calls.last(), QStringLiteral("close 127.0.0.77"));
    QCOMPARE(bench->tcpLines().size(), 1);
    QCOMPARE(bench->tcpLines().first()->number(), records::idWithKey("CD000000002"));
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"b"}));
}

void TestStoredSystems::aDeleteThatTheRegistryRefusesDoesNothing()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a")});
    bench->registry.closes = false;
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    bench->dialog.deleteConnectionSlot("127.0.0.99");
    QCOMPARE(bench->tcpLines().size(), 1);
    bench->child<QPushButton>("saveConnectionButton").click();
    QCOMPARE(labelsIn(bench->contentOf(bench->defaultFile())), QStringList({"a"}));
}

void TestStoredSystems::closingAllGoesUpTheSerialListAndThenTheOther()
{
    load({quietTcp("AB000000001", "127.0.0.77", "a"), quietSerial("CD000000002", "ttyUSB0", "b"),
          quietTcp("EF000000003", "127.0.0.79", "c"), quietSerial("GH000000004", "ttyUSB1", "d")});
    bench->registry.calls.clear();
    bench->dialog.closeAllConnections();
    QCOMPARE(bench->registry.calls, QStringList({"close ttyUSB1", "close ttyUSB0",
                                                 "close 127.0.0.79", "close 127.0.0.77"}));
    QCOMPARE(bench->registry.dismissed,
             QStringList({"ttyUSB1", "ttyUSB0", "127.0.0.79", "127.0.0.77"}));
    QVERIFY(bench->tcpLines().isEmpty());
    QVERIFY(bench->serialLines().isEmpty());
    bench->child<QPushButton>("saveConnectionButton").click();
    QVERIFY(labelsIn(bench->contentOf(bench->defaultFile())).isEmpty());
}

QTEST_MAIN(TestStoredSystems)
#include "tst_storedsystems.moc"
