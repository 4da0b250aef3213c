#include "link/replyforms.h"

#include <QtTest>

class TestReplyForms : public QObject
{
    Q_OBJECT

private slots:
    void acceptedAndRefusedAreTold_data();
    void acceptedAndRefusedAreTold();
    void aReplyThatIsTooShortForItsValueIsNone_data();
    void aReplyThatIsTooShortForItsValueIsNone();
    void ofTwoBytesOnlyTheFirstCounts_data();
    void ofTwoBytesOnlyTheFirstCounts();
    void lengthCountsWhateverTheBytesAre_data();
    void lengthCountsWhateverTheBytesAre();
};

void TestReplyForms::acceptedAndRefusedAreTold_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<bool>("acceptedByOne");
    QTest::addColumn<bool>("refused");
    QTest::newRow("two bytes") << QByteArray("\0;", 2) << true << true << false;
    QTest::newRow("payload") << QByteArray("\0;\x48;", 4) << true << true << false;
    QTest::newRow("one byte") << QByteArray("\0", 1) << false << true << false;
    QTest::newRow("refusal") << QByteArray("\x01;") << false << false << true;
    QTest::newRow("one byte of a refusal") << QByteArray("\x01") << false << false << true;
    QTest::newRow("unknown status") << QByteArray("\x02;") << false << false << false;
    QTest::newRow("nothing") << QByteArray() << false << false << false;
    QTest::newRow("no separator") << QByteArray("\0\0", 2) << false << true << false;
}

void TestReplyForms::acceptedAndRefusedAreTold()
{
    QFETCH(QByteArray, reply);
    QTEST(command::isAccepted(reply), "accepted");
    QTEST(command::isAcceptedByOne(reply), "acceptedByOne");
    QTEST(command::isRefused(reply), "refused");
}

void TestReplyForms::aReplyThatIsTooShortForItsValueIsNone_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("isReply");
    QTest::newRow("value") << QByteArray("\0;\x01\x02;", 5) << true;
    QTest::newRow("value without its end") << QByteArray("\0;\x01\x02", 4) << true;
    QTest::newRow("half a value") << QByteArray("\0;\x01", 3) << false;
    QTest::newRow("acceptance alone") << QByteArray("\0;", 2) << false;
    QTest::newRow("refused") << QByteArray("\x01;\x01\x02;", 5) << false;
}

void TestReplyForms::aReplyThatIsTooShortForItsValueIsNone()
{
    QFETCH(QByteArray, reply);
    constexpr int valueEnd = 4;
    QTEST(command::isAccepted(reply, valueEnd), "isReply");
}

void TestReplyForms::ofTwoBytesOnlyTheFirstCounts_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("accepted") << QByteArray("\0;", 2) << true;
    QTest::newRow("another second byte") << QByteArray("\0x", 2) << true;
    QTest::newRow("one byte") << QByteArray("\0", 1) << false;
    QTest::newRow("refused") << QByteArray("\x01;") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestReplyForms::ofTwoBytesOnlyTheFirstCounts()
{
    QFETCH(QByteArray, reply);
    QTEST(command::isAcceptedByTwo(reply), "accepted");
}

void TestReplyForms::lengthCountsWhateverTheBytesAre_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("isLonger");
    QTest::newRow("longer") << QByteArray(25, 'x') << true;
    QTest::newRow("as long") << QByteArray(24, '\0') << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestReplyForms::lengthCountsWhateverTheBytesAre()
{
    QFETCH(QByteArray, reply);
    QTEST(command::isLongerThan(reply, 24), "isLonger");
}

QTEST_GUILESS_MAIN(TestReplyForms)
#include "tst_replyforms.moc"
