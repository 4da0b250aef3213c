#include "beamtools.h"
#include "emulator/device.h"
#include "hostclient.h"
#include "spectrum.h"
#include "wiretools.h"

#include <QtTest>

#include <algorithm>

using namespace beamtools;
using namespace emulator;
using namespace wiretools;

namespace {

constexpr int rateHz = 500;
/// First bytes of the values of a packet.
enum Place { X1 = 4, Y1 = 6, X2 = 10, Y2 = 12 };
constexpr int firstFlagByte = 2;

const QByteArray stage1 = hex("01 3b");

QByteArray setAdjustIn(int stage, char axis, int millivolts)
{
    QByteArray command = "SAI";
    command.append(char(stage)).append(axis);
    appendWord(command, millivolts);
    return command + ';';
}

/// A controller behind TCP, and the host that talks to it.
class Table final
{
public:
    explicit Table(const ControllerOptions& options)
        : client(host.addTcp(options))
    {}

    void order(const QByteArray& command) { QCOMPARE(client.exchange(command, 2), accepted()); }
    QByteArray ask(const QByteArray& command, int replyLength)
    {
        return client.exchange(command, replyLength);
    }
    int position(Place place) { return wordAt(ask("S1S;", packetBytes), place); }

    /// The packets of a stream of some seconds, less those of the first tenth of a second, in
    /// which the loops come to rest.
    QByteArrayList stream(double seconds)
    {
        constexpr int restless = rateHz / 10;
        const int count = int(seconds * rateHz);
        return firstPackets(restless + count).mid(restless);
    }

    /// The first packets of a stream.
    QByteArrayList firstPackets(int count)
    {
        QByteArrayList packets{ask(startAt(rateHz), packetBytes)};
        while (packets.size() < count)
            packets.append(client.read(packetBytes));
        endStream();
        return packets;
    }

private:
    void endStream()
    {
        client.send("CLS;");
        QByteArray packet = client.read(packetBytes);
        while (isFramed(packet) && !(packet[firstFlagByte] & LastPacket))
            packet = client.read(packetBytes);
        QCOMPARE(client.read(2), accepted());
    }

    EmulatorHost host;
    HostClient client;
};

std::vector<double> valuesOf(const QByteArrayList& packets, Place place)
{
    std::vector<double> values;
    for (const QByteArray& packet : packets)
        values.push_back(wordAt(packet, place));
    return values;
}

bool meanIsNear(const QByteArrayList& packets, Place place, double expectedMv, double widthMv)
{
    const double mean = meanOf(valuesOf(packets, place));
    const bool isNear = std::fabs(mean - expectedMv) <= widthMv;
    if (!isNear)
        qWarning("the mean is %g mV, not %g mV", mean, expectedMv);
    return isNear;
}

/// A beam that stands 1000 mV and -750 mV off on stage 1.
ControllerOptions beamAside(Preset preset)
{
    ControllerOptions options;
    options.preset = preset;
    options.stages[0].offsetXUm = 20.0;
    options.stages[0].offsetYUm = -15.0;
    return options;
}

/// A still beam, and external inputs of stage 1 that do not stand where they usually do.
ControllerOptions withInputsMoved()
{
    ControllerOptions options;
    options.preset = Preset::Still;
    options.stages[0].inputs.pFactorMv = 700;
    options.stages[0].inputs.adjustInXMv = 600;
    options.stages[0].inputs.adjustInYMv = -400;
    return options;
}

/// What the packets of a stream at a P-factor have left of the beam's unrest around 12 Hz, where a
/// mount swings.
double unrest(const QByteArrayList& orders, const ControllerOptions& options = {})
{
    Device device(options, "KEY");
    for (const QByteArray& order : orders)
        device.execute(parseCommand(order).command);
    // A fast stream folds less of the detector's noise over the band that is looked at.
    constexpr int fastHz = Device::greatestRate;
    device.execute(parseCommand(startAt(fastHz)).command);
    const Spectrum spectrum([&] { return double(wordAt(device.nextPacket(), X1)); }, fastHz, 8192,
                            8);
    return spectrum.rms(11.0, 13.0);
}

} // namespace

class TestTargets final : public QObject
{
    Q_OBJECT

private slots:
    void heldBeamRestsWhereItWas_data();
    void heldBeamRestsWhereItWas();
    void holdSwitchesTheNamedStageOn_data();
    void holdSwitchesTheNamedStageOn();
    void laterAdjustInEndsTheHold_data();
    void laterAdjustInEndsTheHold();
    void clearedHoldGoesBackToAdjustIn();
    void stageThatIsSwitchedOnAgainGoesBackToItsHold();
    void adjustInIsTheMeanOfTheStream();
    void pFactorSetsTheBandwidth_data();
    void pFactorSetsTheBandwidth();
    void pFactorSetsHowSoonTheStreamReachesTheTarget_data();
    void pFactorSetsHowSoonTheStreamReachesTheTarget();
    void sameSeedGivesTheSameBytes();
    void externalAdjustInIsTheTargetOfAnAxisWithoutOneOfItsOwn();
    void clearedHoldGoesBackToTheExternalAdjustIn();
    void externalPFactorSetsTheBandwidth();
    void externalSensitivityScalesTheSignals();
    void loopRestsWithoutSensitivity();
    void settingsOfExternalSourcesAreToldAsZero();
    void statusTellsTheSources_data();
    void statusTellsTheSources();
};

void TestTargets::heldBeamRestsWhereItWas_data()
{
    QTest::addColumn<int>("preset");
    QTest::addColumn<double>("widthMv");

    // A still beam is back on its place to the millivolt; others move on between the sample and
    // the hold.
    QTest::newRow("still") << int(Preset::Still) << 1.0;
    QTest::newRow("typical") << int(Preset::Typical) << 100.0;
}

void TestTargets::heldBeamRestsWhereItWas()
{
    QFETCH(int, preset);
    QFETCH(double, widthMv);
    Table table(beamAside(Preset(preset)));
    table.order(setAdjustIn(1, 'x', -2000));
    table.order(setAdjustIn(1, 'y', 2000));
    const double restless = rmsOf(valuesOf(table.stream(0.5), X1));
    const int x = table.position(X1);
    const int y = table.position(Y1);

    table.order("SSH" + stage1);

    const QByteArrayList packets = table.stream(0.5);
    QVERIFY(meanIsNear(packets, X1, x, widthMv));
    QVERIFY(meanIsNear(packets, Y1, y, widthMv));
    QVERIFY(rmsOf(valuesOf(packets, X1)) <= 0.4 * restless);
}

void TestTargets::holdSwitchesTheNamedStageOn_data()
{
    QTest::addColumn<QByteArray>("stages");
    QTest::addColumn<QByteArray>("flags");

    // On and active.
    QTest::newRow("stage 1") << hex("01 3b") << hex("29");
    QTest::newRow("stage 2") << hex("02 3b") << hex("51");
    QTest::newRow("both") << hex("03 3b") << hex("79");
}

void TestTargets::holdSwitchesTheNamedStageOn()
{
    QFETCH(QByteArray, stages);
    QFETCH(QByteArray, flags);
    Table table(beamAside(Preset::Still));

    table.order("SSH" + stages);

    constexpr char stageBits = '\x78';
    QCOMPARE(table.ask("GSF;", 4), hex("00 3b") + flags + ';');
    QCOMPARE(table.ask("S1S;", packetBytes)[firstFlagByte], char(flags[0] & stageBits));
}

void TestTargets::laterAdjustInEndsTheHold_data()
{
    QTest::addColumn<QByteArray>("adjust");
    QTest::addColumn<double>("xMv");
    QTest::addColumn<double>("yMv");

    QTest::newRow("of x") << setAdjustIn(1, 'x', 500) << 500.0 << 0.0;
    QTest::newRow("of y") << setAdjustIn(1, 'y', -300) << 0.0 << -300.0;
    QTest::newRow("of both stages") << setAdjustIn(3, 'x', 250) << 250.0 << 0.0;
    QTest::newRow("of the other stage") << setAdjustIn(2, 'x', 500) << 1000.0 << -750.0;
}

void TestTargets::laterAdjustInEndsTheHold()
{
    QFETCH(QByteArray, adjust);
    QFETCH(double, xMv);
    QFETCH(double, yMv);
    Table table(beamAside(Preset::Still));
    table.order("SSH" + stage1);

    table.order(adjust);

    const QByteArrayList packets = table.stream(0.1);
    QVERIFY(meanIsNear(packets, X1, xMv, 1.0));
    QVERIFY(meanIsNear(packets, Y1, yMv, 1.0));
    // The stage stays on.
    QVERIFY(packets.last()[firstFlagByte] & Stage1On);
}

void TestTargets::clearedHoldGoesBackToAdjustIn()
{
    Table table(beamAside(Preset::Still));
    table.order(setAdjustIn(1, 'y', 400));
    table.order("SSH" + stage1);
    QVERIFY(meanIsNear(table.stream(0.1), Y1, -750.0, 1.0));

    table.order("CSH" + stage1);

    const QByteArrayList packets = table.stream(0.1);
    QVERIFY(meanIsNear(packets, X1, 0.0, 1.0));
    QVERIFY(meanIsNear(packets, Y1, 400.0, 1.0));
    QVERIFY(packets.last()[firstFlagByte] & Stage1On);
}

void TestTargets::stageThatIsSwitchedOnAgainGoesBackToItsHold()
{
    Table table(beamAside(Preset::Still));
    table.order("SDA" + hex("01 78 04e2 3b"));
    table.stream(0.1);
    table.order("SSH" + stage1);

    table.order("CEA" + stage1);
    const QByteArrayList off = table.stream(0.1);
    QVERIFY(meanIsNear(off, X1, 1000.0, 1.0));
    QVERIFY(!(off.last()[firstFlagByte] & Stage1On));

    table.order("SEA" + stage1);
    // A drive of 1250 mV had moved the beam by 20 micrometres, that is 1000 mV.
    QVERIFY(meanIsNear(table.stream(0.1), X1, 2000.0, 1.0));
}

void TestTargets::adjustInIsTheMeanOfTheStream()
{
    Table table(beamAside(Preset::Typical));
    table.order(setAdjustIn(1, 'x', 800));
    table.order(setAdjustIn(2, 'y', -1200));

    table.order("SEA" + hex("03 3b"));

    const QByteArrayList packets = table.stream(0.5);
    QVERIFY(meanIsNear(packets, X1, 800.0, 5.0));
    QVERIFY(meanIsNear(packets, Y1, 0.0, 5.0));
    QVERIFY(meanIsNear(packets, X2, 0.0, 5.0));
    QVERIFY(meanIsNear(packets, Y2, -1200.0, 5.0));
}

void TestTargets::pFactorSetsTheBandwidth_data()
{
    QTest::addColumn<int>("pFactorMv");
    QTest::addColumn<double>("bandwidthHz");

    // 200 Hz at 1 V, and no more than the actuators allow.
    QTest::newRow("250 mV") << 250 << 50.0;
    QTest::newRow("500 mV") << 500 << 100.0;
    QTest::newRow("1 V") << 1000 << 200.0;
    QTest::newRow("2 V") << 2000 << 400.0;
    QTest::newRow("5 V") << 5000 << 400.0;
}

void TestTargets::pFactorSetsTheBandwidth()
{
    QFETCH(int, pFactorMv);
    QFETCH(double, bandwidthHz);
    QByteArray setPFactor = "SPF\x01";
    appendWord(setPFactor, pFactorMv);

    const double left = unrest({setPFactor + ';', "SEA" + stage1}) / unrest({});

    // Far below the bandwidth the loop leaves the frequency's share of it.
    constexpr double mountHz = 12.0;
    QVERIFY2(isWithin(left, mountHz / bandwidthHz, 0.1),
             qPrintable(QString("%1 of it is left").arg(left)));
}

void TestTargets::pFactorSetsHowSoonTheStreamReachesTheTarget_data()
{
    QTest::addColumn<QByteArray>("pFactor");
    QTest::addColumn<double>("bandwidthHz");

    QTest::newRow("25 mV") << hex("0019") << 5.0;
    QTest::newRow("100 mV") << hex("0064") << 20.0;
}

void TestTargets::pFactorSetsHowSoonTheStreamReachesTheTarget()
{
    QFETCH(QByteArray, pFactor);
    QFETCH(double, bandwidthHz);
    ControllerOptions options;
    options.preset = Preset::Still;
    options.stages[0].offsetXUm = 60.0;
    Table table(options);
    table.order("SPF" + hex("01") + pFactor + ';');
    table.order("SEA" + stage1);

    const std::vector<double> places = valuesOf(table.firstPackets(60), X1);

    // The loop is damped so that it first reaches its target after 0.39 periods of its bandwidth.
    // Between switching on and the first packet it works for 12 ms.
    constexpr double secondsBefore = 0.012;
    const double expected = (0.393 / bandwidthHz - secondsBefore) * rateHz;
    const auto home =
        std::find_if(places.begin(), places.end(), [](double mv) { return mv <= 0.0; });
    const auto packets = double(home - places.begin());
    // The low pass of the sampler and the wait for the next packet make it later, by at most this.
    constexpr double latePackets = 1.5;
    QVERIFY2(packets >= expected && packets <= expected + latePackets,
             qPrintable(QString("%1 packets, not %2").arg(packets).arg(expected)));
}

void TestTargets::sameSeedGivesTheSameBytes()
{
    const auto streamed = [](quint64 withSeed) {
        ControllerOptions options = beamAside(Preset::Noisy);
        options.seed = withSeed;
        options.stages[1].detector = DetectorKind::FourQuadrant;
        Table table(options);
        table.order("SSH" + hex("03 3b"));
        return table.stream(0.5);
    };

    const QByteArrayList first = streamed(seed);

    QCOMPARE(streamed(seed), first);
    QVERIFY(streamed(seed + 1) != first);
}

void TestTargets::externalAdjustInIsTheTargetOfAnAxisWithoutOneOfItsOwn()
{
    Table table(withInputsMoved());
    table.order("SEA" + hex("03 3b"));
    const QByteArrayList packets = table.stream(0.1);
    QVERIFY(meanIsNear(packets, X1, 600.0, 1.0));
    QVERIFY(meanIsNear(packets, Y1, -400.0, 1.0));
    QVERIFY(meanIsNear(packets, X2, 0.0, 1.0));

    table.order(setAdjustIn(1, 'y', 100));
    QVERIFY(meanIsNear(table.stream(0.1), Y1, 100.0, 1.0));
    table.order(setAdjustIn(1, 'y', 0));
    QVERIFY(meanIsNear(table.stream(0.1), Y1, -400.0, 1.0));
}

void TestTargets::clearedHoldGoesBackToTheExternalAdjustIn()
{
    Table table(withInputsMoved());
    table.order("SSH" + stage1);
    QVERIFY(meanIsNear(table.stream(0.1), X1, 0.0, 1.0));

    table.order("CSH" + stage1);

    QVERIFY(meanIsNear(table.stream(0.1), X1, 600.0, 1.0));
}

void TestTargets::externalPFactorSetsTheBandwidth()
{
    ControllerOptions options;
    options.stages[0].inputs.pFactorMv = 500;
    const QByteArray switchOn = "SEA" + stage1;
    const QByteArray external = "SPF" + hex("01 0000 3b");

    const double left = unrest({external, switchOn}, options) / unrest({});

    QVERIFY2(isWithin(left, 0.12, 0.1), qPrintable(QString("%1 of it is left").arg(left)));
    QCOMPARE(unrest({switchOn}, options), unrest({switchOn}));
}

void TestTargets::externalSensitivityScalesTheSignals()
{
    ControllerOptions options = beamAside(Preset::Still);
    options.stages[0].inputs.sensitivityMv = 2500;
    Table table(options);
    const auto intensity = [&] { return wordAt(table.ask("GIN" + stage1, 5), 2); };
    QCOMPARE(table.position(X1), 2500);
    const int amplified = intensity();

    table.order("SDS" + hex("01 03e8 3b"));
    QCOMPARE(table.position(X1), 1000);
    QVERIFY(std::abs(amplified - 2.5 * intensity()) <= 2.0);
    table.order("SDS" + hex("01 0000 3b"));
    QCOMPARE(table.position(X1), 2500);
}

void TestTargets::loopRestsWithoutSensitivity()
{
    ControllerOptions options = beamAside(Preset::Still);
    options.stages[0].inputs.sensitivityMv = 0;
    Table table(options);
    table.order("SEA" + stage1);
    QCOMPARE(table.position(X1), 0);
    QCOMPARE(table.ask("GDA;", 11), hex("00 3b 1388 1388 1388 1388 3b"));

    table.order("SDS" + hex("01 03e8 3b"));

    QVERIFY(meanIsNear(table.stream(0.1), X1, 0.0, 1.0));
    QCOMPARE(table.ask("GDA;", 11), hex("00 3b 0ea6 1732 1388 1388 3b"));
}

void TestTargets::settingsOfExternalSourcesAreToldAsZero()
{
    Table table(withInputsMoved());
    table.order("SPF" + hex("01 0000 3b"));

    QCOMPARE(table.ask("GPF" + stage1, 5), hex("00 3b 0000 3b"));
    QCOMPARE(table.ask("GDS" + stage1, 5), hex("00 3b 0000 3b"));
    QCOMPARE(table.ask("GAI" + hex("01 78 3b"), 5), hex("00 3b 0000 3b"));
    QCOMPARE(table.ask("GAI" + hex("01 79 3b"), 5), hex("00 3b 0000 3b"));
}

void TestTargets::statusTellsTheSources_data()
{
    QTest::addColumn<QByteArrayList>("orders");
    QTest::addColumn<QByteArray>("flags");

    QTest::newRow("as it starts") << QByteArrayList() << hex("01");
    QTest::newRow("P-factor of one stage external")
        << QByteArrayList{"SPF" + hex("02 0000 3b")} << hex("00");
    QTest::newRow("adjust-in of stage 1") << QByteArrayList{setAdjustIn(1, 'y', 100)} << hex("03");
    QTest::newRow("adjust-in of stage 2") << QByteArrayList{setAdjustIn(2, 'x', 1)} << hex("05");
    QTest::newRow("adjust-in back to external")
        << QByteArrayList{setAdjustIn(2, 'x', 1), setAdjustIn(2, 'x', 0)} << hex("01");
}

void TestTargets::statusTellsTheSources()
{
    QFETCH(QByteArrayList, orders);
    QFETCH(QByteArray, flags);
    Table table(withInputsMoved());

    for (const QByteArray& order : orders)
        table.order(order);

    QCOMPARE(table.ask("GSF;", 4), hex("00 3b") + flags + ';');
}

QTEST_GUILESS_MAIN(TestTargets)
#include "tst_targets.moc"
