#include "emulator/commandline.h"

#include <QtTest>

using namespace emulator;

namespace {

CommandLine readArguments(const QStringList& arguments)
{
    return readCommandLine(QStringList("lumetra-emulator") + arguments);
}

} // namespace

class TestCommandLine final : public QObject
{
    Q_OBJECT

private slots:
    void optionsBehindAnAddressHoldForThatControllerOnly();
    void optionsBehindALinkHoldForThatControllerOnly();
    void ownOptionsWinOverCommonOnes();
    void ownFaultsStandBeforeCommonOnes();
    void controllersWithoutASeedCountOn();
    void wrongOptionOfAControllerIsNamedWithItsPlace_data();
    void wrongOptionOfAControllerIsNamedWithItsPlace();
};

void TestCommandLine::optionsBehindAnAddressHoldForThatControllerOnly()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.11:2000,firmware=10,preset=noisy", "--tcp",
                       "[::1]:2001,vm,trigger,trigger-rate=2.5", "--tcp", "127.0.0.12:0"});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements.size(), 3);
    QCOMPARE(line.placements[0].tcp->address, QHostAddress("127.0.0.11"));
    QCOMPARE(line.placements[0].tcp->port, quint16(2000));
    QCOMPARE(line.placements[0].options.firmware, 10);
    QCOMPARE(line.placements[0].options.preset, Preset::Noisy);
    QVERIFY(!line.placements[0].options.vm);
    QCOMPARE(line.placements[1].tcp->address, QHostAddress("::1"));
    QCOMPARE(line.placements[1].options.firmware, 40);
    QCOMPARE(line.placements[1].options.preset, Preset::Typical);
    QVERIFY(line.placements[1].options.vm);
    QVERIFY(line.placements[1].options.triggerCapable);
    QCOMPARE(line.placements[1].options.triggerRateHz, 2.5);
    QCOMPARE(line.placements[2].options.firmware, 40);
    QVERIFY(!line.placements[2].options.vm);
}

void TestCommandLine::optionsBehindALinkHoldForThatControllerOnly()
{
    const CommandLine line = readArguments(
        {"--pty", "/dev/ttyUSB77,baud=921600", "--pty", "/dev/ttyUSB78,no-flow-control"});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements.size(), 2);
    QVERIFY(!line.placements[0].tcp);
    QCOMPARE(line.placements[0].link, QString("/dev/ttyUSB77"));
    QCOMPARE(line.placements[0].options.baudRate, 921600);
    QVERIFY(line.placements[0].options.hardwareFlowControl);
    QCOMPARE(line.placements[1].link, QString("/dev/ttyUSB78"));
    QCOMPARE(line.placements[1].options.baudRate, 115200);
    QVERIFY(!line.placements[1].options.hardwareFlowControl);
}

void TestCommandLine::ownOptionsWinOverCommonOnes()
{
    const CommandLine line = readArguments({"--tcp", "127.0.0.1:0,firmware=10", "--firmware", "31",
                                            "--detector", "quadrant", "--pty", "link"});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements[0].options.firmware, 10);
    QCOMPARE(line.placements[0].options.stages[0].detector, DetectorKind::Quadrant);
    QCOMPARE(line.placements[1].options.firmware, 31);
    QCOMPARE(line.placements[1].options.stages[0].detector, DetectorKind::Quadrant);
}

void TestCommandLine::ownFaultsStandBeforeCommonOnes()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0,refuse=SEA,refuse=CEA,late=GID=5,short=GPF=3",
                       "--refuse", "SPF", "--late", "GID=800", "--late", "GSF=9"});

    QCOMPARE(line.text, QString());
    const Faults& faults = line.placements[0].options.faults;
    QCOMPARE(faults.refuse, QByteArrayList({"SEA", "CEA", "SPF"}));
    QCOMPARE(faults.lateMs.value("GID"), 5);
    QCOMPARE(faults.lateMs.value("GSF"), 9);
    QCOMPARE(faults.shortBytes.value("GPF"), 3);
}

void TestCommandLine::controllersWithoutASeedCountOn()
{
    const CommandLine line =
        readArguments({"--pty", "link", "--tcp", "127.0.0.1:0", "--tcp", "127.0.0.1:0,seed=7",
                       "--tcp", "127.0.0.1:0", "--seed", "100"});

    QCOMPARE(line.text, QString());
    QVector<quint64> seeds;
    for (const Placement& placement : line.placements)
        seeds.append(placement.options.seed);
    QCOMPARE(seeds, QVector<quint64>({100, 7, 102, 103}));
}

void TestCommandLine::wrongOptionOfAControllerIsNamedWithItsPlace_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("wrong value")
        << QStringList{"--tcp", "127.0.0.11:2000,firmware=x"}
        << "--tcp 127.0.0.11:2000: firmware: \"x\" is not a whole number from 0 to 999";
    QTest::newRow("behind a link") << QStringList{"--pty", "a/link,vm,baud=9600"}
                                   << "--pty a/link: baud: \"9600\" is none of 115200, 460800, "
                                      "921600";
    QTest::newRow("unknown option") << QStringList{"--tcp", "127.0.0.11:2000,nonsense=1"}
                                    << "--tcp 127.0.0.11:2000: there is no option \"nonsense\"";
    QTest::newRow("empty option") << QStringList{"--tcp", "127.0.0.11:2000,,vm"}
                                  << "--tcp 127.0.0.11:2000: there is no option \"\"";
    QTest::newRow("option with dashes") << QStringList{"--tcp", "127.0.0.11:2000,--vm"}
                                        << "--tcp 127.0.0.11:2000: there is no option \"--vm\"";
    QTest::newRow("option of the program") << QStringList{"--tcp", "127.0.0.11:2000,quiet"}
                                           << "--tcp 127.0.0.11:2000: there is no option \"quiet\"";
    QTest::newRow("no value") << QStringList{"--tcp", "127.0.0.11:2000,firmware"}
                              << "--tcp 127.0.0.11:2000: firmware: a value is missing";
    QTest::newRow("needless value") << QStringList{"--tcp", "127.0.0.11:2000,vm=no"}
                                    << "--tcp 127.0.0.11:2000: vm: takes no value";
    QTest::newRow("wrong common value")
        << QStringList{"--tcp", "127.0.0.11:2000,firmware=10", "--firmware", "x"}
        << "--firmware: \"x\" is not a whole number from 0 to 999";
}

void TestCommandLine::wrongOptionOfAControllerIsNamedWithItsPlace()
{
    QFETCH(QStringList, arguments);

    const CommandLine line = readArguments(arguments);

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QTEST(line.text, "message");
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
