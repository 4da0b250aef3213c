#include "emulator/commandline.h"
#include "emulator/ruletext.h"
#include "program.h"
#include "wiretools.h"

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <limits>
#include <vector>

using namespace emulator;
using namespace wiretools;

namespace {

constexpr const char* allOptions[] = {"--tcp",
                                      "--firmware",
                                      "--vm",
                                      "--trigger",
                                      "--trigger-rate",
                                      "--seed",
                                      "--preset",
                                      "--detector",
                                      "--refuse",
                                      "--silent",
                                      "--late",
                                      "--short",
                                      "--drop-every",
                                      "--insert-every",
                                      "--insert-count",
                                      "--corrupt-every",
                                      "--close-after",
                                      "--reply",
                                      "--close-on",
                                      "--half-close-on",
                                      "--garbage",
                                      "--replay",
                                      "--quiet",
                                      "--help",
                                      "--version",
                                      "--pty",
                                      "--baud",
                                      "--no-flow-control",
                                      "--options",
                                      "--label",
                                      "--key",
                                      "--group",
                                      "--detector1",
                                      "--detector2",
                                      "--diameter1",
                                      "--diameter2",
                                      "--offset1",
                                      "--offset2",
                                      "--pfactor",
                                      "--pfactor-input",
                                      "--sensitivity-input",
                                      "--adjust-input1",
                                      "--adjust-input2"};

struct Ready
{
    QString address;
    quint16 port = 0;
    QString key;
};

Ready readyFrom(const QString& line)
{
    const QRegularExpression form("^tcp ([0-9.]+):([0-9]+) ([A-Z0-9]{11})$");
    const QRegularExpressionMatch match = form.match(line);
    return {match.captured(1), match.captured(2).toUShort(), match.captured(3)};
}

volatile std::sig_atomic_t signalsReceived = 0;

/// The reply of the controller at that place; empty if none answers.
QByteArray replyAt(const Ready& place, const QByteArray& command, int replyBytes)
{
    QTcpSocket socket;
    socket.connectToHost(place.address, place.port);
    if (!socket.waitForConnected(limitMs))
        return {};
    socket.write(command);
    while (socket.bytesAvailable() < replyBytes && socket.waitForReadyRead(limitMs)) {}
    return socket.read(replyBytes);
}

/// How the controller at that place identifies itself.
QByteArray idAt(const Ready& place)
{
    return replyAt(place, "GID;", 50);
}

QString keyAt(const Ready& place)
{
    return QString::fromLatin1(idAt(place).mid(16, 11));
}

QStringList described(const QList<Rule>& rules)
{
    QStringList texts;
    for (const Rule& rule : rules)
        texts.append(describe(rule));
    return texts;
}

CommandLine readArguments(const QStringList& arguments)
{
    return readCommandLine(QStringList("lumetra-emulator") + arguments);
}

} // namespace

class TestProgram final : public QObject
{
    Q_OBJECT

private slots:
    void readyLineTellsPlaceAndKey();
    void everyControllerAnswersAtItsOwnAddress();
    void everyControllerHasOptionsOfItsOwn();
    void runsRepeat();
    void signalEndsItInOrder_data();
    void signalEndsItInOrder();
    void helpNamesEveryOption();
    void manPageNamesEveryOptionOfTheHelp();
    void versionIsTold();
    void wrongOptionIsNamed_data();
    void wrongOptionIsNamed();
    void takenPortIsNamed();
    void optionsReachTheController();
    void faultsReachTheController();
    void ruleActsAsOftenAsTold();
    void ruleThatNeverActedIsToldUnlessQuiet();
    void exampleStartsFourSystemsThatDiffer();
    void beamStandsWhereItIsPut();
    void recordingIsStreamed();
    void connectionsAreToldUnlessQuiet();
    void signalToAProgramThatHasEndedReachesNobody();
};

void TestProgram::readyLineTellsPlaceAndKey()
{
    Program program({"--tcp", "127.0.0.1:0"});

    const Ready ready = readyFrom(program.readLine());

    QCOMPARE(ready.address, QString("127.0.0.1"));
    QVERIFY(ready.port > 0);
    QVERIFY(!ready.key.isEmpty());
    QCOMPARE(keyAt(ready), ready.key);
}

void TestProgram::everyControllerAnswersAtItsOwnAddress()
{
    Program program({"--tcp", "127.0.0.1:0", "--tcp", "127.0.0.2:0", "--tcp", "127.0.0.1:0"});
    std::vector<Ready> controllers;
    for (int i = 0; i < 3; ++i)
        controllers.push_back(readyFrom(program.readLine()));
    QSet<QString> keys;

    for (const Ready& controller : controllers) {
        QCOMPARE(keyAt(controller), controller.key);
        keys.insert(controller.key);
    }

    QCOMPARE(keys.size(), 3);
    QCOMPARE(controllers[0].address, QString("127.0.0.1"));
    QCOMPARE(controllers[1].address, QString("127.0.0.2"));
    QCOMPARE(controllers[2].address, QString("127.0.0.1"));
    QVERIFY(controllers[0].port != controllers[2].port);
}

void TestProgram::everyControllerHasOptionsOfItsOwn()
{
    Program program({"--tcp", "127.0.0.1:0,firmware=10", "--tcp", "127.0.0.1:0,vm,refuse=GID",
                     "--tcp", "127.0.0.1:0,vm", "--firmware", "31"});
    std::vector<Ready> controllers;
    for (int i = 0; i < 3; ++i)
        controllers.push_back(readyFrom(program.readLine()));

    QVERIFY(idAt(controllers[0]).contains("-V10-"));
    QCOMPARE(replyAt(controllers[1], "GID;", 2), refused());
    QVERIFY(idAt(controllers[2]).contains("-VM31-"));
}

void TestProgram::runsRepeat()
{
    const auto firstPackets = [] {
        Program program({"--tcp", "127.0.0.1:0", "--seed", "7"});
        const Ready ready = readyFrom(program.readLine());
        QTcpSocket socket;
        socket.connectToHost(ready.address, ready.port);
        socket.waitForConnected(limitMs);
        socket.write(startAt(1000));
        while (socket.bytesAvailable() < 50 * packetBytes && socket.waitForReadyRead(limitMs)) {}
        return ready.key.toLatin1() + socket.read(50 * packetBytes);
    };

    const QByteArray packets = firstPackets();
    QCOMPARE(packets.size(), 11 + 50 * packetBytes);
    QCOMPARE(firstPackets(), packets);
}

void TestProgram::signalEndsItInOrder_data()
{
    QTest::addColumn<int>("number");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestProgram::signalEndsItInOrder()
{
    QFETCH(int, number);
    Program program({"--tcp", "127.0.0.1:0"});
    const Ready ready = readyFrom(program.readLine());
    QTcpSocket socket;
    socket.connectToHost(ready.address, ready.port);
    QVERIFY(socket.waitForConnected(limitMs));
    socket.write(startAt(500));
    QVERIFY(socket.waitForReadyRead(limitMs));

    QVERIFY(program.sendSignal(number));

    QVERIFY(program.process.waitForFinished(limitMs));
    QCOMPARE(program.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.process.exitCode(), 0);
    QVERIFY(socket.state() == QAbstractSocket::UnconnectedState
            || socket.waitForDisconnected(limitMs));
}

void TestProgram::helpNamesEveryOption()
{
    Program program({"--help"});
    QVERIFY(program.process.waitForFinished(limitMs));

    QCOMPARE(program.process.exitCode(), 0);
    const QString help = QString::fromUtf8(program.process.readAllStandardOutput());
    for (const char* option : allOptions)
        QVERIFY2(help.contains(option), option);
    QCOMPARE(program.process.readAllStandardError(), QByteArray());
}

void TestProgram::manPageNamesEveryOptionOfTheHelp()
{
    QFile page(QStringLiteral(LUMETRA_EMULATOR_MAN_PAGE));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QString manual = QString::fromUtf8(page.readAll().replace("\\-", "-"));
    const QString help = readArguments({"--help"}).text;
    QRegularExpressionMatchIterator options = QRegularExpression("--[a-z0-9-]+").globalMatch(help);
    int count = 0;
    for (; options.hasNext(); ++count) {
        const QString option = options.next().captured();
        QVERIFY2(manual.contains(QRegularExpression(option + "\\b(?!-)")), qPrintable(option));
    }
    QVERIFY(count >= int(std::size(allOptions)));
}

void TestProgram::versionIsTold()
{
    Program program({"--version"});
    QVERIFY(program.process.waitForFinished(limitMs));

    QVERIFY(program.process.readAllStandardOutput().startsWith("lumetra-emulator "));
    QCOMPARE(program.process.exitCode(), 0);
}

void TestProgram::wrongOptionIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");

    const auto row = [](const QStringList& arguments, const QString& named) {
        QTest::newRow(qPrintable(arguments.join(' ')))
            << QStringList({"--tcp", "127.0.0.1:0"}) + arguments << named;
    };
    QTest::newRow("nothing") << QStringList() << "--tcp";
    QTest::newRow("no port") << QStringList({"--tcp", "127.0.0.1"}) << "127.0.0.1";
    QTest::newRow("name") << QStringList({"--tcp", "localhost:0"}) << "localhost:0";
    QTest::newRow("port too great") << QStringList({"--tcp", "127.0.0.1:65536"}) << "65536";
    row({"--pty", ""}, "--pty");
    row({"--baud", "9600"}, "9600");
    row({"--baud", "fast"}, "--baud");
    row({"--nonsense"}, "nonsense");
    row({"stray"}, "stray");
    row({"--firmware", "-1"}, "--firmware");
    row({"--firmware", "new"}, "new");
    row({"--seed", "x"}, "--seed");
    row({"--preset", "wild"}, "wild");
    row({"--detector", "eye"}, "eye");
    row({"--trigger-rate", "-3"}, "--trigger-rate");
    row({"--trigger-rate", "nan"}, "--trigger-rate");
    row({"--trigger-rate", "1001"}, "1001");
    row({"--trigger-rate", "1e-300"}, "0.01");
    row({"--refuse", "ABC"}, "ABC");
    row({"--late", "GSF"}, "GSF");
    row({"--late", "GSF=soon"}, "soon");
    row({"--short", "XYZ=2"}, "XYZ");
    row({"--refuse", "SPF:0"}, "\"0\"");
    row({"--reply", "GSF"}, "--reply");
    row({"--drop-every", "-1"}, "--drop-every");
    row({"--insert-count", "16385"}, "from 0 to 16384");
    row({"--insert-count", "1000000000"}, "from 0 to 16384");
    row({"--replay", "/nowhere/none.csv"}, "/nowhere/none.csv");
}

void TestProgram::wrongOptionIsNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    Program program(arguments);
    QVERIFY(program.process.waitForFinished(limitMs));

    QVERIFY(program.process.exitCode() != 0);
    const QString error = QString::fromUtf8(program.process.readAllStandardError());
    QVERIFY2(error.startsWith("lumetra-emulator: "), qPrintable(error));
    QVERIFY2(error.contains(named), qPrintable(error));
    QCOMPARE(error.count('\n'), 1);
    QCOMPARE(program.process.readAllStandardOutput(), QByteArray());
}

void TestProgram::takenPortIsNamed()
{
    Program first({"--tcp", "127.0.0.1:0"});
    const QString place = QString("127.0.0.1:%1").arg(readyFrom(first.readLine()).port);

    Program second({"--tcp", place});

    QVERIFY(second.process.waitForFinished(limitMs));
    QCOMPARE(second.process.exitCode(), 1);
    QVERIFY(second.process.readAllStandardError().contains(place.toUtf8()));
}

void TestProgram::optionsReachTheController()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.3:2000", "--tcp", "[::1]:2001", "--firmware", "12", "--vm",
                       "--trigger", "--trigger-rate", "2.5", "--seed", "18446744073709551615",
                       "--preset", "noisy", "--detector", "quadrant", "--quiet"});

    QCOMPARE(line.wish, CommandLine::Wish::Run);
    QCOMPARE(line.placements.size(), 2);
    QCOMPARE(line.placements[0].tcp->address, QHostAddress("127.0.0.3"));
    QCOMPARE(line.placements[0].tcp->port, quint16(2000));
    QCOMPARE(line.placements[1].tcp->address, QHostAddress("::1"));
    const ControllerOptions& options = line.placements[0].options;
    QCOMPARE(options.firmware, 12);
    QVERIFY(options.vm);
    QVERIFY(options.triggerCapable);
    QCOMPARE(options.triggerRateHz, 2.5);
    QCOMPARE(options.seed, std::numeric_limits<quint64>::max());
    QCOMPARE(options.preset, Preset::Noisy);
    QCOMPARE(options.stages[0].detector, DetectorKind::Quadrant);
    QCOMPARE(options.stages[1].detector, DetectorKind::Quadrant);
    QVERIFY(line.quiet);
}

void TestProgram::faultsReachTheController()
{
    const CommandLine line = readArguments({"--tcp",
                                            "127.0.0.1:0",
                                            "--refuse",
                                            "SEA",
                                            "--refuse",
                                            "cea",
                                            "--silent",
                                            "GSF",
                                            "--late",
                                            "GID=800",
                                            "--short",
                                            "GPF=3",
                                            "--close-on",
                                            "SMD",
                                            "--half-close-on",
                                            "CMD",
                                            "--garbage",
                                            "--drop-every",
                                            "2",
                                            "--insert-every",
                                            "3",
                                            "--insert-count",
                                            "4",
                                            "--corrupt-every",
                                            "5",
                                            "--close-after",
                                            "6"});

    QCOMPARE(line.wish, CommandLine::Wish::Run);
    const Faults& faults = line.placements[0].options.faults;
    QCOMPARE(described(faults.rules),
             QStringList({"refuse SEA", "refuse CEA", "silent GSF", "late GID=800", "short GPF=3",
                          "close-on SMD", "half-close-on CMD"}));
    QVERIFY(faults.garbageReplies);
    QCOMPARE(faults.dropByteEvery, 2);
    QCOMPARE(faults.insertBytesEvery, 3);
    QCOMPARE(faults.insertCount, 4);
    QCOMPARE(faults.corruptByteEvery, 5);
    QCOMPARE(faults.closeAfterPackets, 6);
}

void TestProgram::ruleActsAsOftenAsTold()
{
    Program program({"--tcp", "127.0.0.1:0,refuse=GSF:skip=1:times=1", "--reply", "GSF=003b7f3b"});
    const Ready ready = readyFrom(program.readLine());

    QCOMPARE(replyAt(ready, "GSF;GSF;GSF;", 10), hex("003b7f3b 013b 003b7f3b"));
}

void TestProgram::ruleThatNeverActedIsToldUnlessQuiet()
{
    for (const bool quiet : {false, true}) {
        QStringList arguments{"--tcp", "127.0.0.1:0", "--refuse", "SPF:01", "--silent", "GID"};
        if (quiet)
            arguments.append("--quiet");
        Program program(arguments);
        const Ready ready = readyFrom(program.readLine());
        // The first command is not answered.
        QCOMPARE(replyAt(ready, "GID;GSF;", 4), hex("003b013b"));
        QVERIFY(program.sendSignal(SIGTERM));
        QVERIFY(program.process.waitForFinished(limitMs));

        const QByteArray told = program.process.readAllStandardError();
        const QString place = QString("127.0.0.1:%1").arg(ready.port);
        QCOMPARE(told.contains((place + ": refuse SPF:01 never acted\n").toUtf8()), !quiet);
        QVERIFY(!told.contains("silent GID"));
        QCOMPARE(told.isEmpty(), quiet);
    }
}

void TestProgram::exampleStartsFourSystemsThatDiffer()
{
    QFile example(LUMETRA_FOUR_SYSTEMS);
    QVERIFY(example.open(QIODevice::ReadOnly));
    // Other programs may have its ports.
    QByteArray text = example.readAll();
    QCOMPARE(text.count(":2000,"), 4);
    const QTemporaryDir folder;
    QFile file(folder.filePath("four.options"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text.replace(":2000,", ":0,"));
    file.close();
    Program program({"--options", file.fileName()});
    std::vector<Ready> systems;
    for (int i = 0; i < 4; ++i)
        systems.push_back(readyFrom(program.readLine()));

    QByteArrayList labels;
    for (const Ready& system : systems) {
        QCOMPARE(keyAt(system), system.key);
        labels.append(replyAt(system, "GLA;", 29).mid(2, 25).trimmed());
    }
    QCOMPARE(labels, QByteArrayList({"Old bench", "Pump laser", "Probe laser", "Pulsed laser"}));
    QVERIFY(idAt(systems[0]).contains("-V10-"));
    QVERIFY(idAt(systems[1]).contains("-VM40-"));
    QVERIFY(idAt(systems[2]).contains("-VM40-"));
    QVERIFY(idAt(systems[3]).contains("-A-"));
    QVERIFY(idAt(systems[3]).contains("-V40-"));
    // The P-factor of the last one comes from its external input.
    QCOMPARE(replyAt(systems[2], "GPF" + hex("01 3b"), 5), hex("003b03e83b"));
    QCOMPARE(replyAt(systems[3], "GPF" + hex("01 3b"), 5), hex("003b00003b"));
}

void TestProgram::beamStandsWhereItIsPut()
{
    Program program({"--tcp", "127.0.0.1:0,offset1=200:-100,detector1=psd,offset2=20:0",
                     "--detector2", "uvpsd4", "--preset", "still"});
    const Ready ready = readyFrom(program.readLine());

    const QByteArray packet = replyAt(ready, "S1S;", packetBytes);

    // 1.2 V per mm at stage 1, 2.9 V per mm at stage 2.
    QCOMPARE(wordAt(packet, 4), 240);
    QCOMPARE(wordAt(packet, 6), -120);
    QCOMPARE(wordAt(packet, 10), 58);
    QCOMPARE(wordAt(packet, 12), 0);
}

void TestProgram::recordingIsStreamed()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("run.csv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Start: 2024-02-29T13:14:15\n"
               "ms\tX1(V)\tY1(V)\tI1(V)\tX2(V)\tY2(V)\tI2(V)\tRX1(V)\tRY1(V)\tRX2(V)\tRY2(V)\n\n"
               "0\t1.250\t0\t4.00\t0\t0\t3.00\t5.00\t5.00\t5.00\t5.00\n");
    file.close();
    Program program({"--tcp", "127.0.0.1:0", "--replay", file.fileName()});
    const Ready ready = readyFrom(program.readLine());
    QTcpSocket socket;
    socket.connectToHost(ready.address, ready.port);
    QVERIFY(socket.waitForConnected(limitMs));

    socket.write("S1S;");
    while (socket.bytesAvailable() < packetBytes && socket.waitForReadyRead(limitMs)) {}
    QCOMPARE(wordAt(socket.readAll(), 4), 1250);
}

void TestProgram::connectionsAreToldUnlessQuiet()
{
    for (const bool quiet : {false, true}) {
        QStringList arguments{"--tcp", "127.0.0.1:0"};
        if (quiet)
            arguments.append("--quiet");
        Program program(arguments);
        const Ready ready = readyFrom(program.readLine());
        QTcpSocket socket;
        socket.connectToHost(ready.address, ready.port);
        QVERIFY(socket.waitForConnected(limitMs));
        socket.write("XYZ;");
        QVERIFY(socket.waitForReadyRead(limitMs));
        QVERIFY(program.sendSignal(SIGTERM));
        QVERIFY(program.process.waitForFinished(limitMs));

        const QByteArray told = program.process.readAllStandardError();
        QCOMPARE(told.contains(": 127.0.0.1 connected\n"), !quiet);
        QCOMPARE(told.contains(": refused XYZ\n"), !quiet);
        QCOMPARE(told.isEmpty(), quiet);
    }
}

void TestProgram::signalToAProgramThatHasEndedReachesNobody()
{
    // Processes that do not ask for this signal do not notice it.
    constexpr int harmless = SIGURG;
    signalsReceived = 0;
    const auto before = std::signal(harmless, [](int) { signalsReceived = signalsReceived + 1; });
    Program program({"--version"});
    QVERIFY(program.process.waitForFinished(limitMs));

    const bool sent = program.sendSignal(harmless);
    std::signal(harmless, before);

    QVERIFY(!sent);
    QCOMPARE(int(signalsReceived), 0);
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
