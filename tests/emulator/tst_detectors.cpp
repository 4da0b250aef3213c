#include "beamtools.h"
#include "emulator/detectormodel.h"
#include "emulator/portablemath.h"
#include "hostclient.h"
#include "model/detector.h"
#include "wiretools.h"

#include <QtTest>

#include <algorithm>
#include <iterator>

using namespace wiretools;
using beamtools::isWithin;
using emulator::ControllerOptions;
using emulator::EmulatorHost;

namespace {

constexpr double stage1IntensityMv = 4000.0;
constexpr double stage2IntensityMv = 3500.0;
constexpr double greatestSignalMv = 5000.0;

/// What a stage reads, mV.
struct Reading
{
    double x = 0.0;
    double y = 0.0;
    double intensity = 0.0;
};

/// One sample of a controller whose beams stand still at `xUm` and `yUm` of both stages.
QByteArray sampleOf(emulator::DetectorKind kind, double spotDiameterUm, double xUm, double yUm)
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    for (emulator::StageOptions& stage : options.stages) {
        stage.detector = kind;
        stage.spotDiameterUm = spotDiameterUm;
        stage.offsetXUm = xUm;
        stage.offsetYUm = yUm;
    }
    EmulatorHost host;
    HostClient client(host.addTcp(options));
    return client.exchange("S1S;", packetBytes);
}

Reading readingOf(const QByteArray& packet, int stage)
{
    const int first = stage == 1 ? 4 : 10;
    return {double(wordAt(packet, first)), double(wordAt(packet, first + 2)),
            double(wordAt(packet, first + 4))};
}

/// Share of a Gaussian spot of radius `radius` whose centre is `position` off that lies within
/// `halfLength`, less what the optics lose towards the edge.
double lightAt(double position, double halfLength, double radius)
{
    const double place = position / halfLength;
    const double lost = 0.1 * place * place;
    const double inside =
        0.5 * (1.0 - std::erf(std::sqrt(2.0) * (std::fabs(position) - halfLength) / radius));
    return std::max(0.0, 1.0 - lost) * inside;
}

/// What a detector has to read, from the data sheets alone.
Reading expectedReading(emulator::DetectorKind kind, double spotDiameterUm, double xUm, double yUm,
                        double fullIntensityMv)
{
    using emulator::DetectorKind;
    const double radius = spotDiameterUm / 2.0;
    double halfLength = 0.0;
    double mvPerMicrometre = 0.0;
    switch (kind) {
    case DetectorKind::FourQuadrant:
        halfLength = 1.5 * spotDiameterUm;
        break;
    case DetectorKind::Psd:
        halfLength = 4500.0;
        mvPerMicrometre = 1.2;
        break;
    case DetectorKind::Wid:
        halfLength = 0.75 * spotDiameterUm;
        mvPerMicrometre = 6500.0 / spotDiameterUm;
        break;
    case DetectorKind::UvPsd4mm:
        halfLength = 2000.0;
        mvPerMicrometre = 2.9;
        break;
    case DetectorKind::UvPsd10mm:
        halfLength = 5000.0;
        mvPerMicrometre = 1.1;
        break;
    case DetectorKind::LateralEffect:
    case DetectorKind::Quadrant:
        break;
    }
    const double intensity =
        fullIntensityMv * lightAt(xUm, halfLength, radius) * lightAt(yUm, halfLength, radius);
    const auto signal = [&](double position) {
        const double unclipped = kind == DetectorKind::FourQuadrant
                                     ? intensity * std::erf(std::sqrt(2.0) * position / radius)
                                     : mvPerMicrometre * position;
        return std::clamp(unclipped, -greatestSignalMv, greatestSignalMv);
    };
    return {signal(xUm), signal(yUm), intensity};
}

/// A type as the application and the emulator know it.
struct Type
{
    const char* name;
    emulator::DetectorKind emulated;
    DetectorType shown;
    double spotDiameterUm;
    /// The application's unit of length.
    double unitUm;
    /// Nearer to the centre one millivolt of the wire is more than 2 % of the position.
    double leastUm;
    /// The end of the linear range: of the quadrant type the end of the application's axis, of the
    /// others the end of the detector or of the input range, whichever comes first.
    double linearUm;
};

const Type types[] = {
    {"4QD", emulator::DetectorKind::FourQuadrant, QuadrantDetector, 50.0, 1.0, 0.25, 25.0},
    {"4QD, large spot", emulator::DetectorKind::FourQuadrant, QuadrantDetector, 1000.0, 1.0, 5.0,
     500.0},
    {"PSD", emulator::DetectorKind::Psd, PsdDetector, 50.0, 1000.0, 42.0, 4160.0},
    {"WID", emulator::DetectorKind::Wid, WidDetector, 50.0, 1.0, 0.39, 37.5},
    {"WID, large spot", emulator::DetectorKind::Wid, WidDetector, 400.0, 1.0, 3.1, 300.0},
    {"UV PSD (4mm)", emulator::DetectorKind::UvPsd4mm, UvPsd4Detector, 50.0, 1000.0, 17.5, 1720.0},
    {"UV PSD (10mm)", emulator::DetectorKind::UvPsd10mm, UvPsd10Detector, 50.0, 1000.0, 46.0,
     4540.0},
};

void addTypeColumns()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("positionUm");
}

void addRow(int type, const char* place, double positionUm)
{
    QTest::newRow(qPrintable(QString("%1, %2").arg(types[type].name, place))) << type << positionUm;
}

void addRowsOverTheLinearRange()
{
    for (int type = 0; type < int(std::size(types)); ++type) {
        addRow(type, "near the centre", types[type].leastUm);
        addRow(type, "a tenth", 0.1 * types[type].linearUm);
        addRow(type, "a quarter, other side", -0.25 * types[type].linearUm);
        addRow(type, "half", 0.5 * types[type].linearUm);
        addRow(type, "three quarters, other side", -0.75 * types[type].linearUm);
        addRow(type, "the end", types[type].linearUm);
        addRow(type, "the end, other side", -types[type].linearUm);
    }
}

/// The length that the application shows for a position and an intensity signal in mV, µm.
double shownMicrometres(const Type& type, double signalMv, double intensityMv)
{
    constexpr double voltPerMv = 0.001;
    const auto detector = makeDetector(type.shown, Detector(type.spotDiameterUm, 1));
    return type.unitUm * detector->calculatePosition(signalMv * voltPerMv, intensityMv * voltPerMv);
}

} // namespace

class TestDetectors final : public QObject
{
    Q_OBJECT

private slots:
    void wireCarriesVoltsAndIntensityOfTheBeam_data();
    void wireCarriesVoltsAndIntensityOfTheBeam();
    void lengthThatIsShownIsWhereTheBeamIs_data();
    void lengthThatIsShownIsWhereTheBeamIs();
    void nothingIsReadFarBesideAQuadrantType();
    void stagesHaveDetectorsOfTheirOwn();
    void sensitivityLeavesTheLengthOfAQuadrantTypeAlone();
    void tabulatedErrorFunctionIsRight();
};

void TestDetectors::wireCarriesVoltsAndIntensityOfTheBeam_data()
{
    addTypeColumns();
    addRowsOverTheLinearRange();
    for (int type = 0; type < int(std::size(types)); ++type) {
        addRow(type, "beyond", 1.15 * types[type].linearUm);
        addRow(type, "far beyond, other side", -3.0 * types[type].linearUm);
    }
}

void TestDetectors::wireCarriesVoltsAndIntensityOfTheBeam()
{
    QFETCH(int, type);
    QFETCH(double, positionUm);
    const Type& of = types[type];
    const double otherUm = -0.5 * positionUm;

    const QByteArray packet = sampleOf(of.emulated, of.spotDiameterUm, positionUm, otherUm);

    for (const int stage : {1, 2}) {
        const Reading read = readingOf(packet, stage);
        const Reading expected =
            expectedReading(of.emulated, of.spotDiameterUm, positionUm, otherUm,
                            stage == 1 ? stage1IntensityMv : stage2IntensityMv);
        // Half a millivolt by rounding, and a little for the emulator's own error function.
        constexpr double roundingMv = 0.51;
        QVERIFY2(std::fabs(read.x - expected.x) <= roundingMv,
                 qPrintable(QString("x %1, not %2").arg(read.x).arg(expected.x)));
        QVERIFY2(std::fabs(read.y - expected.y) <= roundingMv,
                 qPrintable(QString("y %1, not %2").arg(read.y).arg(expected.y)));
        QVERIFY2(std::fabs(read.intensity - expected.intensity) <= roundingMv,
                 qPrintable(
                     QString("intensity %1, not %2").arg(read.intensity).arg(expected.intensity)));
    }
}

void TestDetectors::lengthThatIsShownIsWhereTheBeamIs_data()
{
    addTypeColumns();
    addRowsOverTheLinearRange();
}

void TestDetectors::lengthThatIsShownIsWhereTheBeamIs()
{
    QFETCH(int, type);
    QFETCH(double, positionUm);
    const Type& of = types[type];

    const QByteArray packet = sampleOf(of.emulated, of.spotDiameterUm, positionUm, -positionUm);

    for (const int stage : {1, 2}) {
        const Reading read = readingOf(packet, stage);
        const double x = shownMicrometres(of, read.x, read.intensity);
        const double y = shownMicrometres(of, read.y, read.intensity);
        QVERIFY2(isWithin(x, positionUm, 0.01), qPrintable(QString("%1 µm shown").arg(x)));
        QVERIFY2(isWithin(y, -positionUm, 0.01), qPrintable(QString("%1 µm shown").arg(y)));
    }
}

void TestDetectors::nothingIsReadFarBesideAQuadrantType()
{
    const QByteArray packet = sampleOf(emulator::DetectorKind::FourQuadrant, 50.0, 160.0, 0.0);

    QCOMPARE(packet.mid(4, 12), QByteArray(12, '\0'));
}

void TestDetectors::stagesHaveDetectorsOfTheirOwn()
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.stages[0].detector = emulator::DetectorKind::Psd;
    options.stages[0].offsetXUm = 1000.0;
    options.stages[1].detector = emulator::DetectorKind::UvPsd4mm;
    options.stages[1].offsetYUm = -1000.0;
    EmulatorHost host;
    HostClient client(host.addTcp(options));

    const QByteArray positions = client.exchange("GCA;", 11);

    // 1200, 0, 0 and -2900 mV.
    QCOMPARE(positions, hex("00 3b 04b0 0000 0000 f4ac 3b"));
}

void TestDetectors::sensitivityLeavesTheLengthOfAQuadrantTypeAlone()
{
    ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.stages[0].detector = emulator::DetectorKind::FourQuadrant;
    options.stages[0].offsetXUm = 10.0;
    EmulatorHost host;
    HostClient client(host.addTcp(options));
    const Reading nominal = readingOf(client.exchange("S1S;", packetBytes), 1);

    QCOMPARE(client.exchange("SDS" + hex("01 01f4 3b"), 2), accepted());
    const Reading halved = readingOf(client.exchange("S1S;", packetBytes), 1);

    QVERIFY(std::fabs(halved.x - 0.5 * nominal.x) <= 1.0);
    QVERIFY(std::fabs(halved.intensity - 0.5 * nominal.intensity) <= 1.0);
    QVERIFY(isWithin(shownMicrometres(types[0], halved.x, halved.intensity), 10.0, 0.01));
}

void TestDetectors::tabulatedErrorFunctionIsRight()
{
    for (double x = -6.0; x <= 6.0; x += 0.00037)
        QVERIFY(std::fabs(emulator::portable::tabulatedErrorFunction(x) - std::erf(x)) < 1e-6);
}

QTEST_GUILESS_MAIN(TestDetectors)
#include "tst_detectors.moc"
