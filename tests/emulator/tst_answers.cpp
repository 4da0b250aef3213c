#include "emulator/device.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::ControllerOptions)

namespace {

/// Every value differs from the others in both bytes.
PacketValues distinctValues()
{
    PacketValues values;
    values[0].x = 0x0102;
    values[0].y = -1000;
    values[0].intensity = 4000;
    values[1].x = 0x0304;
    values[1].y = -2;
    values[1].intensity = 3500;
    values[0].actuatorX = 0x1112;
    values[0].actuatorY = 0x1314;
    values[1].actuatorX = 0x1516;
    values[1].actuatorY = 0x1719;
    return values;
}

Device deviceOf(const ControllerOptions& options)
{
    return Device(options, "KEY");
}

/// A controller whose beam hardly moves.
Device quietDevice()
{
    ControllerOptions options;
    options.preset = Preset::Quiet;
    return deviceOf(options);
}

QByteArray answerTo(Device& device, const QByteArray& command)
{
    return device.execute(parseCommand(command).command).reply;
}

/// Words of the replies to GCA and GDA.
enum Place { X1, Y1, X2, Y2 };

int told(Device& device, const QByteArray& command, int place = 0)
{
    constexpr int bytesOfStatus = 2;
    constexpr int bytesOfWord = 2;
    return wordAt(answerTo(device, command), bytesOfStatus + bytesOfWord * place);
}

/// Each command takes the beam on by a hundredth of a second.
void settle(Device& device)
{
    for (int i = 0; i < 20; ++i)
        answerTo(device, "GSF;");
}

bool isNear(int value, int expected)
{
    // More than the quiet beam moves in a second, less than any step of these tests.
    constexpr int tremblingMv = 150;
    return std::abs(value - expected) < tremblingMv;
}

const QByteArray stageOneOn = "SEA" + hex("01 3b");
const QByteArray driveX1To2500 = "SDA" + hex("01 78 09c4 3b");

} // namespace

class TestAnswers final : public QObject
{
    Q_OBJECT

private slots:
    void sampleIsToldInItsOrder_data();
    void sampleIsToldInItsOrder();
    void driveMovesTheNamedActuator_data();
    void driveMovesTheNamedActuator();
    void driveMovesTheBeam();
    void sensitivityScalesTheNamedStage();
    void holdKeepsTheNamedStageWhereItIs_data();
    void holdKeepsTheNamedStageWhereItIs();
    void clearedHoldLetsTheBeamGoBack();
    void restartLeavesNothingDrivenOrHeld();
    void labelOfTheOptionsIsStoredAtTheStart_data();
    void labelOfTheOptionsIsStoredAtTheStart();
    void pFactorOfTheOptionsIsStoredAtTheStart();
    void stagesOfTheOptionsAreMultiplexedAtTheStart();
    void stillBeamNeverMoves();
    void firstOfSeveralErrorsIsTold_data();
    void firstOfSeveralErrorsIsTold();
    void errorStaysUntilTheNextOne();
};

void TestAnswers::sampleIsToldInItsOrder_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("reply");

    QTest::newRow("positions") << QByteArray("GCA;") << hex("00 3b 0102 fc18 0304 fffe 3b");
    QTest::newRow("actuators") << QByteArray("GDA;") << hex("00 3b 1112 1314 1516 1719 3b");
    QTest::newRow("intensity of stage 1")
        << QByteArray("GIN" + hex("01 3b")) << hex("00 3b 0fa0 3b");
    QTest::newRow("intensity of stage 2")
        << QByteArray("GIN" + hex("02 3b")) << hex("00 3b 0dac 3b");
    QTest::newRow("all of it") << QByteArray("S1S;")
                               << hex("00 3b 00 00 0102 fc18 0fa0 0304 fffe 0dac"
                                      "1112 1314 1516 1719 3b");
}

void TestAnswers::sampleIsToldInItsOrder()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, reply);
    ControllerOptions options;
    options.script = {distinctValues()};
    Device device = deviceOf(options);

    QCOMPARE(answerTo(device, command), reply);
}

void TestAnswers::driveMovesTheNamedActuator_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<QByteArray>("actuators");

    QTest::newRow("stage 1, x") << hex("01 78 09c4 3b") << hex("00 3b 1d4c 1388 1388 1388 3b");
    QTest::newRow("stage 1, y") << hex("01 79 09c4 3b") << hex("00 3b 1388 1d4c 1388 1388 3b");
    QTest::newRow("stage 2, x") << hex("02 78 fc18 3b") << hex("00 3b 1388 1388 0fa0 1388 3b");
    QTest::newRow("stage 2, y, to the end")
        << hex("02 79 1388 3b") << hex("00 3b 1388 1388 1388 2710 3b");
    QTest::newRow("both, y, to the other end")
        << hex("03 79 ec78 3b") << hex("00 3b 1388 0000 1388 0000 3b");
}

void TestAnswers::driveMovesTheNamedActuator()
{
    QFETCH(QByteArray, arguments);
    QFETCH(QByteArray, actuators);
    Device device = quietDevice();
    QCOMPARE(answerTo(device, "GDA;"), hex("00 3b 1388 1388 1388 1388 3b"));

    QCOMPARE(answerTo(device, "SDA" + arguments), accepted());

    QCOMPARE(answerTo(device, "GDA;"), actuators);
}

void TestAnswers::driveMovesTheBeam()
{
    Device device = quietDevice();
    const int x1 = told(device, "GCA;", X1);
    const int y1 = told(device, "GCA;", Y1);

    answerTo(device, driveX1To2500);
    settle(device);

    // 5 V of the actuator are 4 V of the detector.
    QVERIFY(isNear(told(device, "GCA;", X1), x1 + 2000));
    QVERIFY(isNear(told(device, "GCA;", Y1), y1));
}

void TestAnswers::sensitivityScalesTheNamedStage()
{
    Device device = quietDevice();
    answerTo(device, "SDA" + hex("03 78 04e2 3b"));
    settle(device);
    const int x1 = told(device, "GCA;", X1);
    const int x2 = told(device, "GCA;", X2);
    const int i1 = told(device, "GIN" + hex("01 3b"));
    const int i2 = told(device, "GIN" + hex("02 3b"));

    QCOMPARE(answerTo(device, "SDS" + hex("02 07d0 3b")), accepted());
    settle(device);

    QVERIFY(isNear(told(device, "GCA;", X1), x1));
    QVERIFY(isNear(told(device, "GCA;", X2), 2 * x2));
    QVERIFY(isNear(told(device, "GIN" + hex("01 3b")), i1));
    QVERIFY(isNear(told(device, "GIN" + hex("02 3b")), 2 * i2));
}

void TestAnswers::holdKeepsTheNamedStageWhereItIs_data()
{
    QTest::addColumn<QByteArray>("hold");
    QTest::addColumn<bool>("holdsFirst");
    QTest::addColumn<bool>("holdsSecond");

    QTest::newRow("stage 1") << QByteArray("SSH" + hex("01 3b")) << true << false;
    QTest::newRow("stage 2") << QByteArray("SSH" + hex("02 3b")) << false << true;
    QTest::newRow("both") << QByteArray("SSH" + hex("03 3b")) << true << true;
}

void TestAnswers::holdKeepsTheNamedStageWhereItIs()
{
    QFETCH(QByteArray, hold);
    QFETCH(bool, holdsFirst);
    QFETCH(bool, holdsSecond);
    Device device = quietDevice();
    answerTo(device, "SDA" + hex("03 78 04e2 3b"));
    settle(device);
    const int x1 = told(device, "GCA;", X1);
    const int x2 = told(device, "GCA;", X2);

    QCOMPARE(answerTo(device, hold), accepted());
    answerTo(device, "SEA" + hex("03 3b"));
    settle(device);

    QVERIFY(isNear(told(device, "GCA;", X1), holdsFirst ? x1 : 0));
    QVERIFY(isNear(told(device, "GCA;", X2), holdsSecond ? x2 : 0));
}

void TestAnswers::clearedHoldLetsTheBeamGoBack()
{
    Device device = quietDevice();
    answerTo(device, driveX1To2500);
    settle(device);
    answerTo(device, "SSH" + hex("01 3b"));
    answerTo(device, stageOneOn);
    settle(device);
    QVERIFY(told(device, "GCA;", X1) > 1500);

    QCOMPARE(answerTo(device, "CSH" + hex("02 3b")), accepted());
    settle(device);
    QVERIFY(told(device, "GCA;", X1) > 1500);
    QCOMPARE(answerTo(device, "CSH" + hex("01 3b")), accepted());
    settle(device);

    QVERIFY(isNear(told(device, "GCA;", X1), 0));
}

void TestAnswers::restartLeavesNothingDrivenOrHeld()
{
    Device device = quietDevice();
    const int x1 = told(device, "GCA;", X1);
    answerTo(device, driveX1To2500);
    settle(device);
    answerTo(device, "SSH" + hex("01 3b"));

    device.restart();

    QCOMPARE(answerTo(device, "GDA;"), hex("00 3b 1388 1388 1388 1388 3b"));
    settle(device);
    QVERIFY(isNear(told(device, "GCA;", X1), x1));
    answerTo(device, stageOneOn);
    settle(device);
    QVERIFY(isNear(told(device, "GCA;", X1), 0));
}

void TestAnswers::labelOfTheOptionsIsStoredAtTheStart_data()
{
    QTest::addColumn<QByteArray>("label");
    QTest::addColumn<QByteArray>("stored");

    QTest::newRow("none") << QByteArray() << QByteArray(25, ' ');
    QTest::newRow("short") << QByteArray("Pump") << "Pump" + QByteArray(21, ' ');
    QTest::newRow("too long") << QByteArray(30, 'a') << QByteArray(25, 'a');
}

void TestAnswers::labelOfTheOptionsIsStoredAtTheStart()
{
    QFETCH(QByteArray, label);
    QFETCH(QByteArray, stored);
    ControllerOptions options;
    options.label = label;
    Device device = deviceOf(options);

    QCOMPARE(answerTo(device, "GLA;").mid(2, 25), stored);
}

void TestAnswers::pFactorOfTheOptionsIsStoredAtTheStart()
{
    ControllerOptions options;
    options.pFactorMv = 1500;
    Device device = deviceOf(options);

    QCOMPARE(told(device, "GPF" + hex("01 3b")), 1500);
    QCOMPARE(told(device, "GPF" + hex("02 3b")), 1500);
}

void TestAnswers::stagesOfTheOptionsAreMultiplexedAtTheStart()
{
    ControllerOptions options;
    options.stages[1].multiplexed = true;
    Device device = deviceOf(options);

    QCOMPARE(answerTo(device, "GMF;"), hex("00 3b 02 3b"));
}

void TestAnswers::stillBeamNeverMoves()
{
    ControllerOptions options;
    options.preset = Preset::Still;
    Device device = deviceOf(options);

    for (int i = 0; i < 100; ++i) {
        QCOMPARE(answerTo(device, "S1S;").mid(4, 12), hex("0000 0000 0fa0 0000 0000 0dac"));
    }
}

void TestAnswers::firstOfSeveralErrorsIsTold_data()
{
    QTest::addColumn<ControllerOptions>("options");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("code");

    ControllerOptions usual;
    ControllerOptions old;
    old.firmware = 30;
    ControllerOptions vm;
    vm.vm = true;
    const auto row = [](const char* name, const ControllerOptions& options,
                        const QByteArray& command,
                        int code) { QTest::newRow(name) << options << command << code; };
    row("stage, axis and value", usual, "SAI" + hex("04 7a 1389 3b"), 2);
    row("axis and value", usual, "SAI" + hex("03 7a 1389 3b"), 3);
    row("value", usual, "SAI" + hex("03 79 ec77 3b"), 4);
    row("stage, axis and value of a drive", usual, "SDA" + hex("00 58 1389 3b"), 2);
    row("axis and value of a drive", usual, "SDA" + hex("01 58 1389 3b"), 3);
    row("stage and axis to be told", usual, "GAI" + hex("03 7a 3b"), 2);
    row("axis to be told", usual, "GAI" + hex("02 7a 3b"), 3);
    row("stage and value", usual, "SPF" + hex("04 ffff 3b"), 2);
    row("both stages at once", usual, "GPF" + hex("03 3b"), 2);
    row("stage and value of the sensitivity", usual, "SDS" + hex("00 1389 3b"), 2);
    row("value of the sensitivity", usual, "SDS" + hex("02 1389 3b"), 4);
    row("sensitivity of old firmware", old, "SDS" + hex("00 1389 3b"), 5);
    row("sensitivity of old firmware to be told", old, "GDS" + hex("03 3b"), 5);
    row("start and rate of the other kind", vm, startAt(0), 5);
    row("rate", vm, startAt(0, "SGS"), 4);
    row("rate far above all", usual, startAt(0xFFFF), 4);
    row("start of the other kind", usual, startAt(10, "SGS"), 5);
    row("start by pulses", usual, "SPS" + hex("0000 3b"), 5);
}

void TestAnswers::firstOfSeveralErrorsIsTold()
{
    QFETCH(ControllerOptions, options);
    QFETCH(QByteArray, command);
    QFETCH(int, code);
    Device device = deviceOf(options);

    QCOMPARE(answerTo(device, command), refused());

    const QByteArray error = accepted() + command.left(3) + static_cast<char>(code) + ';';
    QCOMPARE(answerTo(device, "GER;"), error);
    QVERIFY(!device.isStreaming());
}

void TestAnswers::errorStaysUntilTheNextOne()
{
    Device device = quietDevice();
    QCOMPARE(answerTo(device, "GER;"), QByteArray(accepted() + "---" + hex("00 3b")));

    answerTo(device, "SEA" + hex("09 3b"));
    QCOMPARE(answerTo(device, stageOneOn), accepted());

    QCOMPARE(answerTo(device, "GER;"), QByteArray(accepted() + "SEA" + hex("02 3b")));
}

QTEST_GUILESS_MAIN(TestAnswers)
#include "tst_answers.moc"
