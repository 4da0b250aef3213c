#include "app/logging.h"
#include "app/messagelog.h"
#include "app/switches.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>
#include <vector>

Q_DECLARE_METATYPE(QtMsgType)

class TestMessageLog final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void withoutTheSwitchNoFileAppears();
    void messageBeforeTheSwitchIsNotWritten();
    void linesOfEarlierRunsAreKept();
    void lineIsStampLevelAndMessage_data();
    void lineIsStampLevelAndMessage();
    void unknownLevelLeavesItsTagEmpty();
    void writtenLineBearsTheTimeOfWriting();
    void textStandsPlainAndValuesInQuotes();
    void everyLevelIsWritten();
    void fileThatCanNotBeOpenedLosesTheMessage();
    void threadsKeepTheirLinesWhole();

private:
    QString path() const { return home->filePath(QStringLiteral("log.txt")); }
    QStringList lines() const;

    std::unique_ptr<QTemporaryDir> home;
    QtMessageHandler previous = nullptr;
};

void TestMessageLog::init()
{
    home = std::make_unique<QTemporaryDir>();
    switches::configDir = QDir(home->path());
    switches::fileLogging = true;
    previous = qInstallMessageHandler(writeToMessageLog);
}

void TestMessageLog::cleanup()
{
    qInstallMessageHandler(previous);
    switches::fileLogging = false;
}

QStringList TestMessageLog::lines() const
{
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList list = QString::fromUtf8(file.readAll()).split('\n');
    // The last line ends with a line feed, behind which split() finds an empty line.
    list.removeLast();
    return list;
}

void TestMessageLog::withoutTheSwitchNoFileAppears()
{
    switches::fileLogging = false;
    logMessage().info() << "nobody reads this";
    QVERIFY(!QFile::exists(path()));
}

void TestMessageLog::messageBeforeTheSwitchIsNotWritten()
{
    switches::fileLogging = false;
    switches::readArgument("-s");
    switches::readArgument("-l");
    switches::serviceMode = false;
    QCOMPARE(lines().size(), 1);
    QVERIFY(lines().first().endsWith(":[Info]:Activated logging"));
}

void TestMessageLog::linesOfEarlierRunsAreKept()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("a line of an earlier run\n");
    file.close();
    logMessage().info() << "now";
    QCOMPARE(lines().size(), 2);
    QCOMPARE(lines().first(), QStringLiteral("a line of an earlier run"));
    QVERIFY(lines().last().endsWith(":[Info]:now"));
}

void TestMessageLog::lineIsStampLevelAndMessage_data()
{
    QTest::addColumn<QtMsgType>("type");
    QTest::addColumn<QString>("line");
    QTest::newRow("debug") << QtDebugMsg << "07.03.24,09:05:04.003:[Debug]:a: b";
    QTest::newRow("info") << QtInfoMsg << "07.03.24,09:05:04.003:[Info]:a: b";
    QTest::newRow("warning") << QtWarningMsg << "07.03.24,09:05:04.003:[Warning]:a: b";
    QTest::newRow("critical") << QtCriticalMsg << "07.03.24,09:05:04.003:[Critical]:a: b";
    QTest::newRow("fatal") << QtFatalMsg << "07.03.24,09:05:04.003:[Fatal]:a: b";
}

void TestMessageLog::lineIsStampLevelAndMessage()
{
    QFETCH(const QtMsgType, type);
    const QDateTime when(QDate(2024, 3, 7), QTime(9, 5, 4, 3));
    QTEST(messageLogLine(type, when, QStringLiteral("a: b")), "line");
}

void TestMessageLog::unknownLevelLeavesItsTagEmpty()
{
    constexpr auto unknown = static_cast<QtMsgType>(QtInfoMsg + 1);
    const QDateTime when(QDate(2024, 12, 31), QTime(23, 59, 59, 999));
    QCOMPARE(messageLogLine(unknown, when, QStringLiteral("text")),
             QStringLiteral("31.12.24,23:59:59.999::text"));
}

void TestMessageLog::writtenLineBearsTheTimeOfWriting()
{
    const QString format = QStringLiteral("dd.MM.yy,hh:mm:ss.zzz");
    const auto throughText = [&](const QString& text) {
        return QDateTime::fromString(text, format);
    };
    const QDateTime before = throughText(QDateTime::currentDateTime().toString(format));
    logMessage().info() << "when";
    const QDateTime after = throughText(QDateTime::currentDateTime().toString(format));
    const QString line = lines().value(0);
    const QDateTime stamp = throughText(line.left(line.indexOf(":[Info]:when")));
    QVERIFY(stamp.isValid());
    QVERIFY(before <= stamp);
    QVERIFY(stamp <= after);
}

void TestMessageLog::textStandsPlainAndValuesInQuotes()
{
    logMessage().warning() << "Skipping" << QString("a b") << QByteArray("c;") << 3;
    QVERIFY(lines().value(0).endsWith(":[Warning]:Skipping \"a b\" \"c;\" 3"));
}

void TestMessageLog::everyLevelIsWritten()
{
    logMessage().debug() << "1";
    logMessage().info() << "2";
    logMessage().warning() << "3";
    logMessage().critical() << "4";
    const QStringList written = lines();
    QCOMPARE(written.size(), 4);
    QVERIFY(written[0].endsWith(":[Debug]:1"));
    QVERIFY(written[1].endsWith(":[Info]:2"));
    QVERIFY(written[2].endsWith(":[Warning]:3"));
    QVERIFY(written[3].endsWith(":[Critical]:4"));
}

void TestMessageLog::fileThatCanNotBeOpenedLosesTheMessage()
{
    QVERIFY(QDir(home->path()).mkdir(QStringLiteral("log.txt")));
    logMessage().info() << "lost";
    QVERIFY(QDir(home->path()).rmdir(QStringLiteral("log.txt")));
    logMessage().info() << "kept";
    QCOMPARE(lines().size(), 1);
    QVERIFY(lines().first().endsWith(":kept"));
}

void TestMessageLog::threadsKeepTheirLinesWhole()
{
    constexpr int threadCount = 4;
    constexpr int messageCount = 100;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([number] {
            for (int i = 0; i < messageCount; ++i)
                logMessage().debug() << "thread" << number << "message" << i;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const QStringList all = lines();
    QCOMPARE(all.size(), threadCount * messageCount);
    for (int number = 0; number < threadCount; ++number) {
        const QRegularExpression whole(
            QStringLiteral("^[0-9.]+,[0-9:.]+:\\[Debug\\]:thread %1 message [0-9]+$").arg(number));
        QCOMPARE(all.filter(whole).size(), messageCount);
    }
}

QTEST_GUILESS_MAIN(TestMessageLog)
#include "tst_messagelog.moc"
