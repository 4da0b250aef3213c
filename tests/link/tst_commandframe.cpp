#include "link/commandframe.h"

#include <QtTest>

class TestCommandFrame : public QObject
{
    Q_OBJECT

private slots:
    void commandWithoutArgumentEndsInSemicolon();
    void argumentsAreRawBytes_data();
    void argumentsAreRawBytes();
    void labelIsCutOrPaddedTo25Bytes_data();
    void labelIsCutOrPaddedTo25Bytes();
    void pulsedStartHasNoRate();
    void startsAndStopsAreKnown_data();
    void startsAndStopsAreKnown();
    void valuesAreSignedAndHighByteFirst();
};

void TestCommandFrame::commandWithoutArgumentEndsInSemicolon()
{
    const CommandFrame frame = command::frame("GID", {}, 50);
    QCOMPARE(frame.message, QByteArray("GID;"));
    QCOMPARE(frame.answerLength, 50);
}

void TestCommandFrame::argumentsAreRawBytes_data()
{
    QTest::addColumn<QByteArray>("argument");
    QTest::addColumn<QByteArray>("hex");

    QTest::newRow("P-factor 1.5 V of stage 2")
        << command::frame("SPF", command::stageValueArgument(Stage::Two, 1500), 2).message
        << QByteArray("5350460205dc3b");
    QTest::newRow("adjust-in -1000 mV of stage 1, y")
        << command::frame("SAI", command::stageAxisValueArgument(Stage::One, BeamAxis::Y, -1000), 2)
               .message
        << QByteArray("5341490179fc183b");
    QTest::newRow("rate 500") << command::streamArgument(500) << QByteArray("000001f43b");
    QTest::newRow("rate 430") << command::streamArgument(430) << QByteArray("000001ae3b");
    QTest::newRow("rate 1000") << command::streamArgument(1000) << QByteArray("000003e83b");
    QTest::newRow("stage") << command::stageArgument(Stage::One) << QByteArray("013b");
    QTest::newRow("stage and axis")
        << command::stageAxisArgument(Stage::Two, BeamAxis::X) << QByteArray("02783b");
    QTest::newRow("argument byte that is a semicolon")
        << command::stageValueArgument(Stage::One, 0x3b3b) << QByteArray("013b3b3b");
    QTest::newRow("whole memory") << command::memoryArgument() << QByteArray("0000ff3b");
    QTest::newRow("115200 baud") << command::baudRateArgument(115200) << QByteArray("013b");
    QTest::newRow("460800 baud") << command::baudRateArgument(460800) << QByteArray("043b");
    QTest::newRow("921600 baud") << command::baudRateArgument(921600) << QByteArray("093b");
    QTest::newRow("no baud rate") << command::baudRateArgument(-1) << QByteArray("3b");
}

void TestCommandFrame::argumentsAreRawBytes()
{
    QFETCH(QByteArray, argument);
    QTEST(argument.toHex(), "hex");
}

void TestCommandFrame::labelIsCutOrPaddedTo25Bytes_data()
{
    QTest::addColumn<QByteArray>("label");
    QTest::addColumn<QByteArray>("argument");
    QTest::newRow("3 characters") << QByteArray("abc")
                                  << QByteArray("abc") + QByteArray(22, ' ') + ';';
    QTest::newRow("25 characters")
        << QByteArray("abcdefghijklmnopqrstuvwxy") << QByteArray("abcdefghijklmnopqrstuvwxy;");
    QTest::newRow("30 characters")
        << QByteArray("abcdefghijklmnopqrstuvwxyz0123") << QByteArray("abcdefghijklmnopqrstuvwxy;");
}

void TestCommandFrame::labelIsCutOrPaddedTo25Bytes()
{
    QFETCH(QByteArray, label);
    const QByteArray argument = command::labelArgument(label);
    QTEST(argument, "argument");
    QCOMPARE(argument.size(), 26);
}

void TestCommandFrame::pulsedStartHasNoRate()
{
    QCOMPARE(command::withoutRate(command::streamArgument(500)).toHex(), QByteArray("00003b"));
}

void TestCommandFrame::startsAndStopsAreKnown_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<bool>("isStop");
    QTest::addColumn<bool>("startsStream");
    QTest::newRow("CLS") << QByteArray("CLS;") << true << false;
    QTest::newRow("SLS") << QByteArray("SLS\0\0\x01\xf4;", 8) << false << true;
    QTest::newRow("SGS") << QByteArray("SGS\0\0\x01\xf4;", 8) << false << true;
    QTest::newRow("SPS") << QByteArray("SPS\0\0;", 6) << false << true;
    QTest::newRow("mnemonic alone") << QByteArray("SLS") << false << true;
    QTest::newRow("GSF") << QByteArray("GSF;") << false << false;
    QTest::newRow("longer than a stop") << QByteArray("CLS;;") << false << false;
}

void TestCommandFrame::startsAndStopsAreKnown()
{
    QFETCH(QByteArray, message);
    const CommandFrame frame{message, 2};
    QTEST(frame.isStop(), "isStop");
    QTEST(frame.startsStream(), "startsStream");
}

void TestCommandFrame::valuesAreSignedAndHighByteFirst()
{
    QCOMPARE(command::signedValueAt("\x05\xdc", 0), qint16(1500));
    QCOMPARE(command::signedValueAt("..\xfc\x18", 2), qint16(-1000));
}

QTEST_GUILESS_MAIN(TestCommandFrame)
#include "tst_commandframe.moc"
