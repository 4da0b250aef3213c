// What the service dialog says of replies, byte by byte.

#include "service/servicetexts.h"
#include "support/bytes.h"

#include <QtTest>

namespace {

/// Every value of its own, all with the sign bit in use somewhere.
const QByteArray wholePacket = bytes("003b"
                                     "ffff"
                                     "0001"
                                     "ffff"
                                     "fffe"
                                     "7fff"
                                     "8000"
                                     "8001"
                                     "03e8"
                                     "fc18"
                                     "1388"
                                     "ec78"
                                     "3b");

const QStringList linesOfWholePacket{
    "Stage 1 x/y/i: 1 / -1 / -2 [mV]\n", "Stage 2 x/y/i: 32767 / -32768 / -32767 [mV]\n",
    "Range 1 x/y: 1000 / -1000 [mV]\n", "Range 2 x/y: 5000 / -5000 [mV]\n"};

/// A packet in which these flag bytes alone are set.
QByteArray packetWithFlags(int flagsA, int flagsB)
{
    QByteArray packet = bytes("003b");
    packet.append(char(flagsA)).append(char(flagsB));
    return packet.append(QByteArray(20, '\0')).append(';');
}

QByteArray memoryReply(const QByteArray& content)
{
    return bytes("003b") + content + ';';
}

} // namespace

class TestServiceTexts : public QObject
{
    Q_OBJECT

private slots:
    void boardIdIsTheReplyWithoutItsFrame_data();
    void boardIdIsTheReplyWithoutItsFrame();
    void twoBytesOfWhichTheFirstIsZeroAreSuccess_data();
    void twoBytesOfWhichTheFirstIsZeroAreSuccess();
    void onlySuccessHasTheUnit();
    void intensityIsSignedAndTakenByTheLength_data();
    void intensityIsSignedAndTakenByTheLength();
    void activeSignalTellsBothStages_data();
    void activeSignalTellsBothStages();
    void wholePacketIsToldInSevenLines();
    void flagsAreToldOneByOne_data();
    void flagsAreToldOneByOne();
    void oldFirmwareHasNoFlags_data();
    void oldFirmwareHasNoFlags();
    void oneShotWithoutAWholePacketIsItsOutcomeAlone_data();
    void oneShotWithoutAWholePacketIsItsOutcomeAlone();
    void lastErrorNeedsSevenBytes_data();
    void lastErrorNeedsSevenBytes();
    void memoryIsALineForEachByte();
    void bytesOfTheMemoryAreSigned_data();
    void bytesOfTheMemoryAreSigned();
    void memoryOfAnyOtherLengthIsNotSupported_data();
    void memoryOfAnyOtherLengthIsNotSupported();
};

void TestServiceTexts::boardIdIsTheReplyWithoutItsFrame_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("usual") << bytes("003b") + "Zev-V40-1;"
                           << "Zev-V40-1";
    QTest::newRow("terminators inside") << bytes("003b") + ";Zev;;-V40;"
                                        << "Zev-V40";
    QTest::newRow("markup") << bytes("003b") + "<b>Zev</b>;"
                            << "<b>Zev</b>";
    QTest::newRow("refused") << bytes("013b") << "";
    QTest::newRow("one byte") << bytes("00") << "";
    QTest::newRow("nothing") << QByteArray() << "";
}

void TestServiceTexts::boardIdIsTheReplyWithoutItsFrame()
{
    QFETCH(QByteArray, reply);
    QTEST(servicetexts::boardId(reply), "text");
}

void TestServiceTexts::twoBytesOfWhichTheFirstIsZeroAreSuccess_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("accepted") << bytes("003b") << "What: Success\n";
    QTest::newRow("accepted, without terminator") << bytes("0041") << "What: Success\n";
    QTest::newRow("longer") << bytes("003b01023b") << "What: Success\n";
    QTest::newRow("refused") << bytes("013b") << "What: Failed\n";
    QTest::newRow("other status") << bytes("ff3b") << "What: Failed\n";
    QTest::newRow("one byte") << bytes("00") << "What: Failed\n";
    QTest::newRow("nothing") << QByteArray() << "What: Failed\n";
}

void TestServiceTexts::twoBytesOfWhichTheFirstIsZeroAreSuccess()
{
    QFETCH(QByteArray, reply);
    QTEST(servicetexts::outcome("What", reply), "text");
}

void TestServiceTexts::onlySuccessHasTheUnit()
{
    QCOMPARE(servicetexts::outcomeOfMillivolts("To -1000", bytes("003b")),
             QString("To -1000mV: Success\n"));
    QCOMPARE(servicetexts::outcomeOfMillivolts("To -1000", bytes("013b")),
             QString("To -1000: Failed\n"));
    QCOMPARE(servicetexts::outcomeOfMillivolts("To -1000", QByteArray()),
             QString("To -1000: Failed\n"));
}

void TestServiceTexts::intensityIsSignedAndTakenByTheLength_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("positive") << bytes("003b0dac3b") << "Get Intensity:3500\n";
    QTest::newRow("negative") << bytes("003bffff3b") << "Get Intensity:-1\n";
    QTest::newRow("lowest") << bytes("003b80003b") << "Get Intensity:-32768\n";
    QTest::newRow("status is not looked at") << bytes("01ff000540") << "Get Intensity:5\n";
    const char failed[] = "Get Intensity: failed - no response\n";
    QTest::newRow("four bytes") << bytes("003b0dac") << failed;
    QTest::newRow("refused") << bytes("013b") << failed;
    QTest::newRow("nothing") << QByteArray() << failed;
}

void TestServiceTexts::intensityIsSignedAndTakenByTheLength()
{
    QFETCH(QByteArray, reply);
    QTEST(servicetexts::intensity(reply), "text");
}

void TestServiceTexts::activeSignalTellsBothStages_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    const auto active = [](int one, int two) {
        return QStringLiteral("Get Active Signal: \n  Active 1: %1\n  Active 2: %2\n")
            .arg(one)
            .arg(two);
    };
    QTest::newRow("none") << bytes("003b00003b") << active(0, 0);
    QTest::newRow("stage 1") << bytes("003b01003b") << active(1, 0);
    QTest::newRow("stage 2") << bytes("003b00013b") << active(0, 1);
    QTest::newRow("any other number") << bytes("003b80ff3b") << active(1, 1);
    QTest::newRow("status is not looked at") << bytes("01ff010040") << active(1, 0);
    const QString failed = "Get Active Signal: failed - no response\n";
    QTest::newRow("four bytes") << bytes("003b0101") << failed;
    QTest::newRow("refused") << bytes("013b") << failed;
    QTest::newRow("nothing") << QByteArray() << failed;
}

void TestServiceTexts::activeSignalTellsBothStages()
{
    QFETCH(QByteArray, reply);
    QTEST(servicetexts::activeSignal(reply), "text");
}

void TestServiceTexts::wholePacketIsToldInSevenLines()
{
    const QStringList flags{"On/Off Stage 1/2: 1 / 1\n", "Active Stage 1/2: 1 / 1\n",
                            "(Multiplex) Stage 1/2: 1 / 1\n"};
    QCOMPARE(servicetexts::oneShot(wholePacket, 11),
             QStringList("Trigger One Shot: Success\n") + flags + linesOfWholePacket);
}

void TestServiceTexts::flagsAreToldOneByOne_data()
{
    QTest::addColumn<int>("flagsA");
    QTest::addColumn<int>("flagsB");
    QTest::addColumn<QString>("pairs");
    QTest::newRow("none") << 0x87 << 0xFC << "0 / 0, 0 / 0, 0 / 0";
    QTest::newRow("stage 1 on") << 0x08 << 0 << "1 / 0, 0 / 0, 0 / 0";
    QTest::newRow("stage 2 on") << 0x10 << 0 << "0 / 1, 0 / 0, 0 / 0";
    QTest::newRow("stage 1 active") << 0x20 << 0 << "0 / 0, 1 / 0, 0 / 0";
    QTest::newRow("stage 2 active") << 0x40 << 0 << "0 / 0, 0 / 1, 0 / 0";
    QTest::newRow("multiplex of stage 1") << 0 << 0x01 << "0 / 0, 0 / 0, 1 / 0";
    QTest::newRow("multiplex of stage 2") << 0 << 0x02 << "0 / 0, 0 / 0, 0 / 1";
}

void TestServiceTexts::flagsAreToldOneByOne()
{
    QFETCH(int, flagsA);
    QFETCH(int, flagsB);
    QFETCH(QString, pairs);
    const QStringList texts = servicetexts::oneShot(packetWithFlags(flagsA, flagsB), 11);
    const QStringList expected = pairs.split(", ");
    QCOMPARE(texts.mid(1, 3), QStringList({"On/Off Stage 1/2: " + expected[0] + "\n",
                                           "Active Stage 1/2: " + expected[1] + "\n",
                                           "(Multiplex) Stage 1/2: " + expected[2] + "\n"}));
}

void TestServiceTexts::oldFirmwareHasNoFlags_data()
{
    QTest::addColumn<int>("firmware");
    QTest::newRow("first") << 1;
    QTest::newRow("last") << 10;
}

void TestServiceTexts::oldFirmwareHasNoFlags()
{
    QFETCH(int, firmware);
    const QStringList flags{"On/Off Stage 1/2: 0 / 0\n", "Active Stage 1/2: 0 / 0\n",
                            "(Multiplex) Stage 1/2: 0 / 0\n"};
    QCOMPARE(servicetexts::oneShot(wholePacket, firmware),
             QStringList("Trigger One Shot: Success\n") + flags + linesOfWholePacket);
}

void TestServiceTexts::oneShotWithoutAWholePacketIsItsOutcomeAlone_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("24 bytes") << wholePacket.left(24) << "Trigger One Shot: Success\n";
    QTest::newRow("two bytes") << bytes("003b") << "Trigger One Shot: Success\n";
    QTest::newRow("refused") << bytes("013b") << "Trigger One Shot: Failed\n";
    QTest::newRow("whole, but refused")
        << bytes("01") + wholePacket.mid(1) << "Trigger One Shot: Failed\n";
    QTest::newRow("one byte") << bytes("00") << "Trigger One Shot: Failed\n";
    QTest::newRow("nothing") << QByteArray() << "Trigger One Shot: Failed\n";
}

void TestServiceTexts::oneShotWithoutAWholePacketIsItsOutcomeAlone()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, text);
    QCOMPARE(servicetexts::oneShot(reply, 40), QStringList{text});
}

void TestServiceTexts::lastErrorNeedsSevenBytes_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::newRow("usual") << bytes("003b") + "SPF" + bytes("053b")
                           << "Get Error: Command:SPF Code: 5\n";
    QTest::newRow("negative code")
        << bytes("003b") + "SDS" + bytes("ff3b") << "Get Error: Command:SDS Code: -1\n";
    QTest::newRow("markup") << bytes("003b") + "<b>" + bytes("803b")
                            << "Get Error: Command:<b> Code: -128\n";
    QTest::newRow("place marks") << bytes("003b") + "%1%" + bytes("023b")
                                 << "Get Error: Command:%1% Code: 2\n";
    QTest::newRow("second byte is not looked at")
        << bytes("0041") + "SPF" + bytes("0541") << "Get Error: Command:SPF Code: 5\n";
    const char failed[] = "Get Error: Failed\n";
    QTest::newRow("six bytes") << bytes("003b") + "SPF" + bytes("05") << failed;
    QTest::newRow("status alone") << bytes("003b") << failed;
    QTest::newRow("refused") << bytes("013b") << failed;
    QTest::newRow("whole, but refused") << bytes("013b") + "SPF" + bytes("053b") << failed;
    QTest::newRow("nothing") << QByteArray() << failed;
}

void TestServiceTexts::lastErrorNeedsSevenBytes()
{
    QFETCH(QByteArray, reply);
    QTEST(servicetexts::lastError(reply), "text");
}

void TestServiceTexts::memoryIsALineForEachByte()
{
    QByteArray content;
    for (int i = 0; i < 255; ++i)
        content.append(char(i % 100));
    const QStringList lines = servicetexts::memory(memoryReply(content));
    QCOMPARE(lines.size(), 255);
    QCOMPARE(lines.first(), QString("0: 0"));
    QCOMPARE(lines[17], QString("17: 11"));
    QCOMPARE(lines[99], QString("99: 63"));
    QCOMPARE(lines.last(), QString("254: 36"));
}

void TestServiceTexts::bytesOfTheMemoryAreSigned_data()
{
    QTest::addColumn<QByteArray>("byte");
    QTest::addColumn<QString>("line");
    QTest::newRow("zero") << bytes("00") << "0: 0";
    QTest::newRow("highest") << bytes("7f") << "0: 7f";
    QTest::newRow("lowest") << bytes("80") << "0: ffffffffffffff80";
    QTest::newRow("AB") << bytes("ab") << "0: ffffffffffffffab";
    QTest::newRow("last") << bytes("ff") << "0: ffffffffffffffff";
}

void TestServiceTexts::bytesOfTheMemoryAreSigned()
{
    QFETCH(QByteArray, byte);
    QTEST(servicetexts::memory(memoryReply(byte + QByteArray(254, '\0'))).first(), "line");
}

void TestServiceTexts::memoryOfAnyOtherLengthIsNotSupported_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {0, 1, 2, 257, 259})
        QTest::addRow("%d bytes", length) << length;
}

void TestServiceTexts::memoryOfAnyOtherLengthIsNotSupported()
{
    QFETCH(int, length);
    QCOMPARE(servicetexts::memory(QByteArray(length, '\0')), QStringList{"Not supported! \n"});
}

QTEST_GUILESS_MAIN(TestServiceTexts)
#include "tst_servicetexts.moc"
