#include "emulator/commandline.h"
#include "program.h"
#include "serialclient.h"
#include "support/pseudoterminals.h"
#include "wiretools.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace emulator;
using namespace wiretools;

namespace {

QStringList linksIn(const QTemporaryDir& folder)
{
    return QDir(folder.path())
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestSerialProgram final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void readyLineOfASerialControllerTellsLinkAndKey();
    void serialControllersStandBesideOthers();
    void serialControllersHaveOptionsOfTheirOwn();
    void signalTakesTheLinksAway_data();
    void signalTakesTheLinksAway();
    void linkOfAKilledRunIsReplaced();
    void fileInPlaceOfALinkIsNamed();
    void folderWithoutRightsIsNamed();
    void failureTakesTheOtherLinksAway();
    void serialOptionsReachTheController_data();
    void serialOptionsReachTheController();
    void openingAndClosingAPortIsTold();
};

void TestSerialProgram::initTestCase()
{
    if (!pseudoTerminalProblem().isEmpty())
        QSKIP(qPrintable(pseudoTerminalProblem()));
}

void TestSerialProgram::readyLineOfASerialControllerTellsLinkAndKey()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("ttyUSB77");
    Program program({"--pty", link, "--quiet"});

    const QStringList line = program.readLine().split(' ');

    QCOMPARE(line.size(), 3);
    QCOMPARE(line[0], QString("pty"));
    QCOMPARE(line[1], link);
    SerialClient client(link);
    QCOMPARE(QString::fromLatin1(client.exchange("GID;", 50).mid(16, 11)), line[2]);
}

void TestSerialProgram::serialControllersStandBesideOthers()
{
    const QTemporaryDir folder;
    const QString one = folder.filePath("one");
    const QString two = folder.filePath("two");
    Program program({"--pty", one, "--tcp", "127.0.0.1:0", "--pty", two, "--baud", "921600"});

    const QStringList tcp = program.readLine().split(' ');
    const QStringList first = program.readLine().split(' ');
    const QStringList second = program.readLine().split(' ');

    QCOMPARE(tcp[0], QString("tcp"));
    QCOMPARE(first.mid(0, 2), QStringList({"pty", one}));
    QCOMPARE(second.mid(0, 2), QStringList({"pty", two}));
    QCOMPARE(QSet<QString>({tcp[2], first[2], second[2]}).size(), 3);
    SerialClient client(two, 921600);
    QVERIFY(client.exchange("GID;", 50).contains(second[2].toLatin1()));
}

void TestSerialProgram::serialControllersHaveOptionsOfTheirOwn()
{
    const QTemporaryDir folder;
    const QString one = folder.filePath("one");
    const QString two = folder.filePath("two");
    Program program({"--pty", one + ",baud=921600,refuse=SEA:02", "--pty", two, "--quiet"});
    program.readLine();
    program.readLine();

    SerialClient fast(one, 921600);
    QCOMPARE(fast.exchange("SEA" + hex("02 3b"), 2), refused());
    QCOMPARE(fast.exchange("SEA" + hex("01 3b"), 2), accepted());
    SerialClient usual(two);
    QCOMPARE(usual.exchange("SEA" + hex("02 3b"), 2), accepted());
}

void TestSerialProgram::signalTakesTheLinksAway_data()
{
    QTest::addColumn<int>("number");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestSerialProgram::signalTakesTheLinksAway()
{
    QFETCH(int, number);
    const QTemporaryDir folder;
    Program program({"--pty", folder.filePath("one"), "--pty", folder.filePath("two")});
    program.readLine();
    program.readLine();
    QCOMPARE(linksIn(folder), QStringList({"one", "two"}));
    SerialClient client(folder.filePath("one"));
    QCOMPARE(client.exchange(startAt(500), packetBytes).size(), packetBytes);

    QVERIFY(program.sendSignal(number));

    QVERIFY(program.process.waitForFinished(limitMs));
    QCOMPARE(program.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.process.exitCode(), 0);
    QCOMPARE(linksIn(folder), QStringList());
}

void TestSerialProgram::linkOfAKilledRunIsReplaced()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("ttyUSB77");
    Program first({"--pty", link});
    first.readLine();
    QVERIFY(first.sendSignal(SIGKILL));
    QVERIFY(first.process.waitForFinished(limitMs));
    QCOMPARE(linksIn(folder), QStringList({"ttyUSB77"}));

    Program second({"--pty", link});

    const QStringList line = second.readLine().split(' ');
    QCOMPARE(line.size(), 3);
    SerialClient client(link);
    QVERIFY(client.exchange("GID;", 50).contains(line[2].toLatin1()));
}

void TestSerialProgram::fileInPlaceOfALinkIsNamed()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("precious"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("data");
    file.close();

    Program program({"--pty", file.fileName()});

    QVERIFY(program.process.waitForFinished(limitMs));
    QCOMPARE(program.process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(program.process.readAllStandardError()),
             QString("lumetra-emulator: %1: exists\n").arg(file.fileName()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("data"));
}

void TestSerialProgram::folderWithoutRightsIsNamed()
{
    // Not even root may make a link there.
    const QString link = "/proc/self/ttyUSB77";

    Program program({"--pty", link});

    QVERIFY(program.process.waitForFinished(limitMs));
    QCOMPARE(program.process.exitCode(), 1);
    const QString error = QString::fromUtf8(program.process.readAllStandardError());
    QVERIFY2(error.startsWith("lumetra-emulator: " + link + ": "), qPrintable(error));
    QCOMPARE(error.count('\n'), 1);
}

void TestSerialProgram::failureTakesTheOtherLinksAway()
{
    const QTemporaryDir folder;

    Program program({"--pty", folder.filePath("one"), "--pty", folder.filePath("one")});

    QVERIFY(program.process.waitForFinished(limitMs));
    QCOMPARE(program.process.exitCode(), 1);
    QVERIFY(program.process.readAllStandardError().contains("exists, and leads to /dev/pts/"));
    QCOMPARE(program.process.readAllStandardOutput(), QByteArray());
    QCOMPARE(linksIn(folder), QStringList());
}

void TestSerialProgram::serialOptionsReachTheController_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<bool>("flowControl");

    QTest::newRow("none") << QStringList() << 115200 << true;
    QTest::newRow("115200") << QStringList({"--baud", "115200"}) << 115200 << true;
    QTest::newRow("460800") << QStringList({"--baud", "460800"}) << 460800 << true;
    QTest::newRow("921600") << QStringList({"--baud", "921600"}) << 921600 << true;
    QTest::newRow("no flow control") << QStringList({"--no-flow-control"}) << 115200 << false;
}

void TestSerialProgram::serialOptionsReachTheController()
{
    QFETCH(QStringList, arguments);

    const CommandLine line =
        readCommandLine(QStringList({"lumetra-emulator", "--pty", "a", "--pty", "b"}) + arguments);

    QCOMPARE(line.wish, CommandLine::Wish::Run);
    QCOMPARE(line.placements.size(), 2);
    QCOMPARE(line.placements[0].link, QString("a"));
    QCOMPARE(line.placements[1].link, QString("b"));
    for (const Placement& placement : line.placements) {
        QTEST(placement.options.baudRate, "baudRate");
        QTEST(placement.options.hardwareFlowControl, "flowControl");
    }
}

void TestSerialProgram::openingAndClosingAPortIsTold()
{
    const QTemporaryDir folder;
    const QString link = folder.filePath("ttyUSB77");
    Program program({"--pty", link});
    program.readLine();
    {
        SerialClient client(link);
        QCOMPARE(client.exchange("XYZ;", 2), refused());
    }
    program.process.setReadChannel(QProcess::StandardError);

    QCOMPARE(program.readLine(), link + ": connected");
    QCOMPARE(program.readLine(), link + ": refused XYZ");
    QCOMPARE(program.readLine(), link + ": disconnected");
}

QTEST_GUILESS_MAIN(TestSerialProgram)
#include "tst_serialprogram.moc"
