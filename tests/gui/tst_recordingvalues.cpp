// What stands in the columns of recordings that the real window makes, and what the files are
// called.

#include "emulator/replay.h"
#include "model/detector.h"
#include "model/detectorpair.h"
#include "recording/systemrecord.h"
#include "recordingbench.h"
#include "support/widgetcheck.h"

#include <QLocale>
#include <QMessageBox>
#include <QtTest>

using emulator::ControllerOptions;
using emulator::PacketValues;

namespace {

/// While it lives, numbers are written as in this locale.
class DefaultLocale final
{
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(before); }
    DefaultLocale(const DefaultLocale&) = delete;
    DefaultLocale& operator=(const DefaultLocale&) = delete;

private:
    QLocale before;
};

/// A controller that sends these samples. The first packet answers the start and is shown to
/// nobody.
ControllerOptions sending(const QVector<PacketValues>& samples)
{
    ControllerOptions options;
    options.script.append(PacketValues{});
    options.script += samples;
    return options;
}

/// A controller whose samples all have this position.
ControllerOptions standingAt(qint16 mv)
{
    PacketValues values{};
    values[0].x = mv;
    ControllerOptions options;
    options.script = {values};
    options.scriptRepeats = true;
    return options;
}

QStringList withoutTimes(const QStringList& lines)
{
    QStringList values;
    for (const QString& line : lines)
        values.append(line.section('\t', 1));
    return values;
}

/// The columns behind the time.
using Values = QVector<double>;

QVector<Values> valuesIn(const QByteArray& recording)
{
    QVector<Values> all;
    for (const QString& line : withoutTimes(linesOf(recording))) {
        all.append(Values());
        for (const QString& field : line.split('\t'))
            all.last().append(field.toDouble());
    }
    return all;
}

/// The detectors of a controller in volts on stage 1, and in mm on stage 2.
ConnectionSettings withVoltsAndMillimetres(ConnectionSettings record)
{
    record.model = {SelectDetector, PsdDetector};
    record.calculation = {0, 1};
    return record;
}

/// Records these samples at regular times, as no wire would carry them.
void recordRegularly(const QString& path, const ConnectionSettings& settings,
                     const QVector<PacketValues>& samples, quint64 periodMs)
{
    SystemRecord record(path, DetectorPair(settings), 1, SystemRecord::Counting::Everywhere,
                        QDateTime::currentDateTime());
    MeasureSample sample;
    for (const PacketValues& values : samples) {
        sample.x1 = values[0].x;
        sample.y1 = values[0].y;
        sample.intensity1 = values[0].intensity;
        sample.x2 = values[1].x;
        sample.y2 = values[1].y;
        sample.intensity2 = values[1].intensity;
        sample.rx1 = values[0].actuatorX;
        sample.ry1 = values[0].actuatorY;
        sample.rx2 = values[1].actuatorX;
        sample.ry2 = values[1].actuatorY;
        record.take({sample}, {true, false});
        sample.timeMs += periodMs;
    }
    record.form(std::size_t(samples.size()));
}

/// The names of the columns.
QString columnsOf(const QByteArray& recording)
{
    return QString::fromUtf8(recording.split('\n').value(1));
}

} // namespace

class TestRecordingValues final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void everyTypeOfDetectorIsRecordedInItsUnit_data();
    void everyTypeOfDetectorIsRecordedInItsUnit();
    void lengthsAreWhatTheControllerSent();
    void everySampleOfAPulsedLaserIsRecorded();
    void foldersInLabelsAndEqualLabelsGiveFilesOfTheirOwn();
    void oneSystemIsRecordedInAFolderWithADot();
    void everySystemIsToldTheFileThatADotInAFolderGives();
    void numbersHaveAPointInALocaleWithAComma();
    void replayedRecordingHasTheSameValuesAgain();
};

void TestRecordingValues::everyTypeOfDetectorIsRecordedInItsUnit_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("x");
    QTest::addColumn<QString>("y");
    QTest::newRow("none chosen") << int(SelectDetector) << "V"
                                 << "2.000"
                                 << "-1.000";
    QTest::newRow("quadrants") << int(QuadrantDetector) << "µm"
                               << "8.43"
                               << "-3.98";
    QTest::newRow("position sensitive") << int(PsdDetector) << "mm"
                                        << "1.6667"
                                        << "-0.8333";
    QTest::newRow("wide") << int(WidDetector) << "µm"
                          << "15.38"
                          << "-7.69";
    QTest::newRow("4 mm") << int(UvPsd4Detector) << "mm"
                          << "0.6897"
                          << "-0.3448";
    QTest::newRow("10 mm") << int(UvPsd10Detector) << "mm"
                           << "1.8182"
                           << "-0.9091";
}

void TestRecordingValues::everyTypeOfDetectorIsRecordedInItsUnit()
{
    QFETCH(int, type);
    QFETCH(QString, unit);
    QFETCH(QString, x);
    QFETCH(QString, y);
    RecordingBench bench(
        2, sending({PacketValues{{{2000, -1000, 4000, 0, 0}, {2000, -1000, 4000, 0, 0}}}}));
    QVERIFY(bench.fixture.open());
    // Each stage once in length beside the other one in volts.
    for (std::size_t stage = 0; stage < 2; ++stage) {
        ConnectionSettings record = bench.fixture.record(int(stage));
        record.model = {type, type};
        record.calculation[stage] = type == SelectDetector ? 0 : 1;
        QVERIFY(bench.fixture.registerSystem(record, int(stage)));
    }
    QVERIFY(bench.openDialog());
    QVERIFY(bench.startAll());
    QVERIFY(bench.ticksUntilLines(1, "run_System_1.csv"));
    QVERIFY(bench.ticksUntilLines(1, "run_System_2.csv"));
    QVERIFY(bench.click("pushButton_Stop"));

    const QString columns("ms\tX1(%1)\tY1(%1)\tI1(V)\tX2(%2)\tY2(%2)\tI2(V)"
                          "\tRX1(V)\tRY1(V)\tRX2(V)\tRY2(V)");
    const QString line("0\t%1\t%2\t4.00\t%3\t%4\t4.00\t0.00\t0.00\t0.00\t0.00");
    QCOMPARE(columnsOf(bench.content("run_System_1.csv")), columns.arg(unit, "V"));
    QCOMPARE(bench.lines("run_System_1.csv").first(), line.arg(x, y, "2.000", "-1.000"));
    QCOMPARE(columnsOf(bench.content("run_System_2.csv")), columns.arg("V", unit));
    QCOMPARE(bench.lines("run_System_2.csv").first(), line.arg("2.000", "-1.000", x, y));
}

void TestRecordingValues::lengthsAreWhatTheControllerSent()
{
    constexpr int divider = 5;
    QVector<PacketValues> samples(2 * divider + 1);
    samples[0] = {{{2000, -2000, 4000, 5000, 5000}, {1200, -1, 3500, 5000, 5000}}};
    samples[divider] = {{{0, 5, 0, 4990, 5010}, {-1200, 0, 0, 0, 10000}}};
    samples[2 * divider] = {{{4000, -4000, 4000, 5000, 5000}, {32767, -32768, 3500, -4, 4}}};
    RecordingBench bench(1, sending(samples));
    QVERIFY(bench.fixture.open());
    ConnectionSettings record = bench.fixture.record();
    record.model = {QuadrantDetector, PsdDetector};
    record.calculation = {1, 1};
    QVERIFY(bench.fixture.registerSystem(record, 0));
    QVERIFY(bench.fixture.type("samplingRateCounter", "500"));
    QVERIFY(bench.openDialog());
    bench.in<QSpinBox>("spinBox_SaveRate").setValue(100);
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.ticksUntilLines(3));
    QVERIFY(bench.click("pushButton_Stop"));

    QCOMPARE(columnsOf(bench.content()), QString("ms\tX1(µm)\tY1(µm)\tI1(V)\tX2(mm)\tY2(mm)\tI2(V)"
                                                 "\tRX1(V)\tRY1(V)\tRX2(V)\tRY2(V)"));
    QCOMPARE(withoutTimes(bench.lines()),
             QStringList({"8.43\t-8.43\t4.00\t1.0000\t-0.0008\t3.50\t5.00\t5.00\t5.00\t5.00",
                          "-nan\t-nan\t0.00\t-1.0000\t0.0000\t0.00\t4.99\t5.01\t0.00\t10.00",
                          "inf\t-inf\t4.00\t27.3058\t-27.3067\t3.50\t5.00\t5.00\t-0.00\t0.00"}));
}

void TestRecordingValues::everySampleOfAPulsedLaserIsRecorded()
{
    ControllerOptions options = countingController();
    options.triggerCapable = true;
    options.triggerRateHz = 50;
    RecordingBench bench(2, options);
    QVERIFY(bench.fixture.open());
    ConnectionSettings pulsed = bench.fixture.record(0);
    pulsed.pulsedLaser = true;
    QVERIFY(bench.fixture.registerSystem(pulsed, 0));
    QVERIFY(bench.fixture.registerSystem(1));
    QVERIFY(bench.fixture.type("samplingRateCounter", "500"));
    QVERIFY(bench.openDialog());
    bench.in<QSpinBox>("spinBox_SaveRate").setValue(100);
    QVERIFY(bench.startAll());
    QVERIFY(bench.ticksUntilLines(20, "run_System_1.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(gapIn(numbersIn(bench.content("run_System_1.csv"))), QString());
    QVERIFY(bench.lines("run_System_2.csv").size() > 20);
    QCOMPARE(gapIn(numbersIn(bench.content("run_System_2.csv")), 5), QString());
}

void TestRecordingValues::foldersInLabelsAndEqualLabelsGiveFilesOfTheirOwn()
{
    RecordingBench bench(0);
    const QStringList labels{"left/upper", "right", "right"};
    for (int number = 0; number < labels.size(); ++number)
        bench.fixture.addController(standingAt(qint16(number + 1)));
    QVERIFY(bench.fixture.open());
    for (int number = 0; number < labels.size(); ++number) {
        ConnectionSettings record = bench.fixture.record(number);
        record.label.set(labels.at(number));
        QVERIFY(bench.fixture.registerSystem(record, number));
    }
    QVERIFY(bench.openDialog());
    QVERIFY(bench.startAll());
    const QStringList files{"run_left_upper.csv", "run_right.csv", "run_right_2.csv"};
    for (const QString& name : files)
        QVERIFY(bench.ticksUntilLines(2, name));
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(bench.files(), files);
    for (int number = 0; number < files.size(); ++number) {
        QVERIFY(bench.isWhole(files.at(number)));
        const QVector<quint16> positions = numbersIn(bench.content(files.at(number)));
        QCOMPARE(positions, QVector<quint16>(positions.size(), quint16(number + 1)));
    }
}

void TestRecordingValues::oneSystemIsRecordedInAFolderWithADot()
{
    RecordingBench bench;
    QVERIFY(QDir(bench.folder.path()).mkdir("of.today"));
    QVERIFY(bench.openAndStart("of.today/run.csv"));
    QVERIFY(bench.ticksUntilLines(5, "of.today/run.csv"));
    QVERIFY(bench.click("pushButton_Stop"));
    QVERIFY(bench.isWhole("of.today/run.csv"));
}

void TestRecordingValues::everySystemIsToldTheFileThatADotInAFolderGives()
{
    // The first dot of the whole path splits the name, as it always did.
    RecordingBench bench;
    QVERIFY(QDir(bench.folder.path()).mkdir("of.today"));
    QVERIFY(bench.open("of.today/run.csv"));
    QVERIFY(bench.click("checkBox"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(!bench.isRecording());
    auto* box = bench.fixture.find<QMessageBox>("recordingErrorBox");
    QVERIFY(box->isVisible());
    QCOMPARE(box->informativeText(),
             "File\n" + bench.path("of_System_1.today/run.csv") + "\nNo such file or directory");
    QVERIFY(QDir(bench.path("of.today")).isEmpty());
    box->close();
}

void TestRecordingValues::numbersHaveAPointInALocaleWithAComma()
{
    const DefaultLocale german{QLocale(QLocale::German)};
    QCOMPARE(QLocale().decimalPoint(), QChar(','));
    RecordingBench bench(
        1, sending({PacketValues{{{1234, -1234, 4005, 5000, 4999}, {0, -1, 5, -4, 32767}}}}));
    QVERIFY(bench.openAndStart());
    QVERIFY(bench.ticksUntilLines(1));
    QVERIFY(bench.click("pushButton_Stop"));
    QCOMPARE(bench.lines(),
             QStringList("0\t1.234\t-1.234\t4.00\t0.000\t-0.001\t0.01\t5.00\t5.00\t-0.00\t32.77"));
}

void TestRecordingValues::replayedRecordingHasTheSameValuesAgain()
{
    constexpr int rateHz = 100;
    constexpr quint64 periodMs = 1000 / rateHz;
    const QVector<PacketValues> samples{
        {{{0, -1, 4000, 5000, 4999}, {1234, -1234, 3500, 0, 10000}}},
        {{{32767, -32768, 65535, 32767, -32768}, {32767, -32768, 0, -4, -5}}},
        {{{5, -5, 4005, 15, 25}, {1000, -1000, 5, 4995, 5005}}},
        {{{250, -250, 4015, 5015, 5025}, {1, -2, 3505, 5035, 5045}}}};
    RecordingBench bench(0);
    QString error;
    ControllerOptions options;
    recordRegularly(bench.path("first.csv"), withVoltsAndMillimetres({}), samples, periodMs);
    options.replay = emulator::Replay::load(bench.path("first.csv"), error);
    QVERIFY2(options.replay, qPrintable(error));
    bench.fixture.addController(options);
    QVERIFY(bench.fixture.open());
    QVERIFY(bench.fixture.registerSystem(withVoltsAndMillimetres(bench.fixture.record()), 0));
    QVERIFY(bench.fixture.type("samplingRateCounter", QString::number(rateHz)));
    QVERIFY(bench.openDialog("again.csv"));
    QVERIFY(bench.click("pushButton_Start"));
    QVERIFY(bench.ticksUntilLines(3 * samples.size(), "again.csv"));
    QVERIFY(bench.click("pushButton_Stop"));

    QCOMPARE(columnsOf(bench.content("again.csv")), columnsOf(bench.content("first.csv")));
    const QVector<Values> first = valuesIn(bench.content("first.csv"));
    const QVector<Values> again = valuesIn(bench.content("again.csv"));
    QCOMPARE(first.size(), samples.size());
    // The first packet answers the start; behind the last line the replay begins anew.
    for (int i = 0; i < again.size(); ++i)
        QCOMPARE(again.at(i), first.at((i + 1) % first.size()));
}

QTEST_MAIN(TestRecordingValues)
#include "tst_recordingvalues.moc"
