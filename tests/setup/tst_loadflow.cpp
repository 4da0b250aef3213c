// The flow that makes the systems of a setup file, without a form and without a controller.

#include "flowbench.h"
#include "records.h"
#include "setup/connectionwidget.h"
#include "setup/loadflow.h"

#include <QCheckBox>
#include <QtTest>

using records::file;
using records::quietSerial;
using records::quietTcp;

class TestLoadFlow final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aMarkedSystemIsConnectedAndKept();
    void anUnmarkedSystemIsOnlyListed();
    void aSystemThatDoesNotAnswerIsListedAndDown();
    void recordDecidesTheTriggerModeOfASystemThatIsDown();
    void thePointerTellsToWaitWhileASystemIsRegistered();
    void aSerialSystemIsFoundAtThePortWhereItIsNow();
    void aSystemWithALineIsSkipped();
    void afterAReadThatFailsThePresentRecordsAreGoneThrough();
    void aFileWithoutControllersHasFailed();
    void theLoadStopsWhenTheApplicationLeaves();
    void whoIsConnectedIsToldBefore();
    void howManyAreUpIsToldWithEachThatComesUp();
    void aSecondLoadCountsAnew();
    void aSystemThatIsUpWaitsForThoseBeforeIt();
    void anUnmarkedSystemOfTheSameAddressHoldsNobodyUp();
    void anUnmarkedSystemBehindALateOneHoldsNobodyUp();

private:
    bool load(const QList<ConnectionSettings>& list)
    {
        bench->put(bench->path("a.xml"), file(list));
        return flow->load(bench->path("a.xml"));
    }
    static ConnectionSettings marked(const QString& label)
    {
        ConnectionSettings record = records::tcp("AB000000001", label);
        record.pulsedLaser = true;
        return record;
    }

    static ConnectionSettings at(const QString& key, const QString& address, const QString& label)
    {
        ConnectionSettings record = marked(label);
        record.name.set(address);
        record.id.set(records::idWithKey(key));
        return record;
    }

    /// Whether the line of a system has its box checked.
    bool isMarked(int system) const
    {
        const ConnectionWidget* line =
            bench->systems.lines(ConnectionType::Tcp).lineOf(&bench->connection(system));
        return line->findChild<QCheckBox*>("checkBoxAutoConnect")->isChecked();
    }

    std::unique_ptr<FlowBench> bench;
    std::unique_ptr<LoadFlow> flow;
    QStringList told;
};

void TestLoadFlow::init()
{
    bench = std::make_unique<FlowBench>();
    told.clear();
    const auto tell = [this](const char* what) {
        return [this, what](const LoadProgress& progress) {
            told.append(QStringLiteral("%1 %2 %3: %4 of %5")
                            .arg(what, progress.label, progress.address)
                            .arg(progress.up)
                            .arg(progress.all));
        };
    };
    flow = std::make_unique<LoadFlow>(bench->parts, tell("connecting"), tell("up"));
}

void TestLoadFlow::aMarkedSystemIsConnectedAndKept()
{
    QVERIFY(load({marked("arm")}));
    QCOMPARE(bench->waits, QList<int>{300});
    QCOMPARE(bench->labels, QStringList{"arm"});
    QCOMPARE(bench->expectedIds, QStringList{records::idWithKey("AB000000001")});
    QCOMPARE(bench->registry.statesWhenNew, QList<LinkState>{LinkState::Connected});
    QVERIFY(bench->connection(0).triggerMode());
    QCOMPARE(bench->connection(0).label(), QStringLiteral("arm"));
    QVERIFY(isMarked(0));
}

void TestLoadFlow::anUnmarkedSystemIsOnlyListed()
{
    QVERIFY(load({quietTcp("AB000000001", "127.0.0.5", "arm")}));
    QVERIFY(bench->waits.isEmpty());
    QCOMPARE(bench->registry.statesWhenNew, QList<LinkState>{LinkState::NotConnected});
    QVERIFY(!isMarked(0));
}

void TestLoadFlow::aSystemThatDoesNotAnswerIsListedAndDown()
{
    bench->outcome = LinkOutcome::NotIdentified;
    QVERIFY(load({marked("arm")}));
    QCOMPARE(bench->registry.statesWhenNew, QList<LinkState>{LinkState::Disconnected});
    QCOMPARE(bench->tcpList.count(), 1);
}

void TestLoadFlow::recordDecidesTheTriggerModeOfASystemThatIsDown()
{
    bench->outcome = LinkOutcome::NoLink;
    ConnectionSettings unmarked = quietTcp("CD000000002", "127.0.0.6", "b");
    unmarked.pulsedLaser = true;
    QVERIFY(load({marked("a"), unmarked, quietTcp("EF000000003", "127.0.0.7", "c")}));
    QVERIFY(bench->connection(0).triggerMode());
    QVERIFY(bench->connection(1).triggerMode());
    QVERIFY(!bench->connection(2).triggerMode());
}

void TestLoadFlow::thePointerTellsToWaitWhileASystemIsRegistered()
{
    bool waits = false;
    bench->registry.whenNew = [&waits](const Connection&) { waits = showsWaitPointer(); };
    QVERIFY(load({marked("a")}));
    QVERIFY(waits);
    QVERIFY(!showsWaitPointer());
}

void TestLoadFlow::aSerialSystemIsFoundAtThePortWhereItIsNow()
{
    bench->parts.devices = DeviceList({{records::idWithKey("AB000000001"), "ttyUSB9", 115200, 1}});
    QVERIFY(load(
        {quietSerial("AB000000001", "ttyUSB0", "a"), quietSerial("CD000000002", "ttyUSB1", "b")}));
    QCOMPARE(bench->registry.calls, QStringList({"new ttyUSB9", "new ttyUSB1"}));
}

void TestLoadFlow::aSystemWithALineIsSkipped()
{
    const QList<ConnectionSettings> list{quietTcp("AB000000001", "127.0.0.5", "a")};
    QVERIFY(load(list));
    QVERIFY(load(list));
    QCOMPARE(bench->registry.calls.size(), 1);
}

void TestLoadFlow::afterAReadThatFailsThePresentRecordsAreGoneThrough()
{
    QVERIFY(load({quietTcp("AB000000001", "127.0.0.5", "a")}));
    QVERIFY(!flow->load(bench->path("none.xml")));
    QCOMPARE(bench->registry.calls.size(), 1);
    QCOMPARE(bench->systems.records().size(), 1);
}

void TestLoadFlow::aFileWithoutControllersHasFailed()
{
    bench->put(bench->path("root.xml"), "<Zev_Lumetra/>");
    QVERIFY(!flow->load(bench->path("root.xml")));
}

void TestLoadFlow::theLoadStopsWhenTheApplicationLeaves()
{
    bench->whenConnecting = [this] { bench->registry.leaving = true; };
    load({quietTcp("CD000000002", "127.0.0.5", "a"), marked("b"),
          quietTcp("EF000000003", "127.0.0.6", "c")});
    QCOMPARE(bench->registry.calls, QStringList{"new 127.0.0.5"});
}

void TestLoadFlow::whoIsConnectedIsToldBefore()
{
    QStringList toldBefore;
    bench->whenConnecting = [&] { toldBefore = told; };
    load({marked("arm")});
    QCOMPARE(toldBefore, QStringList{"connecting arm 127.0.0.9: 0 of 1"});
}

void TestLoadFlow::howManyAreUpIsToldWithEachThatComesUp()
{
    bench->outcomes = {LinkOutcome::Up, LinkOutcome::NoLink, LinkOutcome::Up};
    load({at("AB000000001", "127.0.0.5", "a"), at("CD000000002", "127.0.0.6", "b"),
          quietTcp("XY000000009", "127.0.0.7", "c"), at("EF000000003", "127.0.0.8", "d")});
    QCOMPARE(told, QStringList({"connecting a 127.0.0.5: 0 of 3", "up a 127.0.0.5: 1 of 3",
                                "connecting b 127.0.0.6: 1 of 3", "connecting d 127.0.0.8: 1 of 3",
                                "up d 127.0.0.8: 2 of 3"}));
}

void TestLoadFlow::aSecondLoadCountsAnew()
{
    load({at("AB000000001", "127.0.0.5", "a")});
    told.clear();
    load({at("CD000000002", "127.0.0.6", "b")});
    QCOMPARE(told, QStringList({"connecting b 127.0.0.6: 0 of 1", "up b 127.0.0.6: 1 of 1"}));
}

void TestLoadFlow::aSystemThatIsUpWaitsForThoseBeforeIt()
{
    bench->advances = {3, 1, 2};
    QStringList toldWhenNew;
    bench->registry.whenNew = [&](const Connection&) {
        if (toldWhenNew.isEmpty())
            toldWhenNew = told.filter("up ");
    };
    load({at("AB000000001", "127.0.0.5", "a"), at("CD000000002", "127.0.0.6", "b"),
          at("EF000000003", "127.0.0.7", "c")});
    QCOMPARE(toldWhenNew, QStringList({"up b 127.0.0.6: 1 of 3", "up c 127.0.0.7: 2 of 3",
                                       "up a 127.0.0.5: 3 of 3"}));
    QCOMPARE(bench->registry.calls,
             QStringList({"new 127.0.0.5", "new 127.0.0.6", "new 127.0.0.7"}));
}

void TestLoadFlow::anUnmarkedSystemOfTheSameAddressHoldsNobodyUp()
{
    load({quietTcp("AB000000001", "127.0.0.5", "a"), at("CD000000002", "127.0.0.5", "b")});
    QCOMPARE(bench->registry.statesWhenNew,
             QList<LinkState>({LinkState::NotConnected, LinkState::Connected}));
}

void TestLoadFlow::anUnmarkedSystemBehindALateOneHoldsNobodyUp()
{
    bench->advances = {3, 1};
    load({at("AB000000001", "127.0.0.5", "late"), quietTcp("CD000000002", "127.0.0.6", "unmarked"),
          at("EF000000003", "127.0.0.6", "next")});
    QCOMPARE(told.filter("up "),
             QStringList({"up next 127.0.0.6: 1 of 2", "up late 127.0.0.5: 2 of 2"}));
}

QTEST_MAIN(TestLoadFlow)
#include "tst_loadflow.moc"
