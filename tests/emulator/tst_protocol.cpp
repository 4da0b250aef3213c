#include "emulator/command.h"
#include "emulator/identity.h"
#include "emulator/packet.h"
#include "wiretools.h"

#include <QtTest>

#include <random>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::ParseStatus)
Q_DECLARE_METATYPE(emulator::ControllerOptions)

class TestProtocol final : public QObject
{
    Q_OBJECT

private slots:
    void commandIsFound_data();
    void commandIsFound();
    void argumentsReachToTheTerminator();
    void mergedCommandsAreTakenOneByOne();
    void anySplitGivesTheSameCommands();
    void packetIsEncodedHighByteFirst();
    void keyStandsAtItsPlaceWhateverTheKind_data();
    void keyStandsAtItsPlaceWhateverTheKind();
    void makerIsThreeLetters();
    void idIsWrittenAsPeopleReadIt();
    void derivedKeyRepeats();
};

void TestProtocol::commandIsFound_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<ParseStatus>("status");
    QTest::addColumn<QByteArray>("mnemonic");
    QTest::addColumn<int>("consumed");

    const auto row = [](const char* name, const QByteArray& input, ParseStatus status,
                        const QByteArray& mnemonic, int consumed) {
        QTest::newRow(name) << input << status << mnemonic << consumed;
    };
    const ParseStatus complete = ParseStatus::Complete;
    const ParseStatus incomplete = ParseStatus::Incomplete;
    const ParseStatus bad = ParseStatus::Bad;

    row("nothing", "", incomplete, "", 0);
    row("one letter", "G", incomplete, "", 0);
    row("mnemonic alone", "GID", incomplete, "", 0);
    row("no arguments", "GID;", complete, "GID", 4);
    row("digit in the mnemonic", "S1S;", complete, "S1S", 4);
    row("one argument", "SEA" + hex("01 3b"), complete, "SEA", 5);
    row("argument lacks its terminator", "SEA" + hex("01"), incomplete, "", 0);
    row("argument is a terminator", "SEA;;", complete, "SEA", 5);
    row("arguments are terminators", "SPF;;;;", complete, "SPF", 7);
    row("value holds a terminator", "SAI" + hex("01 78 3b3b 3b"), complete, "SAI", 8);
    row("start of a stream", "SLS" + hex("0000 01f4 3b"), complete, "SLS", 8);
    row("triggered start is shorter", "SPS" + hex("0000 3b"), complete, "SPS", 6);
    row("label full of terminators", "SLA" + QByteArray(26, ';'), complete, "SLA", 29);
    row("two commands", "GSF;GAS;", complete, "GSF", 4);
    row("command and a half", "GSF;GA", complete, "GSF", 4);
    row("unknown command", "ABC;", bad, "ABC", 4);
    row("unknown command with arguments", "ABCdef;GSF;", bad, "ABC", 7);
    row("unknown command so far", "ABC", incomplete, "", 0);
    row("unknown command without an end", "ABC" + QByteArray(61, 'x'), bad, "ABC", 64);
    row("argument missing, next command behind", "SEA;GSF;", bad, "SEA", 4);
    row("argument missing, nothing behind", "SEA;", incomplete, "", 0);
    row("too many arguments", "GSF1;GAS;", bad, "GSF", 5);
    row("lower case is noise", "gsf;", bad, "", 1);
    row("zero byte is noise", hex("00") + "GSF;", bad, "", 1);
    row("noise after a letter", "G" + hex("ff") + "GSF;", bad, "", 2);
    row("stray terminator is noise", ";GSF;", bad, "", 1);
    row("line end is noise", "\nGSF;", bad, "", 1);
}

void TestProtocol::commandIsFound()
{
    QFETCH(QByteArray, input);
    QFETCH(ParseStatus, status);
    QFETCH(QByteArray, mnemonic);
    QFETCH(int, consumed);

    const ParseResult result = parseCommand(input);

    QCOMPARE(result.status, status);
    QCOMPARE(result.command.mnemonic, mnemonic);
    QCOMPARE(result.consumed, consumed);
    QCOMPARE(result.command.frame, input.left(consumed));
}

void TestProtocol::argumentsReachToTheTerminator()
{
    const ParseResult result = parseCommand("SAI" + hex("01 79 fc18 3b") + "GSF;");

    QCOMPARE(result.command.arguments, hex("01 79 fc18"));
    QCOMPARE(result.command.frame, QByteArray("SAI" + hex("01 79 fc18 3b")));
}

namespace {

/// Commands found in pieces of input that come one after the other.
QByteArrayList commandsIn(const QByteArrayList& pieces)
{
    QByteArrayList commands;
    QByteArray input;
    for (const QByteArray& piece : pieces) {
        input += piece;
        for (ParseResult result = parseCommand(input); result.status != ParseStatus::Incomplete;
             result = parseCommand(input)) {
            if (!result.command.mnemonic.isEmpty())
                commands.append(result.command.frame);
            input.remove(0, result.consumed);
        }
    }
    return commands;
}

} // namespace

void TestProtocol::mergedCommandsAreTakenOneByOne()
{
    const QByteArray start = "SLS" + hex("0000 3b3b 3b");

    QCOMPARE(commandsIn({"CLS;GID;" + start + "CLS;"}),
             QByteArrayList({"CLS;", "GID;", start, "CLS;"}));
}

void TestProtocol::anySplitGivesTheSameCommands()
{
    const QByteArrayList parts = {"GID;",
                                  "SPF" + hex("01 3b3b 3b"),
                                  "XXX;",
                                  "S1S;",
                                  "SLA" + QByteArray("Table; left              ") + ";",
                                  "SEA;",
                                  "GSF;",
                                  hex("00 ff"),
                                  "CLS;"};
    const QByteArray all = parts.join();
    const QByteArrayList whole = commandsIn({all});
    QCOMPARE(whole.size(), 8);
    std::mt19937 random(7);
    for (int run = 0; run < 500; ++run) {
        QByteArrayList pieces;
        for (int from = 0; from < all.size(); from += pieces.last().size())
            pieces.append(all.mid(from, 1 + static_cast<int>(random() % 7)));
        QCOMPARE(commandsIn(pieces), whole);
    }
}

void TestProtocol::packetIsEncodedHighByteFirst()
{
    PacketValues values;
    values[0].x = 0x0102;
    values[0].y = -1;
    values[0].intensity = 0xF001;
    values[1].x = -32768;
    values[1].y = 32767;
    values[1].intensity = 0x3B3B;
    values[0].actuatorX = 5000;
    values[0].actuatorY = 10000;
    values[1].actuatorX = 0;
    values[1].actuatorY = -1000;

    QCOMPARE(encodePacket(values, 0x88, 0x03),
             hex("00 3b 88 03 0102 ffff f001 8000 7fff 3b3b 1388 2710 0000 fc18 3b"));
}

void TestProtocol::keyStandsAtItsPlaceWhateverTheKind_data()
{
    QTest::addColumn<ControllerOptions>("options");
    QTest::addColumn<QByteArray>("version");

    ControllerOptions options;
    options.firmware = 5;
    QTest::newRow("one digit") << options << QByteArray("-V5-");
    options.firmware = 123;
    options.vm = true;
    options.triggerCapable = true;
    QTest::newRow("all of it") << options << QByteArray("-VM123-");
}

void TestProtocol::keyStandsAtItsPlaceWhateverTheKind()
{
    QFETCH(ControllerOptions, options);
    QFETCH(QByteArray, version);

    for (const QByteArray& key : {QByteArray("V1234567890"), QByteArray("M0000000000")}) {
        const QByteArray id = idText(options, key);
        QCOMPARE(id.size(), 47);
        QCOMPARE(id.mid(14, 11), key);
        QCOMPARE(id.indexOf("-V"), 25);
        QCOMPARE(id.mid(25, version.size()), version);
        QCOMPARE(id[8] == 'A', options.triggerCapable);
        QVERIFY(!id.contains(';'));
    }
    QCOMPARE(idText(options, "SHORT").mid(14, 11), QByteArray("SHORT000000"));
    QCOMPARE(idText(options, "MUCHTOOLONGAKEY").mid(14, 11), QByteArray("MUCHTOOLONG"));
}

void TestProtocol::makerIsThreeLetters()
{
    ControllerOptions options;
    options.maker = "Other";

    QVERIFY(idText(options, "K").startsWith("Oth-"));
    QCOMPARE(idText(options, "K").mid(14, 11), QByteArray("K0000000000"));
}

void TestProtocol::idIsWrittenAsPeopleReadIt()
{
    QCOMPARE(idText({}, "K1234567890"),
             QByteArray("Zev-Qor-N-DIG:K1234567890-V40-Emulator").leftJustified(47, ' '));
}

void TestProtocol::derivedKeyRepeats()
{
    QCOMPARE(derivedKey(1, 0), derivedKey(1, 0));
    QVERIFY(derivedKey(1, 0) != derivedKey(1, 1));
    QVERIFY(derivedKey(1, 0) != derivedKey(2, 0));
    QCOMPARE(derivedKey(77, 5).size(), 11);
}

QTEST_GUILESS_MAIN(TestProtocol)
#include "tst_protocol.moc"
