#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

namespace {

/// Whether another process ignores a signal.
bool ignores(qint64 process, int signal)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray name = "SigIgn:";
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name)) {
            const quint64 mask = line.mid(name.size()).trimmed().toULongLong(nullptr, 16);
            return mask >> (signal - 1) & 1U;
        }
    }
    return false;
}

} // namespace

/// The application as its users start it, in a process of its own.
class TestProcess final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void withoutTheOptionNothingIsLogged();
    void startBeginsTheLog();
    void unknownArgumentBehindTheOptionGivesOneLine();
    void optionsBeforeTheLogAreNotInIt();
    void optionsOfTheToolkitAreReportedAndUsed();
    void secondRunAddsToTheLog();
    void decimalPointIsAPointWhateverTheLocale_data();
    void decimalPointIsAPointWhateverTheLocale();
    void executableComesUpAndLogs();
    void executableOutlivesAFileBeyondALimit();

private:
    /// Runs the application, which ends by itself.
    void runBriefly(const QStringList& arguments);
    QString logPath() const { return home->filePath(QStringLiteral("Lumetra/log.txt")); }
    /// Lines of the log without their time stamps.
    QStringList log() const;

    std::unique_ptr<QTemporaryDir> home;
    QProcessEnvironment environment;
    QByteArray printed;
    int status = -1;
};

void TestProcess::init()
{
    home = std::make_unique<QTemporaryDir>();
    environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home->path());
}

void TestProcess::runBriefly(const QStringList& arguments)
{
    constexpr int limitMs = 60000;
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(BRIEF_APPLICATION, arguments);
    process.waitForFinished(limitMs);
    printed = process.readAll();
    status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QStringList TestProcess::log() const
{
    constexpr int stampLength = 22; // dd.MM.yy,hh:mm:ss.zzz:
    QFile file(logPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    while (!file.atEnd())
        lines.append(QString::fromUtf8(file.readLine()).mid(stampLength).chopped(1));
    return lines;
}

void TestProcess::withoutTheOptionNothingIsLogged()
{
    runBriefly({"-a", "-s", "unknown"});
    QCOMPARE(status, 0);
    QCOMPARE(printed, QByteArray());
    QVERIFY(QFile::exists(home->filePath("Lumetra/Data")));
    QVERIFY(!QFile::exists(logPath()));
}

void TestProcess::startBeginsTheLog()
{
    runBriefly({"-l", "-a"});
    QCOMPARE(status, 0);
    QCOMPARE(printed, QByteArray());
    QCOMPARE(log().mid(0, 5), (QStringList{"[Info]:Activated logging",
                                           "[Info]:Deactivated automatic search for serial devices",
                                           "[Info]:Starting 2.3.1 B10624",
                                           "[Debug]:Number of command line arguments passed: 2",
                                           "[Debug]:Constructing main window"}));
    QCOMPARE(log().last(), QStringLiteral("[Debug]:Finished destroying main window"));
}

void TestProcess::unknownArgumentBehindTheOptionGivesOneLine()
{
    runBriefly({"-l", "-sl", "-a"});
    QCOMPARE(log().filter("Unrecognized"),
             QStringList{"[Info]:Unrecognized command line argument -sl"});
}

void TestProcess::optionsBeforeTheLogAreNotInIt()
{
    runBriefly({"-a", "-s", "unknown", "-l", "-d"});
    QCOMPARE(log().mid(0, 3),
             (QStringList{"[Info]:Activated logging",
                          "[Info]:Activated settings for tuning the detector sensitivity",
                          "[Info]:Starting 2.3.1 B10624"}));
}

void TestProcess::optionsOfTheToolkitAreReportedAndUsed()
{
    runBriefly({"-l", "-a", "-style", "windows"});
    QCOMPARE(log().filter("Unrecognized"),
             (QStringList{"[Info]:Unrecognized command line argument -style",
                          "[Info]:Unrecognized command line argument windows"}));
    QVERIFY(log().contains("[Debug]:Number of command line arguments passed: 4"));
    QCOMPARE(log().filter("Drawn in the style"),
             QStringList{"[Info]:Drawn in the style \"windows\""});
}

void TestProcess::secondRunAddsToTheLog()
{
    runBriefly({"-l", "-a"});
    const QStringList first = log();
    runBriefly({"-l", "-a"});
    QCOMPARE(log().mid(0, first.size()), first);
    QCOMPARE(log().count("[Info]:Starting 2.3.1 B10624"), 2);
}

void TestProcess::decimalPointIsAPointWhateverTheLocale_data()
{
    QTest::addColumn<QString>("variable");
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
        QTest::newRow(variable) << QString(variable);
}

void TestProcess::decimalPointIsAPointWhateverTheLocale()
{
    QFETCH(const QString, variable);
    environment.remove(QStringLiteral("LC_ALL"));
    environment.insert(variable, QStringLiteral("de_DE.UTF-8"));
    runBriefly({"-l", "-a"});
    QCOMPARE(log().filter("A half is"), QStringList{"[Info]:A half is \"0.5\""});
}

void TestProcess::executableComesUpAndLogs()
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(LUMETRA_EXECUTABLE, {"-l", "-a"});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains("[Debug]:Finished constructing main window"), 60000);
    process.terminate();
    QVERIFY(process.waitForFinished());
    QCOMPARE(log().mid(0, 1), QStringList{"[Info]:Activated logging"});
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

void TestProcess::executableOutlivesAFileBeyondALimit()
{
    // A process takes over what its parent ignores.
    std::signal(SIGXFSZ, SIG_DFL);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(LUMETRA_EXECUTABLE, {"-l", "-a"});
    QTRY_VERIFY_WITH_TIMEOUT(log().contains("[Debug]:Finished constructing main window"), 60000);
    QVERIFY(ignores(process.processId(), SIGXFSZ));
    process.terminate();
    QVERIFY(process.waitForFinished());
}

QTEST_GUILESS_MAIN(TestProcess)
#include "tst_process.moc"
