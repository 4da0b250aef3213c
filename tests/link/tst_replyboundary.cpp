#include "link/replyboundary.h"

#include <QBuffer>
#include <QtTest>

namespace {

QByteArray leftAfterSearch(const QByteArray& input, bool& reachedLimit)
{
    QBuffer device;
    device.setData(input);
    device.open(QIODevice::ReadOnly);
    const QDeadlineTimer limit(40);
    findReplyBoundary(device, limit, [] {});
    reachedLimit = limit.hasExpired();
    return device.readAll();
}

} // namespace

class TestReplyBoundary : public QObject
{
    Q_OBJECT

private slots:
    void searchEndsBehindARefusal();
    void searchPassesARefusalWithoutItsSeparator();
    void searchBehindAnAcceptedReplyRunsToTheLimit();
    void onlyTwoBytesAreReadBehindAnAcceptedReply();
    void searchWithoutInputEndsAtTheLimit();
};

void TestReplyBoundary::searchEndsBehindARefusal()
{
    bool reachedLimit = true;
    QCOMPARE(leftAfterSearch("xyz\x01;rest", reachedLimit), QByteArray("rest"));
    QVERIFY(!reachedLimit);
}

void TestReplyBoundary::searchPassesARefusalWithoutItsSeparator()
{
    bool reachedLimit = true;
    QCOMPARE(leftAfterSearch("\x01x\x01;rest", reachedLimit), QByteArray("rest"));
    QVERIFY(!reachedLimit);
}

void TestReplyBoundary::searchBehindAnAcceptedReplyRunsToTheLimit()
{
    // Two bytes are read behind the accepted reply, and the third of them is what is tested.
    bool reachedLimit = false;
    leftAfterSearch(QByteArray("\0;\x48;", 4), reachedLimit);
    QVERIFY(reachedLimit);
}

void TestReplyBoundary::onlyTwoBytesAreReadBehindAnAcceptedReply()
{
    // A third byte would be taken for the terminator that ends the search.
    bool reachedLimit = false;
    leftAfterSearch(QByteArray("\0;\x48;;", 5), reachedLimit);
    QVERIFY(reachedLimit);
}

void TestReplyBoundary::searchWithoutInputEndsAtTheLimit()
{
    bool reachedLimit = false;
    QCOMPARE(leftAfterSearch({}, reachedLimit), QByteArray());
    QVERIFY(reachedLimit);
}

QTEST_GUILESS_MAIN(TestReplyBoundary)
#include "tst_replyboundary.moc"
