#include "emulator/commandline.h"
#include "emulator/helptext.h"
#include "emulator/optionsfile.h"
#include "emulator/ruletext.h"

#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(emulator::Preset)
Q_DECLARE_METATYPE(emulator::DetectorKind)

using namespace emulator;

namespace {

CommandLine readArguments(const QStringList& arguments)
{
    return readCommandLine(QStringList("lumetra-emulator") + arguments);
}

/// Writes a file into the folder and returns its path.
QString written(const QTemporaryDir& folder, const QString& name, const QString& text)
{
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
    return file.fileName();
}

QStringList rulesOf(const Placement& placement)
{
    QStringList texts;
    for (const Rule& rule : placement.options.faults.rules)
        texts.append(describe(rule));
    return texts;
}

} // namespace

class TestCommandLine final : public QObject
{
    Q_OBJECT

private slots:
    void optionsBehindAnAddressHoldForThatControllerOnly();
    void optionsBehindALinkHoldForThatControllerOnly();
    void ownOptionsWinOverCommonOnes();
    void ownRulesStandBeforeCommonOnes();
    void rulesKeepTheOrderInWhichTheyAreGiven();
    void rulesOfOneOptionPatternAreMadeTogether_data();
    void rulesOfOneOptionPatternAreMadeTogether();
    void twoDeedsForOnePatternAreBothNamed_data();
    void twoDeedsForOnePatternAreBothNamed();
    void otherFaultsOfAControllerWinOverCommonOnes();
    void identityReachesTheController();
    void stagesReachTheController();
    void inputsReachTheController();
    void detectorOfAControllerWinsOverThatOfAStageOfAll();
    void detectorReachesTheController_data();
    void detectorReachesTheController();
    void presetReachesTheController_data();
    void presetReachesTheController();
    void wrongAddressIsNamed_data();
    void wrongAddressIsNamed();
    void wrongValueIsNamed_data();
    void wrongValueIsNamed();
    void controllersWithoutASeedCountOn();
    void fileHoldsFurtherOptions();
    void commandLineWinsOverAFile();
    void laterFileWinsOverAnEarlierOne();
    void ruleOfTheCommandLineStandsBeforeThoseOfAFile();
    void keyOfAllIsRefusedWithSeveralControllers();
    void wrongFileIsNamed();
    void wrongOptionsOfAFileAreNamedWithIt_data();
    void wrongOptionsOfAFileAreNamedWithIt();
    void textOfAFileBecomesArguments_data();
    void textOfAFileBecomesArguments();
    void exampleDescribesFourSystemsThatDiffer();
    void helpIsShownWhateverElseIsAsked();
    void helpFitsATerminal();
    void longTextIsWrapped_data();
    void longTextIsWrapped();
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

void TestCommandLine::ownRulesStandBeforeCommonOnes()
{
    const CommandLine line = readArguments(
        {"--tcp", "127.0.0.1:0,refuse=SEA,late=GID=5,silent=SPF:02", "--refuse", "SPF", "--late",
         "GID=800", "--reply", "GSF:times=1=003b013b", "--tcp", "127.0.0.1:0"});

    QCOMPARE(line.text, QString());
    const QStringList common{"refuse SPF", "late GID=800", "reply GSF:times=1=003b013b"};
    QCOMPARE(rulesOf(line.placements[0]),
             QStringList({"refuse SEA", "late GID=5", "silent SPF:02"}) + common);
    QCOMPARE(rulesOf(line.placements[1]), common);
}

void TestCommandLine::rulesKeepTheOrderInWhichTheyAreGiven()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0", "--silent", "SPF:01:times=1", "--refuse",
                       "SPF:01:times=2", "--silent=SAI:01x", "--late", "SPF:02=500"});

    QCOMPARE(line.text, QString());
    QCOMPARE(rulesOf(line.placements[0]),
             QStringList({"silent SPF:01:times=1", "refuse SPF:01:times=2", "silent SAI:01x",
                          "late SPF:02=500"}));
}

void TestCommandLine::rulesOfOneOptionPatternAreMadeTogether_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("rules");

    QTest::newRow("in the place of the first")
        << QStringList{"--late", "SPF=500", "--silent", "SPF:01", "--refuse", "SPF"}
        << QStringList{"refuse SPF, late SPF=500", "silent SPF:01"};
    QTest::newRow("late and short") << QStringList{"--late", "GSF=500", "--short", "GSF=2"}
                                    << QStringList{"short GSF=2, late GSF=500"};
    QTest::newRow("with arguments") << QStringList{"--refuse", "SPF:01", "--late", "spf:01=500"}
                                    << QStringList{"refuse SPF:01, late SPF:01=500"};
    QTest::newRow("late reply") << QStringList{"--reply", "GSF=61", "--late", "GSF=500"}
                                << QStringList{"reply GSF=61, late GSF=500"};
    QTest::newRow("with counts") << QStringList{"--refuse", "SPF:skip=1:times=2", "--late",
                                                "SPF:times=2:skip=1=5"}
                                 << QStringList{
                                        "refuse SPF:skip=1:times=2, late SPF:skip=1:times=2=5"};
    QTest::newRow("of another count")
        << QStringList{"--refuse", "SPF:times=2", "--late", "SPF:times=1=5"}
        << QStringList{"refuse SPF:times=2", "late SPF:times=1=5"};
    QTest::newRow("of another stage") << QStringList{"--refuse", "SPF:01", "--late", "SPF:02=5"}
                                      << QStringList{"refuse SPF:01", "late SPF:02=5"};
    QTest::newRow("one after the other")
        << QStringList{"--reply",  "GSF:times=1=61", "--late", "GSF:times=1=5",
                       "--silent", "GSF:times=1",    "--late", "GSF:times=1=9"}
        << QStringList{"reply GSF:times=1=61, late GSF:times=1=5",
                       "silent GSF:times=1, late GSF:times=1=9"};
}

void TestCommandLine::rulesOfOneOptionPatternAreMadeTogether()
{
    QFETCH(QStringList, arguments);

    const CommandLine line = readArguments(QStringList{"--tcp", "127.0.0.1:0"} + arguments);

    QCOMPARE(line.text, QString());
    QTEST(rulesOf(line.placements[0]), "rules");
}

void TestCommandLine::twoDeedsForOnePatternAreBothNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("deeds") << QStringList{"--refuse", "GSF", "--silent", "GSF"}
                           << "--silent: \"refuse GSF\" and \"silent GSF\" can not both act";
    QTest::newRow("with arguments")
        << QStringList{"--late", "SPF:01=5", "--close-on", "SPF:01", "--reply", "SPF:01=61"}
        << "--reply: \"close-on SPF:01\" and \"reply SPF:01=61\" can not both act";
    QTest::newRow("times") << QStringList{"--late", "GSF=5", "--refuse", "GSF", "--late", "GSF=9"}
                           << "--late: \"late GSF=5\" and \"late GSF=9\" can not both act";
}

void TestCommandLine::twoDeedsForOnePatternAreBothNamed()
{
    QFETCH(QStringList, arguments);

    const CommandLine line = readArguments(QStringList{"--tcp", "127.0.0.1:0"} + arguments);

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QTEST(line.text, "message");
}

void TestCommandLine::otherFaultsOfAControllerWinOverCommonOnes()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0,drop-every=5,garbage", "--drop-every", "7",
                       "--corrupt-every", "9", "--tcp", "127.0.0.1:0"});

    QCOMPARE(line.text, QString());
    const Faults& own = line.placements[0].options.faults;
    QCOMPARE(own.dropByteEvery, 5);
    QCOMPARE(own.corruptByteEvery, 9);
    QVERIFY(own.garbageReplies);
    const Faults& common = line.placements[1].options.faults;
    QCOMPARE(common.dropByteEvery, 7);
    QCOMPARE(common.corruptByteEvery, 9);
    QVERIFY(!common.garbageReplies);
}

void TestCommandLine::identityReachesTheController()
{
    const CommandLine line = readArguments(
        {"--tcp", "127.0.0.1:0,label=Pump laser,key=PUMP1234567,group=3", "--group", "1"});

    QCOMPARE(line.text, QString());
    const ControllerOptions& options = line.placements[0].options;
    QCOMPARE(options.label, QByteArray("Pump laser"));
    QCOMPARE(options.key, QByteArray("PUMP1234567"));
    QCOMPARE(options.group, 3);
}

void TestCommandLine::stagesReachTheController()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0,detector2=quadrant,diameter1=75.5,offset2=-20.5:5",
                       "--diameter1", "10", "--diameter2", "20", "--offset1", "-1:2"});

    QCOMPARE(line.text, QString());
    const StageOptions& first = line.placements[0].options.stages[0];
    const StageOptions& second = line.placements[0].options.stages[1];
    QCOMPARE(first.detector, DetectorKind::LateralEffect);
    QCOMPARE(second.detector, DetectorKind::Quadrant);
    QCOMPARE(first.spotDiameterUm, 75.5);
    QCOMPARE(second.spotDiameterUm, 20.0);
    QCOMPARE(first.offsetXUm, -1.0);
    QCOMPARE(first.offsetYUm, 2.0);
    QCOMPARE(second.offsetXUm, -20.5);
    QCOMPARE(second.offsetYUm, 5.0);
}

void TestCommandLine::inputsReachTheController()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0,pfactor=0,adjust-input2=-300:40", "--pfactor-input",
                       "1500", "--sensitivity-input", "2000", "--adjust-input1", "5:-6"});

    QCOMPARE(line.text, QString());
    const ControllerOptions& options = line.placements[0].options;
    QCOMPARE(options.pFactorMv, 0);
    for (const StageOptions& stage : options.stages) {
        QCOMPARE(stage.inputs.pFactorMv, 1500);
        QCOMPARE(stage.inputs.sensitivityMv, 2000);
    }
    QCOMPARE(options.stages[0].inputs.adjustInXMv, 5);
    QCOMPARE(options.stages[0].inputs.adjustInYMv, -6);
    QCOMPARE(options.stages[1].inputs.adjustInXMv, -300);
    QCOMPARE(options.stages[1].inputs.adjustInYMv, 40);
}

void TestCommandLine::detectorOfAControllerWinsOverThatOfAStageOfAll()
{
    const CommandLine line = readArguments({"--tcp", "127.0.0.1:0,detector=lateral", "--tcp",
                                            "127.0.0.1:0", "--detector1", "quadrant"});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements[0].options.stages[0].detector, DetectorKind::LateralEffect);
    QCOMPARE(line.placements[1].options.stages[0].detector, DetectorKind::Quadrant);
    QCOMPARE(line.placements[1].options.stages[1].detector, DetectorKind::LateralEffect);
}

void TestCommandLine::detectorReachesTheController_data()
{
    QTest::addColumn<DetectorKind>("detector");

    QTest::newRow("lateral") << DetectorKind::LateralEffect;
    QTest::newRow("quadrant") << DetectorKind::Quadrant;
    QTest::newRow("4qd") << DetectorKind::FourQuadrant;
    QTest::newRow("psd") << DetectorKind::Psd;
    QTest::newRow("wid") << DetectorKind::Wid;
    QTest::newRow("uvpsd4") << DetectorKind::UvPsd4mm;
    QTest::newRow("uvpsd10") << DetectorKind::UvPsd10mm;
}

void TestCommandLine::detectorReachesTheController()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0", "--detector", QTest::currentDataTag()});

    QCOMPARE(line.text, QString());
    for (const StageOptions& stage : line.placements[0].options.stages)
        QTEST(stage.detector, "detector");
}

void TestCommandLine::presetReachesTheController_data()
{
    QTest::addColumn<Preset>("preset");

    QTest::newRow("still") << Preset::Still;
    QTest::newRow("quiet") << Preset::Quiet;
    QTest::newRow("typical") << Preset::Typical;
    QTest::newRow("noisy") << Preset::Noisy;
}

void TestCommandLine::presetReachesTheController()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0", "--preset", QTest::currentDataTag()});

    QCOMPARE(line.text, QString());
    QTEST(line.placements[0].options.preset, "preset");
}

void TestCommandLine::wrongAddressIsNamed_data()
{
    QTest::addColumn<QString>("address");

    for (const char* address :
         {"::1:2000", "2001:db8::1:2000", "[127.0.0.1]:2000", "[::1:2000", "[]:2000", " [::1]:2000",
          "[::1 ]:2000", " 127.0.0.1:2000", "127.0.0.1 :2000", "127.0. 0.1:2000", "127.0.0.1: 2000",
          "127.0.0.1:2000\n", "127.1:2000", "2130706433:2000", "127.0.0.256:2000",
          "127.0.0.1:", "127.0.0.1:+80", "127.0.0.1:65536", "localhost:2000"})
        QTest::newRow(address) << address;
}

void TestCommandLine::wrongAddressIsNamed()
{
    QFETCH(QString, address);

    const CommandLine line = readArguments({"--tcp", address});

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QCOMPARE(line.text, "--tcp: \"" + address
                            + "\" is not a numeric address and a port, as in 127.0.0.1:2000");
}

void TestCommandLine::wrongValueIsNamed_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("what");

    const auto row = [](const char* option, const char* value, const char* what) {
        QTest::newRow(qPrintable(QString("%1=%2").arg(option, value))) << option << value << what;
    };
    row("label", "abcdefghijklmnopqrstuvwxyz", "is longer than 25 bytes");
    row("key", "SHORT", "is not 11 capital letters and digits");
    row("key", "ABCDE-12345", "is not 11 capital letters and digits");
    row("key", "PUMP1234567\n", "is not 11 capital letters and digits");
    row("firmware", "%2", "\"%2\" is not a whole number from 0 to 999");
    row("diameter1", "%2", "\"%2\" is not a number from 0.1 to 10000");
    row("trigger-rate", "%3", "\"%3\" is neither 0 nor a rate from 0.01 to 1000");
    row("seed", "-1", "\"-1\" is not a whole number from 0");
    row("group", "100", "is not a whole number from 0 to 99");
    row("detector1", "eye", "is none of ");
    row("diameter1", "0", "is not a number from 0.1 to 10000");
    row("diameter2", "nan", "is not a number from 0.1 to 10000");
    row("diameter2", "62,5", "is not a number from 0.1 to 10000");
    row("offset1", "20", "is not two numbers, as in 20:-5");
    row("offset1", "1:2:3", "is not two numbers, as in 20:-5");
    row("offset2", "1:10001", "\"10001\" is not a number from -10000 to 10000");
    row("pfactor", "5001", "is not a whole number from 0 to 5000");
    row("pfactor-input", "-1", "is not a whole number from 0 to 5000");
    row("sensitivity-input", "high", "is not a whole number from 0 to 5000");
    row("adjust-input1", "0:-5001", "\"-5001\" is not a whole number from -5000 to 5000");
}

void TestCommandLine::wrongValueIsNamed()
{
    QFETCH(QString, option);
    QFETCH(QString, value);
    QFETCH(QString, what);

    const CommandLine line = readArguments({"--tcp", "127.0.0.1:0", "--" + option, value});

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QVERIFY2(line.text.startsWith("--" + option + ": \""), qPrintable(line.text));
    QVERIFY2(line.text.contains(what), qPrintable(line.text));
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
    QTest::newRow("wrong rule")
        << QStringList{"--tcp", "127.0.0.11:2000,refuse=SPF:9"}
        << "--tcp 127.0.0.11:2000: refuse: \"9\" is neither argument bytes, "
           "as in 01x, nor skip=N nor times=N";
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

void TestCommandLine::fileHoldsFurtherOptions()
{
    const QTemporaryDir folder;
    const QString one = written(folder, "one", "--tcp 127.0.0.1:1 --vm\n--silent GSF:skip=1\n");
    const QString two = written(folder, "two", "--tcp 127.0.0.1:2\n--silent GSF\n");

    const CommandLine line = readArguments(
        {"--tcp", "127.0.0.1:3", "--silent", "GID:skip=2", "--options", one, "--options", two});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(int(line.placements[i].tcp->port), i + 1);
        QVERIFY(line.placements[i].options.vm);
        QCOMPARE(rulesOf(line.placements[i]),
                 QStringList({"silent GID:skip=2", "silent GSF", "silent GSF:skip=1"}));
    }
}

void TestCommandLine::commandLineWinsOverAFile()
{
    const QTemporaryDir folder;
    const QString file = written(folder, "file", "--tcp 127.0.0.1:1 --firmware 10");

    const CommandLine line = readArguments({"--firmware", "31", "--options", file});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements[0].options.firmware, 31);
}

void TestCommandLine::laterFileWinsOverAnEarlierOne()
{
    const QTemporaryDir folder;
    const QString one = written(folder, "one", "--tcp 127.0.0.1:1 --firmware 10 --vm");
    const QString two = written(folder, "two", "--firmware 31");

    const CommandLine line = readArguments({"--options", one, "--options", two});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements[0].options.firmware, 31);
    QVERIFY(line.placements[0].options.vm);
}

void TestCommandLine::ruleOfTheCommandLineStandsBeforeThoseOfAFile()
{
    const QTemporaryDir folder;
    const QString file =
        written(folder, "file", "--tcp 127.0.0.1:1 --refuse SPF:01 --silent GSF:times=1");

    const CommandLine line = readArguments({"--options", file, "--reply", "GSF:times=1=00"});

    QCOMPARE(line.text, QString());
    QCOMPARE(rulesOf(line.placements[0]),
             QStringList({"reply GSF:times=1=00", "refuse SPF:01", "silent GSF:times=1"}));
}

void TestCommandLine::keyOfAllIsRefusedWithSeveralControllers()
{
    const QStringList key{"--key", "PUMP1234567"};

    QCOMPARE(readArguments(key + QStringList{"--pty", "link"}).text, QString());
    const CommandLine line = readArguments(key + QStringList{"--pty", "link", "--pty", "other"});

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QVERIFY2(line.text.startsWith("--key: "), qPrintable(line.text));
}

void TestCommandLine::wrongFileIsNamed()
{
    const CommandLine line =
        readArguments({"--tcp", "127.0.0.1:0", "--options", "/nowhere/none.options"});

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QVERIFY2(line.text.startsWith("--options: /nowhere/none.options: "), qPrintable(line.text));
}

void TestCommandLine::wrongOptionsOfAFileAreNamedWithIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("what");

    QTest::newRow("another file") << "--options other"
                                  << "a file of options can not name another one";
    QTest::newRow("unknown option") << "--nonsense"
                                    << "Unknown option 'nonsense'.";
    QTest::newRow("value missing at the end") << "--vm --label"
                                              << "Missing value after '--label'.";
    QTest::newRow("stray word") << "--vm vm"
                                << "unexpected argument \"vm\"";
    QTest::newRow("wrong value") << "--seed 1\n--firmware x"
                                 << "--firmware: \"x\" is not a whole number from 0 to 999";
    QTest::newRow("open quote") << "--vm\n--label \"Pump laser"
                                << "line 2: a double quote is not closed";
    QTest::newRow("open quote behind a closed one") << "--label \"a\"\" b"
                                                    << "line 1: a double quote is not closed";
    QTest::newRow("wrong rule") << "--refuse ABC"
                                << "--refuse: there is no command \"ABC\"";
    QTest::newRow("wrong value of a controller")
        << "--tcp 127.0.0.1:1,firmware=x"
        << "--tcp 127.0.0.1:1: firmware: \"x\" is not a whole number from 0 to 999";
}

void TestCommandLine::wrongOptionsOfAFileAreNamedWithIt()
{
    QFETCH(QString, text);
    QFETCH(QString, what);
    const QTemporaryDir folder;
    const QString file = written(folder, "file", text);

    const CommandLine line = readArguments({"--options", file, "--tcp", "127.0.0.1:0"});

    QCOMPARE(line.wish, CommandLine::Wish::ShowError);
    QCOMPARE(line.text, "--options: " + file + ": " + what);
}

void TestCommandLine::helpIsShownWhateverElseIsAsked()
{
    QCOMPARE(readArguments({"stray", "--help"}).wish, CommandLine::Wish::ShowHelp);
}

void TestCommandLine::textOfAFileBecomesArguments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("nothing") << QString() << QStringList();
    QTest::newRow("lines") << QString("--vm\n\n  --seed 7\n") << QStringList{"--vm", "--seed", "7"};
    QTest::newRow("comments") << QString("# --vm\n  #x\n--tcp a,label=No#5")
                              << QStringList{"--tcp", "a,label=No#5"};
    QTest::newRow("quotes") << QString("--tcp a,label=\"Pump laser\",vm --label \"b c\"")
                            << QStringList{"--tcp", "a,label=Pump laser,vm", "--label", "b c"};
    QTest::newRow("quote in the text")
        << QString("--label \"\"\"a\"\"\" \"\"") << QStringList{"--label", "\"a\""};
    QTest::newRow("line ends of others")
        << QString("--vm\r\n--seed 7\r\n") << QStringList{"--vm", "--seed", "7"};
}

void TestCommandLine::textOfAFileBecomesArguments()
{
    QFETCH(QString, text);
    QString error;

    const std::optional<QStringList> arguments = argumentsIn(text, error);

    QCOMPARE(error, QString());
    QTEST(arguments.value_or(QStringList()), "arguments");
}

void TestCommandLine::exampleDescribesFourSystemsThatDiffer()
{
    const CommandLine line = readArguments({"--options", LUMETRA_FOUR_SYSTEMS});

    QCOMPARE(line.text, QString());
    QCOMPARE(line.placements.size(), 4);
    QSet<QString> addresses;
    QSet<QByteArray> labels;
    for (const Placement& placement : line.placements) {
        addresses.insert(placement.tcp->address.toString());
        labels.insert(placement.options.label);
        QCOMPARE(int(placement.tcp->port), 2000);
        QCOMPARE(placement.options.preset, Preset::Quiet);
    }
    QCOMPARE(addresses.size(), 4);
    QCOMPARE(labels.size(), 4);
    QCOMPARE(line.placements[0].options.firmware, 10);
    QCOMPARE(line.placements[1].options.group, line.placements[2].options.group);
    QVERIFY(line.placements[1].options.group > 0);
    QVERIFY(line.placements[1].options.vm);
    QVERIFY(line.placements[3].options.triggerCapable);
}

void TestCommandLine::helpFitsATerminal()
{
    const CommandLine line = readArguments({"--help"});

    QCOMPARE(line.wish, CommandLine::Wish::ShowHelp);
    const QStringList lines = line.text.split('\n');
    QVERIFY(lines.size() > 50);
    for (const QString& text : lines)
        QVERIFY2(text.size() < 80, qPrintable(text));
}

void TestCommandLine::longTextIsWrapped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("lines");

    const QString forty(40, 'a');
    QTest::newRow("short") << QString("a b") << QString("    a b\n");
    QTest::newRow("just fits") << forty + ' ' + QString(34, 'b')
                               << "    " + forty + ' ' + QString(34, 'b') + '\n';
    QTest::newRow("does not fit") << forty + ' ' + QString(35, 'b')
                                  << "    " + forty + "\n    " + QString(35, 'b') + '\n';
    QTest::newRow("word that is too long") << "a " + QString(90, 'b') + " c"
                                           << "    a\n    " + QString(90, 'b') + "\n    c\n";
}

void TestCommandLine::longTextIsWrapped()
{
    QFETCH(QString, text);

    QTEST(wrapped(text, 4), "lines");
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
