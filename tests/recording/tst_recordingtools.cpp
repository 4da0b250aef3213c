// Recordings open as they are in the tools that people use.

#include "recordbench.h"

#include <QProcess>
#include <QtTest>

#include <memory>

namespace {

constexpr RecordRates everySample{500, 500};

/// What a program printed.
struct Run
{
    bool isGood = false;
    QString printed;
};

/// The first of these programs that runs with these arguments without an error; empty if none does.
QString firstThatRuns(const QStringList& programs, const QStringList& arguments)
{
    for (const QString& program : programs) {
        QProcess process;
        process.start(program, arguments);
        if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0)
            return program;
    }
    return {};
}

/// Python that can import a module. The one of the distribution need not be the first in the path.
QString pythonWith(const QString& module)
{
    return firstThatRuns({"python3", "/usr/bin/python3"}, {"-c", "import " + module});
}

Run run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    Run result;
    result.isGood = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
                    && process.exitCode() == 0;
    result.printed = QString::fromUtf8(process.readAll()).trimmed();
    return result;
}

} // namespace

class TestRecordingTools final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pythonReadsTheFields();
    void numpyReadsTheColumns();
    void numpyReadsWhatIsNotFinite();
    void gnuplotReadsTheColumns();
    void gnuplotDrawsARecording();

private:
    std::unique_ptr<RecordBench> bench;
    /// One second of samples, of which x of stage 1 counts millivolts from 1 on.
    static constexpr int lines = 500;
    QString recording;
};

void TestRecordingTools::init()
{
    bench = std::make_unique<RecordBench>();
    recording = bench->path("run.csv");
    QVERIFY(!bench->startOne(0, {0}, everySample));
    bench->take(0, lines);
    QVERIFY(!bench->recorder.stop());
}

void TestRecordingTools::pythonReadsTheFields()
{
    const QString python = pythonWith("csv");
    if (python.isEmpty())
        QSKIP("This machine has no Python");
    const Run read = run(python, {"-c",
                                  "import csv, sys\n"
                                  "name = sys.argv[1]\n"
                                  "with open(name, newline='', encoding='utf-8') as file:\n"
                                  "    rows = list(csv.reader(file, delimiter='\\t'))\n"
                                  "print(len(rows), set(len(row) for row in rows[3:]))\n"
                                  "print(*rows[0]); print(*rows[1]); print(*rows[2])\n"
                                  "print(*rows[3]); print(*rows[-1])\n",
                                  recording});
    QVERIFY2(read.isGood, qPrintable(read.printed));
    QCOMPARE(read.printed.split('\n'),
             QStringList({"503 {11}", "Start: 2026-03-01T12:34:56",
                          "ms X1(V) Y1(V) I1(V) X2(V) Y2(V) I2(V) RX1(V) RY1(V) RX2(V) RY2(V)", "",
                          "0 0.001 0.000 0.00 0.000 0.000 0.00 0.00 0.00 0.00 0.00",
                          "998 0.500 0.000 0.00 0.000 0.000 0.00 0.00 0.00 0.00 0.00"}));
}

void TestRecordingTools::numpyReadsTheColumns()
{
    const QString python = pythonWith("numpy");
    if (python.isEmpty())
        QSKIP("This machine has no Python with numpy");
    const Run read = run(python, {"-c",
                                  "import numpy, sys\n"
                                  "columns = numpy.loadtxt(sys.argv[1], skiprows=3)\n"
                                  "print(columns.shape)\n"
                                  "print((columns[:, 0] == numpy.arange(500) * 2).all())\n"
                                  "print(numpy.abs(columns[:, 1] * 1000\n"
                                  "                - numpy.arange(1, 501)).max() < 1e-9)\n",
                                  recording});
    QVERIFY2(read.isGood, qPrintable(read.printed));
    QCOMPARE(read.printed.split('\n'), QStringList({"(500, 11)", "True", "True"}));
}

void TestRecordingTools::numpyReadsWhatIsNotFinite()
{
    const QString python = pythonWith("numpy");
    if (python.isEmpty())
        QSKIP("This machine has no Python with numpy");
    const Run read = run(python, {"-c",
                                  "import numpy, sys\n"
                                  "columns = numpy.loadtxt(sys.argv[1], skiprows=3,\n"
                                  "                        encoding='utf-8')\n"
                                  "print(*columns[:, 1]); print(*columns[:, 2])\n",
                                  QFINDTESTDATA("data/lengths.csv")});
    QVERIFY2(read.isGood, qPrintable(read.printed));
    QCOMPARE(read.printed.split('\n'), QStringList({"8.43 nan inf", "-8.43 nan -inf"}));
}

void TestRecordingTools::gnuplotReadsTheColumns()
{
    const QString gnuplot = firstThatRuns({"gnuplot"}, {"--version"});
    if (gnuplot.isEmpty())
        QSKIP("This machine has no gnuplot");
    const Run read = run(gnuplot, {"-e", "file = '" + recording
                                             + "'; stats file skip 3 using 1:2 nooutput; "
                                               "set print '-'; print STATS_records, STATS_invalid; "
                                               "print STATS_max_x; print STATS_min_y, STATS_max_y; "
                                               "stats file skip 3 nooutput; print STATS_columns"});
    QVERIFY2(read.isGood, qPrintable(read.printed));
    QCOMPARE(read.printed.split('\n'), QStringList({"500 0", "998.0", "0.001 0.5", "11"}));
}

void TestRecordingTools::gnuplotDrawsARecording()
{
    const QString gnuplot = firstThatRuns({"gnuplot"}, {"--version"});
    if (gnuplot.isEmpty())
        QSKIP("This machine has no gnuplot");
    QProcess process;
    process.setWorkingDirectory(bench->folder.path());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(gnuplot, {"-e", "set terminal svg; set output 'run.svg'", "-"});
    process.write("set xlabel 'ms'\n"
                  "plot for [c=2:3] 'run.csv' skip 1 using 1:c with lines title columnheader(c)\n");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAll(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    const QByteArray picture = bench->bytes("run.svg");
    QCOMPARE(picture.count("<g id=\"gnuplot_plot_"), 2);
    for (const char* title : {">X1(V)<", ">Y1(V)<"})
        QVERIFY2(picture.contains(title), title);
}

QTEST_GUILESS_MAIN(TestRecordingTools)
#include "tst_recordingtools.moc"
