#include "support/emulatedlink.h"
#include "support/logcapture.h"

#include <QTcpServer>
#include <QtTest>

#include <atomic>
#include <cerrno>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// While it lives, a connection comes up only when told to. Within one machine it is there at once.
class SlowNetwork final
{
public:
    SlowNetwork() { holds = true; }
    ~SlowNetwork() { holds = false; }
    SlowNetwork(const SlowNetwork&) = delete;
    SlowNetwork& operator=(const SlowNetwork&) = delete;

    void letThrough() { holds = false; }
    static bool isHolding() { return holds; }

private:
    static std::atomic<bool> holds;
};

std::atomic<bool> SlowNetwork::holds{false};

} // namespace

/// In place of the library's, which says that a connection is under way.
extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size)
{
    const auto result = static_cast<int>(::syscall(SYS_connect, descriptor, address, size));
    if (!SlowNetwork::isHolding())
        return result;
    errno = EINPROGRESS;
    return -1;
}

class TestTcpClient : public QObject
{
    Q_OBJECT

private slots:
    void initTakesNumericAddresses_data();
    void initTakesNumericAddresses();
    void failedInitStoresNothing();
    void baudRateIsThatOfTheAdapter();
    void refusedConnectionEndsTheThreadSilently_data();
    void refusedConnectionEndsTheThreadSilently();
    void linkThatIsUpStaysUpBehindTheConnectTime();
    void linkThatComesUpBehindTheConnectTimeStaysDown();
    void peersCloseEndsTheThreadAndTellsTheAddress();
    void resyncAsksForAReplyAndLeavesTheLinkUsable();
    void resyncOfAStreamAsksForNothing();
    void connectionCanBeStartedAgain();
    void disconnectedLinkIsNotTold();
    void deletionIsToldInOrder();
    void destructionEndsARunningStream();
    void destructionWhileConnectingEndsTheThread();
};

void TestTcpClient::initTakesNumericAddresses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("taken");
    QTest::newRow("IPv4") << "127.0.0.1" << 2000 << true;
    QTest::newRow("IPv6") << "::1" << 2000 << true;
    QTest::newRow("highest port") << "127.0.0.1" << 65535 << true;
    QTest::newRow("port too high") << "127.0.0.1" << 65536 << false;
    QTest::newRow("negative port") << "127.0.0.1" << -1 << true;
    QTest::newRow("empty") << "" << 2000 << false;
    QTest::newRow("name") << "localhost" << 2000 << false;
    QTest::newRow("words") << "not an address" << 2000 << false;
}

void TestTcpClient::initTakesNumericAddresses()
{
    QFETCH(QString, address);
    QFETCH(int, port);
    TcpClient client;
    QTEST(client.init(address, port), "taken");
}

void TestTcpClient::failedInitStoresNothing()
{
    TcpClient client;
    QVERIFY(client.init("127.0.0.5", 2001));
    QVERIFY(!client.init("localhost", 2002));
    QVERIFY(!client.init("127.0.0.6", 65536));
    QCOMPARE(client.address(), QStringLiteral("127.0.0.5"));
    QCOMPARE(client.portOrBaud(), 2001);
}

void TestTcpClient::baudRateIsThatOfTheAdapter()
{
    const TcpClient client;
    QCOMPARE(client.baudRate(), 921600);
    QCOMPARE(client.portOrBaud(), 2000);
    QCOMPARE(client.connectionType(), 1);
}

void TestTcpClient::refusedConnectionEndsTheThreadSilently_data()
{
    QTest::addColumn<int>("timeoutMs");
    QTest::newRow("real wait") << 750;
    QTest::newRow("other wait") << EmulatedLink::shortTimeoutMs;
}

void TestTcpClient::refusedConnectionEndsTheThreadSilently()
{
    QFETCH(int, timeoutMs);
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    const quint16 port = closed.serverPort();
    closed.close();

    const LogCapture log;
    TcpClient client;
    bool told = false;
    connect(&client, &Connection::hostDisconnected, this, [&told] { told = true; });
    if (timeoutMs != Connection::defaultTimeoutMs)
        client.setTimeoutMs(timeoutMs);
    QVERIFY(client.init("127.0.0.1", port));
    QElapsedTimer time;
    time.start();
    client.start();
    QVERIFY(client.wait());
    QVERIFY(time.elapsed() >= timeoutMs);
    QCOMPARE(client.linkState(), LinkState::NotConnected);
    QCOMPARE(log.lines(), QStringList({"debug: Initializing TCP connection \"127.0.0.1\"",
                                       "debug: Closing connection \"\""}));
    QCoreApplication::processEvents();
    QVERIFY(!told);
}

void TestTcpClient::linkThatIsUpStaysUpBehindTheConnectTime()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QTest::qWait(3 * EmulatedLink::shortTimeoutMs);
    QVERIFY(link.client.isRunning());
    QVERIFY(link.client.isConnected());
}

/// Both are due in the same round of the event loop: the end of the connect time comes first.
void TestTcpClient::linkThatComesUpBehindTheConnectTimeStaysDown()
{
    SlowNetwork network;
    EmulatedLink link;
    onThreadOf(
        link.client, [] { return true; },
        [&] {
            QMetaObject::invokeMethod(&link.client, "checkConnection", Qt::DirectConnection);
            network.letThrough();
            QCoreApplication::processEvents();
        });
    link.client.start();
    QVERIFY(link.client.wait());
    QCOMPARE(link.client.linkState(), LinkState::NotConnected);
}

void TestTcpClient::peersCloseEndsTheThreadAndTellsTheAddress()
{
    const LogCapture log;
    EmulatedLink link;
    QVERIFY(link.connect());

    link.controller.closeConnection();
    QVERIFY(link.client.wait());
    QTRY_COMPARE(link.lost.count(), 1);
    QCOMPARE(link.lost.first(), QStringLiteral("127.0.0.1"));
    QCOMPARE(log.count("debug: Controller disconnected"), 1);
}

void TestTcpClient::resyncAsksForAReplyAndLeavesTheLinkUsable()
{
    const LogCapture log;
    EmulatedLink link;
    resyncOnce(link.client, [&link] { return link.client.isConnected(); });
    QVERIFY(link.connect());
    QTRY_COMPARE(log.count("debug: Finished resyncing (TCP)"), 1);
    QCOMPARE(log.count("debug: Resyncing (TCP)"), 1);
    QCOMPARE(link.controller.commands(), QByteArrayList{"GSF;"});

    QByteArray reply;
    QVERIFY(link.client.fetchReply(reply));
    QCOMPARE(reply.size(), 4);
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
}

void TestTcpClient::resyncOfAStreamAsksForNothing()
{
    const LogCapture log;
    EmulatedLink link;
    resyncOnce(link.client, [&link] { return link.client.isStreaming(); });
    QVERIFY(link.connect());
    QVERIFY(link.startStream());
    QTRY_COMPARE(log.count("debug: Finished resyncing (TCP)"), 1);
    QVERIFY(!link.controller.commands().contains("GSF;"));
}

void TestTcpClient::connectionCanBeStartedAgain()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    QCOMPARE(link.client.disconnectController(), 1);
    QCOMPARE(link.client.linkState(), LinkState::Disconnected);
    QTRY_VERIFY(!link.controller.isConnected());

    QVERIFY(link.connect());
    QCOMPARE(link.exchange(&Connection::getControllerId), link.controller.idReply());
}

void TestTcpClient::disconnectedLinkIsNotTold()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    link.client.disconnectController();
    QCoreApplication::processEvents();
    QCOMPARE(link.lost.count(), 0);
}

void TestTcpClient::deletionIsToldInOrder()
{
    const LogCapture log;
    {
        TcpClient client;
    }
    QCOMPARE(log.lines(),
             QStringList({"debug: Deleting TCP connection", "debug: Deleting connection",
                          "debug: Finished deleting connection 1500"}));
}

void TestTcpClient::destructionEndsARunningStream()
{
    EmulatedLink link;
    QVERIFY(link.connectAndIdentify());
    QVERIFY(link.startStream());
    QTRY_VERIFY(link.client.samplesStored() > 10);
    link.client.releaseInPlace();
    QVERIFY(!link.client.isRunning());
    QTRY_VERIFY(!link.controller.isConnected());
}

void TestTcpClient::destructionWhileConnectingEndsTheThread()
{
    EmulatedLink link;
    for (int round = 0; round < 20; ++round) {
        TcpClient client;
        client.init(link.controller.address(), link.controller.port());
        client.start();
        client.releaseInPlace();
        QVERIFY(!client.isRunning());
    }
}

QTEST_GUILESS_MAIN(TestTcpClient)
#include "tst_tcpclient.moc"
