#include "beamtools.h"
#include "emulator/device.h"
#include "hostclient.h"
#include "wiretools.h"

#include <QtTest>

#include <algorithm>
#include <array>
#include <vector>

using namespace beamtools;
using namespace emulator;
using namespace wiretools;

namespace {

constexpr int gcaReplyBytes = 11;
constexpr int bytesOfWord = 2;
constexpr int valuesOfGca = 4;
constexpr int firstFlagByte = 2;
constexpr int secondFlagByte = 3;
/// First bytes of the values of a packet.
enum Place { X1 = 4, Y1 = 6, I1 = 8, X2 = 10, Y2 = 12, I2 = 14 };

const QByteArray bothStages = hex("03 3b");

ControllerOptions memberOfGroup(Preset preset, quint64 withSeed = seed)
{
    ControllerOptions options;
    options.preset = preset;
    options.seed = withSeed;
    options.group = 7;
    return options;
}

ControllerOptions vmMember()
{
    ControllerOptions options = memberOfGroup(Preset::Still);
    options.vm = true;
    return options;
}

/// x and y of stage 1, then of stage 2.
using Positions = std::array<double, valuesOfGca>;

Positions positionsIn(const QByteArray& gcaReply)
{
    Positions positions{};
    for (int i = 0; i < valuesOfGca; ++i)
        positions[std::size_t(i)] = wordAt(gcaReply, 2 + bytesOfWord * i);
    return positions;
}

/// Distance of two beams on the common detector of a stage, mV.
double distanceMv(const Positions& first, const Positions& second, std::size_t stage)
{
    const double x = first[2 * stage] - second[2 * stage];
    const double y = first[2 * stage + 1] - second[2 * stage + 1];
    return std::hypot(x, y);
}

/// Makes both stages of a controller have such detectors.
ControllerOptions withDetectors(ControllerOptions options, DetectorKind kind, double spotDiameterUm)
{
    for (StageOptions& stage : options.stages) {
        stage.detector = kind;
        stage.spotDiameterUm = spotDiameterUm;
    }
    return options;
}

/// What makes one system take over what another one told of the common detector, bytes as they
/// came.
QByteArrayList ordersToApply(const QByteArray& gcaReply)
{
    const std::array<QByteArray, valuesOfGca> places{hex("01 78"), hex("01 79"), hex("02 78"),
                                                     hex("02 79")};
    QByteArrayList orders;
    for (int i = 0; i < valuesOfGca; ++i) {
        const QByteArray value = gcaReply.mid(2 + bytesOfWord * i, bytesOfWord);
        orders.append("SAI" + places[std::size_t(i)] + value + ';');
    }
    return orders;
}

void applyPositions(HostClient& client, const QByteArray& gcaReply)
{
    for (const QByteArray& order : ordersToApply(gcaReply))
        QCOMPARE(client.exchange(order, 2), accepted());
}

/// While no stream runs, each command moves the beam on.
constexpr int commandsPerSecond = 100;

/// Gives the loops a second of the beam's time.
void rest(HostClient& client)
{
    for (int i = 0; i < commandsPerSecond; ++i)
        client.exchange("GSF;", 4);
}

Positions meanPositions(HostClient& client)
{
    constexpr int samples = 50;
    Positions sum{};
    for (int i = 0; i < samples; ++i) {
        const Positions now = positionsIn(client.exchange("GCA;", gcaReplyBytes));
        for (std::size_t value = 0; value < sum.size(); ++value)
            sum[value] += now[value] / samples;
    }
    return sum;
}

QByteArray answerTo(Device& device, const QByteArray& command)
{
    return device.execute(parseCommand(command).command).reply;
}

/// Leads the beams of a controller to the places on the common detector that another one told.
void bringTo(Device& device, const QByteArray& gcaReply)
{
    answerTo(device, "SMD" + bothStages);
    answerTo(device, "SEA" + bothStages);
    for (const QByteArray& order : ordersToApply(gcaReply))
        answerTo(device, order);
    for (int i = 0; i < commandsPerSecond; ++i)
        answerTo(device, "GSF;");
}

/// Where the beams of a controller fall on the common detector of another group, mV: told by the
/// same beams, once they are where `device` has led them.
Positions seenByGroup(int group, const Device& device, quint64 withSeed)
{
    ControllerOptions options = memberOfGroup(Preset::Still, withSeed);
    options.group = group;
    Device atRest(options, "KEY");
    Positions positions = positionsIn(answerTo(atRest, "GCA;"));
    for (const int stage : {1, 2}) {
        const StageState state = device.stageState(stage);
        const auto x = std::size_t(2 * (stage - 1));
        positions[x] += signalMvPerMicrometre * state.beamXUm;
        positions[x + 1] += signalMvPerMicrometre * state.beamYUm;
    }
    return positions;
}

QByteArrayList packetsOf(const ControllerOptions& options, const QByteArrayList& orders, int count)
{
    Device device(options, "KEY");
    for (const QByteArray& order : orders)
        answerTo(device, order);
    QByteArrayList packets{answerTo(device, startAt(500, options.vm ? "SGS" : "SLS"))};
    while (packets.size() < count)
        packets.append(device.nextPacket());
    return packets;
}

} // namespace

Q_DECLARE_METATYPE(emulator::DetectorKind)
Q_DECLARE_METATYPE(emulator::Preset)

class TestGroups final : public QObject
{
    Q_OBJECT

private slots:
    void appliedPositionsBringOneBeamOntoTheOther_data();
    void appliedPositionsBringOneBeamOntoTheOther();
    void everyStageFindsTheCommonDetectorUnderASmallSpot_data();
    void everyStageFindsTheCommonDetectorUnderASmallSpot();
    void beamsMeetInTheirGroupOnly_data();
    void beamsMeetInTheirGroupOnly();
    void noTwoGroupsHaveTheirDetectorAtOnePlace();
    void commonDetectorIsBesideTheOwnOne();
    void controllerAloneTellsItsOwnPositions();
    void seedDecidesWhereTheCommonDetectorIs();
    void multiplexedStageHoldsItsBeamOnTheCommonDetector_data();
    void multiplexedStageHoldsItsBeamOnTheCommonDetector();
    void holdOfAMultiplexedStageKeepsItsPlaceOnTheCommonDetector();
    void everySecondPacketShowsTheCommonDetector();
    void streamOverTcpAlternatesAsSoonAsAStageIsMultiplexed();
    void onlyTheMultiplexedStageIsShownOnTheCommonDetector();
    void packetsShowOnlyTheOwnDetectorOtherwise_data();
    void packetsShowOnlyTheOwnDetectorOtherwise();
    void scriptedPacketsStayAsTheyAre();
    void lastPacketTakesItsTurn();
    void multiplexingAloneChangesOnlyTheFlags();
    void quadrantTypeIsReadWithTheLightOfTheCommonDetector();
    void sensitivityScalesTheCommonDetector();
    void stageIsNotActiveBesideTheCommonDetector();
};

void TestGroups::appliedPositionsBringOneBeamOntoTheOther_data()
{
    QTest::addColumn<DetectorKind>("kind");
    QTest::addColumn<double>("diameterUm");
    QTest::addColumn<Preset>("preset");
    QTest::addColumn<double>("mvPerUm");
    QTest::addColumn<double>("apartUm");
    QTest::addColumn<double>("leftUm");

    // The target is one sample of a beam that is held to a few tenths of a micrometre. A beam that
    // stands still is put right to a millivolt or two.
    const auto row = [](const char* name, DetectorKind kind, double diameterUm, Preset preset,
                        double mvPerUm, double apartUm, double leftUm) {
        QTest::newRow(name) << kind << diameterUm << preset << mvPerUm << apartUm << leftUm;
    };
    row("still", DetectorKind::LateralEffect, 50.0, Preset::Still, 50.0, 14.0, 0.05);
    row("typical", DetectorKind::LateralEffect, 50.0, Preset::Typical, 50.0, 14.0, 1.0);
    row("4QD, still", DetectorKind::FourQuadrant, 50.0, Preset::Still, 255.3, 5.0, 0.01);
    row("4QD, typical", DetectorKind::FourQuadrant, 50.0, Preset::Typical, 255.3, 5.0, 0.8);
    row("4QD, small spot", DetectorKind::FourQuadrant, 20.0, Preset::Still, 638.3, 2.0, 0.005);
    row("WID, small spot", DetectorKind::Wid, 20.0, Preset::Still, 325.0, 1.0, 0.005);
    row("UV PSD (4mm)", DetectorKind::UvPsd4mm, 50.0, Preset::Still, 2.9, 14.0, 0.5);
    row("PSD", DetectorKind::Psd, 50.0, Preset::Still, 1.2, 14.0, 1.2);
}

void TestGroups::appliedPositionsBringOneBeamOntoTheOther()
{
    QFETCH(DetectorKind, kind);
    QFETCH(double, diameterUm);
    QFETCH(Preset, preset);
    QFETCH(double, mvPerUm);
    QFETCH(double, apartUm);
    QFETCH(double, leftUm);
    const auto member = [&](quint64 withSeed) {
        return withDetectors(memberOfGroup(preset, withSeed), kind, diameterUm);
    };
    EmulatorHost host;
    HostClient reference(host.addTcp(member(seed)));
    HostClient partner(host.addTcp(member(seed + 1)));
    reference.exchange("SEA" + bothStages, 2);
    QCOMPARE(partner.exchange("SMD" + hex("01 3b"), 2), accepted());
    QCOMPARE(partner.exchange("SMD" + hex("02 3b"), 2), accepted());
    partner.exchange("SEA" + bothStages, 2);
    rest(reference);
    rest(partner);
    const Positions before = meanPositions(partner);

    applyPositions(partner, reference.exchange("GCA;", gcaReplyBytes));

    rest(partner);
    const Positions where = meanPositions(reference);
    const Positions after = meanPositions(partner);
    for (const std::size_t stage : {0U, 1U}) {
        const double apart = distanceMv(where, before, stage) / mvPerUm;
        QVERIFY2(apart > apartUm, qPrintable(QString("only %1 µm apart").arg(apart)));
        const double left = distanceMv(where, after, stage) / mvPerUm;
        QVERIFY2(left < leftUm, qPrintable(QString("%1 µm are left").arg(left)));
    }
    constexpr char bothOnAndActive = '\x78';
    QCOMPARE(char(partner.exchange("GSF;", 4)[2] & bothOnAndActive), bothOnAndActive);
}

void TestGroups::everyStageFindsTheCommonDetectorUnderASmallSpot_data()
{
    QTest::addColumn<DetectorKind>("kind");
    QTest::addColumn<double>("diameterUm");

    QTest::newRow("4QD, 30 micrometres") << DetectorKind::FourQuadrant << 30.0;
    QTest::newRow("4QD, 10 micrometres") << DetectorKind::FourQuadrant << 10.0;
    QTest::newRow("4QD, 1 micrometre") << DetectorKind::FourQuadrant << 1.0;
    QTest::newRow("WID, 20 micrometres") << DetectorKind::Wid << 20.0;
    QTest::newRow("WID, 1 micrometre") << DetectorKind::Wid << 1.0;
}

void TestGroups::everyStageFindsTheCommonDetectorUnderASmallSpot()
{
    QFETCH(DetectorKind, kind);
    QFETCH(double, diameterUm);
    const auto member = [&](quint64 withSeed) {
        return Device(withDetectors(memberOfGroup(Preset::Still, withSeed), kind, diameterUm),
                      "KEY");
    };
    for (quint64 number = 1; number <= 20; ++number) {
        Device reference = member(number);
        Device partner = member(number + 1);
        const QByteArray wanted = answerTo(reference, "GCA;");

        bringTo(partner, wanted);

        QCOMPARE(answerTo(partner, "GAS;"), hex("00 3b 01 01 3b"));
        const Positions after = positionsIn(answerTo(partner, "GCA;"));
        for (const std::size_t stage : {0U, 1U})
            QVERIFY(distanceMv(positionsIn(wanted), after, stage) <= 2.0);
    }
}

void TestGroups::beamsMeetInTheirGroupOnly_data()
{
    QTest::addColumn<int>("groupOfPartner");
    QTest::addColumn<double>("leastUm");
    QTest::addColumn<double>("greatestUm");

    QTest::newRow("same group") << 7 << 0.0 << 0.05;
    QTest::newRow("next group") << 8 << 2.9 << 3.1;
    QTest::newRow("another group") << 1 << 3.7 << 3.9;
}

void TestGroups::beamsMeetInTheirGroupOnly()
{
    QFETCH(int, groupOfPartner);
    QFETCH(double, leastUm);
    QFETCH(double, greatestUm);
    const ControllerOptions ofReference = memberOfGroup(Preset::Still, seed);
    ControllerOptions ofPartner = memberOfGroup(Preset::Still, seed + 1);
    ofPartner.group = groupOfPartner;
    Device reference(ofReference, "KEY");
    Device partner(ofPartner, "KEY");
    const QByteArray wanted = answerTo(reference, "GCA;");

    bringTo(partner, wanted);

    const Positions seen = seenByGroup(ofReference.group, partner, ofPartner.seed);
    for (const std::size_t stage : {0U, 1U}) {
        const double apart = distanceMv(positionsIn(wanted), seen, stage) / signalMvPerMicrometre;
        QVERIFY2(apart >= leastUm && apart <= greatestUm,
                 qPrintable(QString("%1 µm apart").arg(apart)));
    }
}

void TestGroups::noTwoGroupsHaveTheirDetectorAtOnePlace()
{
    constexpr int groups = 99;
    std::vector<Positions> places;
    for (int group = 1; group <= groups; ++group) {
        ControllerOptions options = memberOfGroup(Preset::Still);
        options.group = group;
        Device device(options, "KEY");
        places.push_back(positionsIn(answerTo(device, "GCA;")));
    }

    double nearestMv = distanceMv(places[0], places[1], 0);
    for (std::size_t one = 0; one < places.size(); ++one) {
        for (std::size_t other = 0; other < one; ++other)
            nearestMv = std::min(nearestMv, distanceMv(places[one], places[other], 0));
    }

    QVERIFY2(nearestMv > 20.0, qPrintable(QString("%1 mV").arg(nearestMv)));
}

void TestGroups::commonDetectorIsBesideTheOwnOne()
{
    for (quint64 number = 1; number <= 50; ++number) {
        Device device(memberOfGroup(Preset::Still, number), "KEY");
        for (const double position : positionsIn(answerTo(device, "GCA;"))) {
            // 10 to 20 micrometres, of 50 mV each.
            QVERIFY(std::fabs(position) >= 500.0);
            QVERIFY(std::fabs(position) <= 1000.0);
        }
        QCOMPARE(wordAt(answerTo(device, "S1S;"), X1), 0);
        QCOMPARE(wordAt(answerTo(device, "S1S;"), Y2), 0);
    }
}

void TestGroups::controllerAloneTellsItsOwnPositions()
{
    ControllerOptions options;
    options.preset = Preset::Still;
    options.stages[0].offsetXUm = 5.0;
    options.stages[1].offsetYUm = -5.0;
    Device device(options, "KEY");

    QCOMPARE(positionsIn(answerTo(device, "GCA;")), Positions({250.0, 0.0, 0.0, -250.0}));
}

void TestGroups::seedDecidesWhereTheCommonDetectorIs()
{
    const auto places = [](quint64 withSeed) {
        Device device(memberOfGroup(Preset::Still, withSeed), "KEY");
        return positionsIn(answerTo(device, "GCA;"));
    };

    const Positions first = places(1);

    QCOMPARE(places(1), first);
    QVERIFY(places(2) != first);
    // Neither do the stages of a controller agree.
    QVERIFY(first[0] != first[2]);
}

void TestGroups::multiplexedStageHoldsItsBeamOnTheCommonDetector_data()
{
    QTest::addColumn<QByteArray>("release");

    QTest::newRow("CMD") << QByteArray("CMD");
    QTest::newRow("SSE") << QByteArray("SSE");
}

void TestGroups::multiplexedStageHoldsItsBeamOnTheCommonDetector()
{
    QFETCH(QByteArray, release);
    EmulatorHost host;
    HostClient client(host.addTcp(memberOfGroup(Preset::Still)));
    const auto positions = [&] { return positionsIn(client.exchange("GCA;", gcaReplyBytes)); };
    const auto ownX1 = [&] { return wordAt(client.exchange("S1S;", packetBytes), X1); };
    const double aside = positions()[0];
    client.exchange("SAI" + hex("01 78 012c 3b"), 2);
    client.exchange("SEA" + bothStages, 2);
    rest(client);
    QCOMPARE(ownX1(), 300);
    QCOMPARE(positions()[0], aside + 300.0);

    QCOMPARE(client.exchange("SMD" + hex("01 3b"), 2), accepted());
    rest(client);
    QCOMPARE(positions()[0], 300.0);
    QCOMPARE(double(ownX1()), 300.0 - aside);
    // The other stage stays on its own path.
    QCOMPARE(wordAt(client.exchange("S1S;", packetBytes), X2), 0);

    QCOMPARE(client.exchange(release + hex("01 3b"), 2), accepted());
    rest(client);
    QCOMPARE(ownX1(), 300);
}

void TestGroups::holdOfAMultiplexedStageKeepsItsPlaceOnTheCommonDetector()
{
    EmulatorHost host;
    HostClient client(host.addTcp(memberOfGroup(Preset::Still)));
    const Positions before = positionsIn(client.exchange("GCA;", gcaReplyBytes));
    client.exchange("SMD" + bothStages, 2);

    client.exchange("SSH" + bothStages, 2);

    rest(client);
    QCOMPARE(positionsIn(client.exchange("GCA;", gcaReplyBytes)), before);
}

void TestGroups::everySecondPacketShowsTheCommonDetector()
{
    const Positions common = [] {
        Device device(vmMember(), "KEY");
        return positionsIn(answerTo(device, "GCA;"));
    }();

    const QByteArrayList packets = packetsOf(vmMember(), {"SMD" + bothStages}, 100);

    for (int i = 0; i < packets.size(); ++i) {
        const bool isCommon = i % 2 == 1;
        QCOMPARE(packets[i][secondFlagByte], isCommon ? '\x07' : '\x03');
        QCOMPARE(double(wordAt(packets[i], X1)), isCommon ? common[0] : 0.0);
        QCOMPARE(double(wordAt(packets[i], Y1)), isCommon ? common[1] : 0.0);
        QCOMPARE(double(wordAt(packets[i], X2)), isCommon ? common[2] : 0.0);
        QCOMPARE(double(wordAt(packets[i], Y2)), isCommon ? common[3] : 0.0);
    }
}

void TestGroups::streamOverTcpAlternatesAsSoonAsAStageIsMultiplexed()
{
    EmulatorHost host;
    HostClient client(host.addTcp(vmMember()));
    const auto flagsOfStream = [&] {
        QByteArray flags =
            client.exchange(startAt(1000, "SGS"), packetBytes).mid(secondFlagByte, 1);
        for (int i = 0; i < 3; ++i)
            flags += client.read(packetBytes).mid(secondFlagByte, 1);
        client.send("CLS;");
        QByteArray packet = client.read(packetBytes);
        while (isFramed(packet) && !(packet[firstFlagByte] & LastPacket))
            packet = client.read(packetBytes);
        client.read(2);
        return flags;
    };
    QCOMPARE(flagsOfStream(), hex("00 00 00 00"));

    client.exchange("SMD" + bothStages, 2);

    QCOMPARE(flagsOfStream(), hex("03 07 03 07"));
}

void TestGroups::onlyTheMultiplexedStageIsShownOnTheCommonDetector()
{
    const QByteArrayList packets = packetsOf(vmMember(), {"SMD" + hex("02 3b")}, 2);

    QCOMPARE(packets[1][secondFlagByte], '\x06');
    QCOMPARE(wordAt(packets[1], X1), 0);
    QCOMPARE(wordAt(packets[1], I1), 4000);
    QVERIFY(wordAt(packets[1], X2) != 0);
}

void TestGroups::packetsShowOnlyTheOwnDetectorOtherwise_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<bool>("vm");
    QTest::addColumn<int>("firmware");
    QTest::addColumn<QByteArray>("order");
    QTest::addColumn<char>("flags");

    QTest::newRow("no stage is multiplexed") << 1 << true << 40 << QByteArray("GSF;") << '\x00';
    QTest::newRow("not of the kind VM") << 1 << false << 40 << "SMD" + bothStages << '\x03';
    QTest::newRow("alone") << 0 << true << 40 << "SMD" + bothStages << '\x03';
    QTest::newRow("firmware without flags") << 1 << true << 10 << "SMD" + bothStages << '\xFF';
}

void TestGroups::packetsShowOnlyTheOwnDetectorOtherwise()
{
    QFETCH(int, group);
    QFETCH(bool, vm);
    QFETCH(int, firmware);
    QFETCH(QByteArray, order);
    QFETCH(char, flags);
    ControllerOptions options = memberOfGroup(Preset::Still);
    options.group = group;
    options.vm = vm;
    options.firmware = firmware;

    for (const QByteArray& packet : packetsOf(options, {order}, 10)) {
        QCOMPARE(packet[secondFlagByte], flags);
        QCOMPARE(packet.mid(X1, 4), hex("0000 0000"));
        QCOMPARE(packet.mid(X2, 4), hex("0000 0000"));
    }
}

void TestGroups::scriptedPacketsStayAsTheyAre()
{
    ControllerOptions options = vmMember();
    options.script = countingScript(3);

    const QByteArrayList packets = packetsOf(options, {"SMD" + bothStages}, 3);

    for (int i = 0; i < packets.size(); ++i) {
        QCOMPARE(packets[i][secondFlagByte], '\x03');
        QCOMPARE(wordAt(packets[i], X1), i + 1);
    }
}

void TestGroups::lastPacketTakesItsTurn()
{
    for (const int packets : {4, 5}) {
        Device device(vmMember(), "KEY");
        answerTo(device, "SMD" + bothStages);
        answerTo(device, startAt(500, "SGS"));
        for (int i = 1; i < packets; ++i)
            device.nextPacket();

        const QByteArray last = device.execute(parseCommand("CLS;").command).lastPacket;

        QCOMPARE(last[secondFlagByte], packets % 2 == 1 ? '\x07' : '\x03');
        QCOMPARE(wordAt(last, X1) != 0, packets % 2 == 1);
    }
}

void TestGroups::multiplexingAloneChangesOnlyTheFlags()
{
    ControllerOptions options;
    options.seed = seed;
    options.vm = true;
    const QByteArray switchOn = "SEA" + bothStages;

    QByteArrayList plain = packetsOf(options, {switchOn, "GMF;"}, 500);
    const QByteArrayList multiplexed = packetsOf(options, {switchOn, "SMD" + bothStages}, 500);

    for (QByteArray& packet : plain)
        packet[secondFlagByte] = '\x03';
    QCOMPARE(multiplexed, plain);
}

void TestGroups::quadrantTypeIsReadWithTheLightOfTheCommonDetector()
{
    const ControllerOptions options = withDetectors(vmMember(), DetectorKind::FourQuadrant, 50.0);

    const QByteArray packet = packetsOf(options, {"SMD" + bothStages}, 2)[1];

    // The offset of either axis is a quarter to half of the spot's radius.
    const double share = std::fabs(double(wordAt(packet, X1)) / wordAt(packet, I1));
    QVERIFY(share >= std::erf(std::sqrt(2.0) * 0.25) - 0.001);
    QVERIFY(share <= std::erf(std::sqrt(2.0) * 0.5) + 0.001);
    QVERIFY(wordAt(packet, I1) < 4000);
}

void TestGroups::sensitivityScalesTheCommonDetector()
{
    Device device(memberOfGroup(Preset::Still), "KEY");
    const Positions nominal = positionsIn(answerTo(device, "GCA;"));

    answerTo(device, "SDS" + hex("01 07d0 3b"));

    const Positions scaled = positionsIn(answerTo(device, "GCA;"));
    QVERIFY(std::fabs(scaled[0] - 2.0 * nominal[0]) <= 1.0);
    QVERIFY(std::fabs(scaled[1] - 2.0 * nominal[1]) <= 1.0);
    QCOMPARE(scaled[2], nominal[2]);
}

void TestGroups::stageIsNotActiveBesideTheCommonDetector()
{
    ControllerOptions options =
        withDetectors(memberOfGroup(Preset::Still), DetectorKind::FourQuadrant, 20.0);
    const double common = [&] {
        Device atRest(options, "KEY");
        return positionsIn(answerTo(atRest, "GCA;"))[0];
    }();
    // At the edge of the own detector, on the side from which the common one is seen less.
    options.stages[0].offsetXUm = common > 0.0 ? 35.0 : -35.0;
    Device device(options, "KEY");
    answerTo(device, "SEA" + hex("01 3b"));
    QCOMPARE(answerTo(device, "GAS;"), hex("00 3b 01 00 3b"));

    answerTo(device, "CEA" + hex("01 3b"));
    answerTo(device, "SMD" + hex("01 3b"));
    answerTo(device, "SAI" + hex("01 78 03e8 3b"));
    answerTo(device, "SEA" + hex("01 3b"));

    QCOMPARE(answerTo(device, "GAS;"), hex("00 3b 00 00 3b"));
    QCOMPARE(answerTo(device, "GDA;"), hex("00 3b 1388 1388 1388 1388 3b"));
    QCOMPARE(answerTo(device, "GSF;")[2] & Stage1On, int(Stage1On));
}

QTEST_GUILESS_MAIN(TestGroups)
#include "tst_groups.moc"
