// The flow by which the user connects a controller, without a form and without a controller.

#include "flowbench.h"
#include "records.h"
#include "setup/connectflow.h"
#include "setup/connectionwidget.h"

#include <QtTest>

Q_DECLARE_METATYPE(ConnectOutcome)
Q_DECLARE_METATYPE(LinkOutcome)

namespace {

constexpr char deviceId[] = "Zev-V40-000000AB000000001-x";

} // namespace

class TestConnectFlow final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aControllerOnTheNetworkIsKept();
    void aSerialControllerIsKept();
    void aDeviceAtAnotherRateIsChangedFirst();
    void aRateThatIsNotChangedKeepsItsPortOpen();
    void aChangedRateIsKeptEvenIfTheLinkFails();
    void aDeviceWithALineIsRefused();
    void aDeviceThatIsNotInTheListIsRefused();
    void aPortThatNoConnectionTakesIsRefused_data();
    void aPortThatNoConnectionTakesIsRefused();
    void anAddressThatNoConnectionTakesIsRefused();
    void anAddressWithALineIsRefusedHoweverItIsWritten();
    void aFailedLinkLeavesNothing_data();
    void aFailedLinkLeavesNothing();
    void nothingIsKeptWhenTheApplicationLeaves();
    void aKnownControllerGetsItsDetectors();
    void stepsAreToldInTheirOrder();

private:
    std::unique_ptr<FlowBench> bench;
    std::unique_ptr<ConnectFlow> flow;
    QList<ConnectStep> steps;
};

void TestConnectFlow::init()
{
    bench = std::make_unique<FlowBench>();
    bench->parts.devices = DeviceList({{deviceId, "ttyUSB4", 115200, 1}});
    steps.clear();
    flow = std::make_unique<ConnectFlow>(
        bench->parts, [this](ConnectStep step, ConnectionType) { steps.append(step); });
}

void TestConnectFlow::aControllerOnTheNetworkIsKept()
{
    QCOMPARE(flow->connectTcp("127.0.0.5", 2001, "arm"), ConnectOutcome::Connected);
    QCOMPARE(bench->waits, QList<int>{300});
    QCOMPARE(bench->labels, QStringList{"arm"});
    QCOMPARE(bench->expectedIds, QStringList{QString()});
    QCOMPARE(bench->registry.calls, QStringList{"new 127.0.0.5"});
    const ConnectionSettings& record = bench->registry.records.first();
    QCOMPARE(record.type, ConnectionType::Tcp);
    QCOMPARE(record.id.text(), bench->answeringId);
    QCOMPARE(record.label.text(), QStringLiteral("arm"));
    QCOMPARE(record.baudRateOrPort, 2001);
    QVERIFY(record.autoConnect);
    QCOMPARE(record.colorX, QStringLiteral("#ff0000"));
    QCOMPARE(record.colorY, QStringLiteral("#008000"));
    QCOMPARE(record.colorI, QStringLiteral("#0000ff"));
    QVERIFY(bench->systems.lines(ConnectionType::Tcp).lineOf(&bench->connection(0)));
    QCOMPARE(bench->systems.records().size(), 1);
}

void TestConnectFlow::aSerialControllerIsKept()
{
    QCOMPARE(flow->connectSerial(deviceId, 115200, "arm"), ConnectOutcome::Connected);
    QCOMPARE(bench->waits, QList<int>{200});
    QVERIFY(bench->rateChanges.isEmpty());
    QCOMPARE(bench->registry.calls, QStringList{"new ttyUSB4"});
    QCOMPARE(bench->registry.records.first().type, ConnectionType::Serial);
    QCOMPARE(bench->registry.records.first().baudRateOrPort, 115200);
    QVERIFY(bench->systems.lines(ConnectionType::Serial).hasNumber(bench->answeringId));
}

void TestConnectFlow::aDeviceAtAnotherRateIsChangedFirst()
{
    QCOMPARE(flow->connectSerial(deviceId, 921600, "arm"), ConnectOutcome::Connected);
    QCOMPARE(bench->rateChanges, (QList<QPair<int, int>>{{115200, 921600}}));
    QCOMPARE(bench->connection(0).portOrBaud(), 921600);
    QCOMPARE(bench->parts.devices.find(deviceId)->baudRate, 921600);
}

void TestConnectFlow::aRateThatIsNotChangedKeepsItsPortOpen()
{
    bench->changesRate = false;
    const int before = FakeConnection::count();
    QCOMPARE(flow->connectSerial(deviceId, 921600, "arm"), ConnectOutcome::RateNotChanged);
    QCOMPARE(FakeConnection::count(), before + 1);
    QCOMPARE(bench->parts.devices.find(deviceId)->baudRate, 115200);
    QVERIFY(bench->registry.calls.isEmpty());
}

void TestConnectFlow::aChangedRateIsKeptEvenIfTheLinkFails()
{
    bench->outcome = LinkOutcome::NoLink;
    QCOMPARE(flow->connectSerial(deviceId, 921600, "arm"), ConnectOutcome::NoLink);
    QCOMPARE(bench->parts.devices.find(deviceId)->baudRate, 921600);
}

void TestConnectFlow::aDeviceWithALineIsRefused()
{
    QCOMPARE(flow->connectSerial(deviceId, 115200, "arm"), ConnectOutcome::Connected);
    QCOMPARE(flow->connectSerial(deviceId, 115200, "arm"), ConnectOutcome::DeviceInUse);
    QCOMPARE(bench->registry.calls.size(), 1);
}

void TestConnectFlow::aDeviceThatIsNotInTheListIsRefused()
{
    bench->parts.devices = DeviceList();
    QCOMPARE(flow->connectSerial(deviceId, 115200, "arm"), ConnectOutcome::DeviceGone);
}

void TestConnectFlow::aPortThatNoConnectionTakesIsRefused_data()
{
    QTest::addColumn<int>("wantedRate");
    QTest::addColumn<ConnectOutcome>("outcome");
    QTest::newRow("at the rate it has") << 115200 << ConnectOutcome::NoPort;
    QTest::newRow("where the rate was to be changed")
        << 921600 << ConnectOutcome::NoPortForRateChange;
}

void TestConnectFlow::aPortThatNoConnectionTakesIsRefused()
{
    QFETCH(int, wantedRate);
    QFETCH(ConnectOutcome, outcome);
    bench->usable = false;
    QCOMPARE(flow->connectSerial(deviceId, wantedRate, "arm"), outcome);
    bench->usable = true;
    // Nor one whose name has no room in the record.
    bench->parts.devices = DeviceList({{deviceId, QString(64, 'x'), 115200, 1}});
    QCOMPARE(flow->connectSerial(deviceId, wantedRate, "arm"), outcome);
    QVERIFY(bench->waits.isEmpty());
    QVERIFY(bench->rateChanges.isEmpty());
}

void TestConnectFlow::anAddressThatNoConnectionTakesIsRefused()
{
    bench->usable = false;
    QCOMPARE(flow->connectTcp("nonsense", 2000, "arm"), ConnectOutcome::BadAddress);
    bench->usable = true;
    QCOMPARE(flow->connectTcp(QString(64, 'x'), 2000, "arm"), ConnectOutcome::BadAddress);
    QVERIFY(bench->waits.isEmpty());
}

void TestConnectFlow::anAddressWithALineIsRefusedHoweverItIsWritten()
{
    QCOMPARE(flow->connectTcp("127.0.0.5", 2000, "arm"), ConnectOutcome::Connected);
    QCOMPARE(flow->connectTcp("127.0.0.5", 2001, "leg"), ConnectOutcome::AddressInUse);
    QCOMPARE(flow->connectTcp(" 127.0.0.5", 2001, "leg"), ConnectOutcome::AddressInUse);
    QCOMPARE(bench->waits.size(), 1);
}

void TestConnectFlow::aFailedLinkLeavesNothing_data()
{
    QTest::addColumn<LinkOutcome>("link");
    QTest::addColumn<ConnectOutcome>("outcome");
    QTest::newRow("no link") << LinkOutcome::NoLink << ConnectOutcome::NoLink;
    QTest::newRow("nobody identified")
        << LinkOutcome::NotIdentified << ConnectOutcome::NotIdentified;
}

void TestConnectFlow::aFailedLinkLeavesNothing()
{
    QFETCH(LinkOutcome, link);
    QFETCH(ConnectOutcome, outcome);
    bench->outcome = link;
    const int before = FakeConnection::count();
    QCOMPARE(flow->connectTcp("127.0.0.5", 2000, "arm"), outcome);
    QCOMPARE(flow->connectSerial(deviceId, 115200, "arm"), outcome);
    QCOMPARE(FakeConnection::count(), before);
    QVERIFY(bench->registry.calls.isEmpty());
    QVERIFY(bench->systems.records().isEmpty());
    QCOMPARE(bench->tcpList.count() + bench->serialList.count(), 0);
}

void TestConnectFlow::nothingIsKeptWhenTheApplicationLeaves()
{
    bench->whenConnecting = [this] { bench->registry.leaving = true; };
    QCOMPARE(flow->connectTcp("127.0.0.5", 2000, "arm"), ConnectOutcome::Abandoned);
    QVERIFY(bench->registry.calls.isEmpty());
    QCOMPARE(bench->tcpList.count(), 0);
}

void TestConnectFlow::aKnownControllerGetsItsDetectors()
{
    ConnectionSettings known = records::tcp("AB000000001", "old");
    known.model = {2, 5};
    known.pulsedLaser = true;
    bench->put(bench->path("ConnectionSetup.xml"), records::file({known}));
    QCOMPARE(flow->connectTcp("127.0.0.5", 2000, "arm"), ConnectOutcome::Connected);
    QCOMPARE(bench->registry.records.first().model, (std::array<int, 2>{2, 5}));
    QCOMPARE(bench->registry.records.first().label.text(), QStringLiteral("arm"));
    QVERIFY(bench->connection(0).triggerMode());
}

void TestConnectFlow::stepsAreToldInTheirOrder()
{
    flow->connectSerial(deviceId, 921600, "arm");
    QCOMPARE(steps, QList<ConnectStep>({ConnectStep::ChangingRate, ConnectStep::Connecting,
                                        ConnectStep::Keeping}));
}

QTEST_MAIN(TestConnectFlow)
#include "tst_connectflow.moc"
