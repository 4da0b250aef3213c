#include "emulator/device.h"
#include "emulator/replay.h"
#include "model/detector.h"
#include "wiretools.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>
#include <cstdio>

using namespace emulator;
using namespace wiretools;

namespace {

const QByteArray header =
    "Start: 2024-02-29T13:14:15\n"
    "ms\tX1(V)\tY1(V)\tI1(V)\tX2(V)\tY2(V)\tI2(V)\tRX1(V)\tRY1(V)\tRX2(V)\tRY2(V)\n"
    "\n";

std::shared_ptr<const Replay> read(const QByteArray& text, QString* error = nullptr)
{
    QByteArray copy = text;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QString reason;
    std::shared_ptr<const Replay> replay = Replay::read(buffer, reason);
    if (error)
        *error = reason;
    return replay;
}

} // namespace

class TestReplay final : public QObject
{
    Q_OBJECT

private slots:
    void linesBecomeMillivolts();
    void lengthsBecomeMillivolts();
    void micrometresAreKnownHoweverTheyWereWritten_data();
    void micrometresAreKnownHoweverTheyWereWritten();
    void valuesComeAtTheirTimes();
    void whatIsNoRecordingIsNamed_data();
    void whatIsNoRecordingIsNamed();
    void missingFileIsNamed();
    void valuesBeyondSixteenBitsAreCut();
    void notANumberIsReadHoweverItWasPrinted_data();
    void notANumberIsReadHoweverItWasPrinted();
    void equalTimesAreTaken();
    void streamCarriesTheRecordingInItsOwnTime();
};

void TestReplay::linesBecomeMillivolts()
{
    const auto replay =
        read(header + "0\t1.234\t-0.500\t4.00\t0.001\t-0.001\t3.50\t5.00\t4.99\t10.00\t0.00\n");

    QVERIFY(replay);
    QCOMPARE(replay->lineCount(), 1);
    const PacketValues values = replay->at(0);
    QCOMPARE(values[0].x, qint16(1234));
    QCOMPARE(values[0].y, qint16(-500));
    QCOMPARE(values[0].intensity, quint16(4000));
    QCOMPARE(values[1].x, qint16(1));
    QCOMPARE(values[1].y, qint16(-1));
    QCOMPARE(values[1].intensity, quint16(3500));
    QCOMPARE(values[0].actuatorX, qint16(5000));
    QCOMPARE(values[0].actuatorY, qint16(4990));
    QCOMPARE(values[1].actuatorX, qint16(10000));
    QCOMPARE(values[1].actuatorY, qint16(0));
}

void TestReplay::lengthsBecomeMillivolts()
{
    QByteArray lengths = header;
    lengths.replace("X1(V)\tY1(V)", "X1(mm)\tY1(mm)");
    lengths.replace("X2(V)\tY2(V)", "X2(\xC2\xB5m)\tY2(\xC2\xB5m)");

    const auto replay =
        read(lengths + "0\t1.0000\t-2.0000\t4.00\t10.00\t-2.00\t3.50\t5\t5\t5\t5\n");

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(1200));
    QCOMPARE(replay->at(0)[0].y, qint16(-2400));
    QCOMPARE(replay->at(0)[1].x, qint16(500));
    QCOMPARE(replay->at(0)[1].y, qint16(-100));
}

void TestReplay::micrometresAreKnownHoweverTheyWereWritten_data()
{
    QTest::addColumn<QByteArray>("unit");

    QTest::newRow("UTF-8") << QByteArray("\xC2\xB5m");
    QTest::newRow("Latin-1") << QByteArray("\xB5m");
    QTest::newRow("ASCII") << QByteArray("?m");
}

void TestReplay::micrometresAreKnownHoweverTheyWereWritten()
{
    QFETCH(QByteArray, unit);
    QByteArray lengths = header;
    lengths.replace("X1(V)", "X1(" + unit + ")");

    const auto replay = read(lengths + "0\t10.00\t0\t4.00\t0\t0\t3.50\t5\t5\t5\t5\n");

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(500));
}

void TestReplay::valuesComeAtTheirTimes()
{
    const QByteArray rest = "\t0\t0\t0\t0\t0\t0\t0\t0\t0\n";
    const auto replay = read(header + "0\t0.001" + rest + "10\t0.002" + rest + "30\t0.003" + rest);

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(1));
    QCOMPARE(replay->at(9)[0].x, qint16(1));
    QCOMPARE(replay->at(10)[0].x, qint16(2));
    QCOMPARE(replay->at(29)[0].x, qint16(2));
    QCOMPARE(replay->at(30)[0].x, qint16(3));
    // The last line lasts for the mean of the others, 15 ms; then it begins anew.
    QCOMPARE(replay->at(44)[0].x, qint16(3));
    QCOMPARE(replay->at(45)[0].x, qint16(1));
    QCOMPARE(replay->at(45 * 1000 + 12)[0].x, qint16(2));
}

void TestReplay::whatIsNoRecordingIsNamed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");

    QTest::newRow("empty") << QByteArray() << "not a recording file";
    QTest::newRow("other text") << QByteArray("hello\nworld\n") << "not a recording file";
    QByteArray unit = header;
    QTest::newRow("unknown unit") << unit.replace("X1(V)", "X1(in)") << "not a recording file";
    QTest::newRow("no samples") << header << "the recording has no samples";
    QTest::newRow("short line") << header + "0\t1\t2\n"
                                << "line 4 is not a line of a recording";
    QTest::newRow("letters") << header + "0\t1\t2\t3\t4\t5\t6\t7\t8\t9\tten\n"
                             << "line 4 is not a line of a recording";
    QTest::newRow("decimal comma") << header + "0\t1,5\t2\t3\t4\t5\t6\t7\t8\t9\t10\n"
                                   << "line 4 is not a line of a recording";
    const QByteArray rest = "\t1\t2\t3\t4\t5\t6\t7\t8\t9\t10\n";
    for (const char* const time : {"-1", "inf", "nan", "1e30", "18446744073709551615",
                                   "9223372036854775807", "4611686018427387904"}) {
        QTest::newRow(time) << header + "0" + rest + time + rest
                            << "line 5 is not a line of a recording";
    }
    QTest::newRow("time goes back") << header + "0" + rest + "20" + rest + "19" + rest
                                    << "line 6 is earlier than the line before";
}

void TestReplay::whatIsNoRecordingIsNamed()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, error);
    QString told;

    QVERIFY(!read(text, &told));
    QCOMPARE(told, error);
}

void TestReplay::missingFileIsNamed()
{
    const QTemporaryDir folder;
    QString error;

    QVERIFY(!Replay::load(folder.filePath("none.csv"), error));
    QVERIFY(error.startsWith(folder.filePath("none.csv") + ": "));
}

void TestReplay::valuesBeyondSixteenBitsAreCut()
{
    const auto replay = read(header + "0\t99.0\t-99.0\t99.0\tnan\t0\t0\t0\t0\t0\t0\n");

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(32767));
    QCOMPARE(replay->at(0)[0].y, qint16(-32768));
    QCOMPARE(replay->at(0)[0].intensity, quint16(65535));
    QCOMPARE(replay->at(0)[1].x, qint16(0));
}

void TestReplay::notANumberIsReadHoweverItWasPrinted_data()
{
    QTest::addColumn<QByteArray>("text");

    for (const char* const text : {"nan", "-nan", "+nan"})
        QTest::newRow(text) << QByteArray(text);
    // The formula has no answer where the signal exceeds the intensity, nor without light.
    const QD detector{Detector(1000.0, 1)};
    for (const auto& [signal, intensity] : {std::pair(2.0, 1.0), std::pair(0.0, 0.0)}) {
        std::array<char, 20> text{};
        const double position = detector.calculatePosition(signal, intensity);
        QVERIFY(std::isnan(position));
        std::snprintf(text.data(), text.size(), "%.*f", 2, position);
        QTest::addRow("%g V of %g V is %s", signal, intensity, text.data())
            << QByteArray(text.data());
    }
}

void TestReplay::notANumberIsReadHoweverItWasPrinted()
{
    QFETCH(QByteArray, text);

    const auto replay = read(header + "0\t" + text + "\t0.5\t4\t0\t0\t0\t0\t0\t0\t0\n");

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(0));
    QCOMPARE(replay->at(0)[0].y, qint16(500));
}

void TestReplay::equalTimesAreTaken()
{
    const QByteArray rest = "\t0\t0\t0\t0\t0\t0\t0\t0\t0\n";
    const auto replay = read(header + "0\t0.001" + rest + "0\t0.002" + rest);

    QVERIFY(replay);
    QCOMPARE(replay->at(0)[0].x, qint16(2));
}

void TestReplay::streamCarriesTheRecordingInItsOwnTime()
{
    QByteArray text = header;
    for (int line = 0; line < 10; ++line) {
        text += QByteArray::number(10 * line) + "\t" + QByteArray::number(0.001 * (line + 1))
                + "\t0\t0\t0\t0\t0\t0\t0\t0\t0\n";
    }
    ControllerOptions options;
    options.replay = read(text);
    QVERIFY(options.replay);
    Device device(options, "KEY");

    QCOMPARE(wordAt(device.execute(parseCommand("S1S;").command).reply, 4), 1);
    QCOMPARE(wordAt(device.execute(parseCommand(startAt(500)).command).reply, 4), 1);
    for (int packet = 1; packet < 100; ++packet) {
        const int line = packet * 2 / 10 % 10;
        QCOMPARE(wordAt(device.nextPacket(), 4), line + 1);
    }
}

QTEST_GUILESS_MAIN(TestReplay)
#include "tst_replay.moc"
