#include "emulator/emulatorhost.h"
#include "serialclient.h"
#include "support/pseudoterminals.h"
#include "wiretools.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(std::function<bool(QString)>)
Q_DECLARE_METATYPE(std::function<void(ControllerHandle&)>)

namespace {

/// An open port of which only the hang-up is of interest.
class HangUpWatch final
{
public:
    explicit HangUpWatch(const QString& path)
        : port(::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {}
    ~HangUpWatch() { ::close(port); }
    HangUpWatch(const HangUpWatch&) = delete;
    HangUpWatch& operator=(const HangUpWatch&) = delete;

    bool isOpen() const { return port >= 0; }
    bool hasHungUp() const
    {
        pollfd state{};
        state.fd = port;
        poll(&state, 1, 0);
        return (state.revents & POLLHUP) != 0;
    }

private:
    const int port;
};

/// True for anything there, also for a link that leads nowhere.
bool somethingIsAt(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() || info.exists();
}

void expectWarning(const char* text)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(text));
}

} // namespace

class TestUnplug final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void linkLeadsToTheTerminalUntilTheEnd();
    void linkThatLeadsNowhereIsReplaced();
    void linkToATerminalThatIsYoungerIsReplaced();
    void linkToTheTerminalOfSomebodyElseStays();
    void whatIsInTheWayStays_data();
    void whatIsInTheWayStays();
    void linkOfARunningControllerStays();
    void linkInAMissingFolderGivesNoController();
    void linkThatSomebodyElsePutThereStays();
    void unpluggedHostSeesAHangUp();
    void controllerGoesOnWhileItIsUnplugged();
    void pluggedInAgainItIsFoundUnderTheSameLink();
    void withoutALinkANewTerminalHasANewPath();
    void unpluggingTwiceIsUnpluggingOnce();
    void linkThatWasTakenMeanwhileIsReported();
    void connectionsEndByUnplugging_data();
    void connectionsEndByUnplugging();
    void powerCutSwitchesStagesOff();
    void ruleOfACommandCanUnplug_data();
    void ruleOfACommandCanUnplug();
    void closeBehindAPacketUnplugs();

private:
    QString linkPath() const { return folder->filePath("ttyUSB77"); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestUnplug::initTestCase()
{
    if (!pseudoTerminalProblem().isEmpty())
        QSKIP(qPrintable(pseudoTerminalProblem()));
}

void TestUnplug::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void TestUnplug::linkLeadsToTheTerminalUntilTheEnd()
{
    {
        EmulatorHost host;
        const ControllerHandle controller = host.addPty({}, linkPath());
        QVERIFY(controller.isValid());
        QCOMPARE(controller.path(), linkPath());
        QVERIFY(QFileInfo(linkPath()).isSymLink());
        QVERIFY(QFileInfo(linkPath()).symLinkTarget().startsWith("/dev/pts/"));
        SerialClient client(linkPath());
        QCOMPARE(client.exchange("GID;", 50), controller.idReply());
    }

    QVERIFY(!somethingIsAt(linkPath()));
    QCOMPARE(QDir(folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 0);
}

void TestUnplug::linkThatLeadsNowhereIsReplaced()
{
    QVERIFY(QFile::link("/dev/pts/1234567", linkPath()));
    EmulatorHost host;

    const ControllerHandle controller = host.addPty({}, linkPath());

    QVERIFY(controller.isValid());
    SerialClient client(linkPath());
    QCOMPARE(client.exchange("GSF;", 4), hex("00 3b 01 3b"));
    QCOMPARE(QDir(folder->path()).entryList(QDir::AllEntries | QDir::System).filter("tty").size(),
             1);
}

void TestUnplug::linkToATerminalThatIsYoungerIsReplaced()
{
    // The number of the terminal that the link led to has been given away again.
    EmulatorHost host;
    const QString terminal = host.addPty().path();
    QVERIFY(QFile::link(terminal, linkPath()));
    const timespec longAgo[2] = {{1000, 0}, {1000, 0}};
    QCOMPARE(
        utimensat(AT_FDCWD, linkPath().toLocal8Bit().constData(), longAgo, AT_SYMLINK_NOFOLLOW), 0);

    QVERIFY(host.addPty({}, linkPath()).isValid());

    QVERIFY(QFileInfo(linkPath()).symLinkTarget() != terminal);
}

void TestUnplug::linkToTheTerminalOfSomebodyElseStays()
{
    EmulatorHost host;
    const QString terminal = host.addPty().path();
    QVERIFY(QFile::link(terminal, linkPath()));

    expectWarning("ttyUSB77.*exists, and leads to /dev/pts/");
    QVERIFY(!host.addPty({}, linkPath()).isValid());

    QCOMPARE(QFileInfo(linkPath()).symLinkTarget(), terminal);
}

void TestUnplug::whatIsInTheWayStays_data()
{
    QTest::addColumn<std::function<bool(QString)>>("put");

    using Put = std::function<bool(QString)>;
    QTest::newRow("file") << Put([](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("precious") > 0;
    });
    QTest::newRow("folder") << Put([](const QString& path) { return QDir().mkdir(path); });
    QTest::newRow("link to a file")
        << Put([](const QString& path) { return QFile::link("/etc/passwd", path); });
    QTest::newRow("link to nothing of ours")
        << Put([](const QString& path) { return QFile::link("/nowhere/at/all", path); });
}

void TestUnplug::whatIsInTheWayStays()
{
    QFETCH(std::function<bool(QString)>, put);
    QVERIFY(put(linkPath()));
    const QString targetBefore = QFileInfo(linkPath()).symLinkTarget();
    EmulatorHost host;

    expectWarning("can not set up .*ttyUSB77.*exists");
    const ControllerHandle controller = host.addPty({}, linkPath());

    QVERIFY(!controller.isValid());
    QVERIFY(somethingIsAt(linkPath()));
    QCOMPARE(QFileInfo(linkPath()).symLinkTarget(), targetBefore);
}

void TestUnplug::linkOfARunningControllerStays()
{
    EmulatorHost host;
    const ControllerHandle first = host.addPty({}, linkPath());

    expectWarning("ttyUSB77.*exists, and leads to /dev/pts/");
    QVERIFY(!host.addPty({}, linkPath()).isValid());

    SerialClient client(linkPath());
    QCOMPARE(client.exchange("GID;", 50), first.idReply());
}

void TestUnplug::linkInAMissingFolderGivesNoController()
{
    EmulatorHost host;

    expectWarning("No such file");
    QVERIFY(!host.addPty({}, folder->filePath("none/ttyUSB77")).isValid());
}

void TestUnplug::linkThatSomebodyElsePutThereStays()
{
    {
        EmulatorHost host;
        QVERIFY(host.addPty({}, linkPath()).isValid());
        QVERIFY(QFile::remove(linkPath()));
        QVERIFY(QFile::link("/dev/null", linkPath()));
    }
    QCOMPARE(QFileInfo(linkPath()).symLinkTarget(), QString("/dev/null"));
}

void TestUnplug::unpluggedHostSeesAHangUp()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    const HangUpWatch watch(linkPath());
    QVERIFY(watch.isOpen());
    QVERIFY(controller.isConnected());

    controller.unplug();

    QVERIFY(watch.hasHungUp());
    QVERIFY(!controller.isConnected());
    QVERIFY(!somethingIsAt(linkPath()));
    QCOMPARE(controller.path(), linkPath());
}

void TestUnplug::controllerGoesOnWhileItIsUnplugged()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    SerialClient client(linkPath());
    QCOMPARE(client.exchange("SEA" + hex("01 3b"), 2), accepted());
    QVERIFY(isFramed(client.exchange(startAt(500), packetBytes)));
    client.port.close();

    controller.unplug();

    QTRY_VERIFY(controller.packetsLost() >= 20);
    QVERIFY(controller.isStreaming());
    QVERIFY(controller.stageOn(1));
    controller.sendRaw("into the void");
}

void TestUnplug::pluggedInAgainItIsFoundUnderTheSameLink()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    {
        SerialClient client(linkPath());
        QCOMPARE(client.exchange("SEA" + hex("02 3b"), 2), accepted());
        QCOMPARE(client.exchange("SBR" + hex("09 3b"), 2), accepted());
    }

    for (int turn = 0; turn < 3; ++turn) {
        controller.unplug();
        QVERIFY(!somethingIsAt(linkPath()));
        controller.replug();
        QVERIFY(somethingIsAt(linkPath()));
        SerialClient client(linkPath(), 921600);
        QCOMPARE(client.exchange("GID;", 50), controller.idReply());
        QVERIFY(controller.stageOn(2));
    }
}

void TestUnplug::withoutALinkANewTerminalHasANewPath()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty();
    const QString before = controller.path();
    const HangUpWatch watch(before);

    controller.unplug();
    controller.replug();

    // The host that still has the old one open keeps its number taken.
    QVERIFY(controller.path() != before);
    SerialClient client(controller.path());
    QCOMPARE(client.exchange("GSF;", 4), hex("00 3b 01 3b"));
}

void TestUnplug::unpluggingTwiceIsUnpluggingOnce()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());

    controller.unplug();
    controller.unplug();
    controller.replug();
    const QString terminal = QFileInfo(linkPath()).symLinkTarget();
    controller.replug();

    QCOMPARE(QFileInfo(linkPath()).symLinkTarget(), terminal);
    SerialClient client(linkPath());
    QCOMPARE(client.exchange("GSF;", 4), hex("00 3b 01 3b"));
}

void TestUnplug::linkThatWasTakenMeanwhileIsReported()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    controller.unplug();
    QVERIFY(QFile::link("/dev/null", linkPath()));

    expectWarning("can not plug in again: exists, and leads to /dev/null");
    controller.replug();

    QVERIFY(!controller.isConnected());
    QVERIFY(QFile::remove(linkPath()));
    controller.replug();
    QVERIFY(somethingIsAt(linkPath()));
}

void TestUnplug::connectionsEndByUnplugging_data()
{
    QTest::addColumn<std::function<void(ControllerHandle&)>>("end");

    using End = std::function<void(ControllerHandle&)>;
    QTest::newRow("close") << End([](ControllerHandle& c) { c.closeConnection(); });
    QTest::newRow("half close") << End([](ControllerHandle& c) { c.halfCloseConnection(); });
    QTest::newRow("power off") << End([](ControllerHandle& c) { c.stopListening(); });
}

void TestUnplug::connectionsEndByUnplugging()
{
    QFETCH(std::function<void(ControllerHandle&)>, end);
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    const HangUpWatch watch(linkPath());

    end(controller);

    QVERIFY(watch.hasHungUp());
    QVERIFY(!somethingIsAt(linkPath()));
    controller.listenAgain();
    SerialClient client(linkPath());
    QCOMPARE(client.exchange("GSF;", 4), hex("00 3b 01 3b"));
}

void TestUnplug::powerCutSwitchesStagesOff()
{
    EmulatorHost host;
    ControllerHandle controller = host.addPty({}, linkPath());
    {
        SerialClient client(linkPath());
        QCOMPARE(client.exchange("SEA" + hex("03 3b"), 2), accepted());
        QVERIFY(isFramed(client.exchange(startAt(100), packetBytes)));
    }

    controller.stopListening();

    QVERIFY(!controller.stageOn(1));
    QVERIFY(!controller.isStreaming());
}

void TestUnplug::ruleOfACommandCanUnplug_data()
{
    QTest::addColumn<bool>("half");

    QTest::newRow("close") << false;
    QTest::newRow("half close") << true;
}

void TestUnplug::ruleOfACommandCanUnplug()
{
    QFETCH(bool, half);
    ControllerOptions options;
    (half ? options.faults.halfCloseOn : options.faults.closeOn) = {"GSF"};
    EmulatorHost host;
    QVERIFY(host.addPty(options, linkPath()).isValid());
    SerialClient client(linkPath());
    const HangUpWatch watch(linkPath());

    client.send("GSF;");

    QTRY_VERIFY_WITH_TIMEOUT(watch.hasHungUp(), 5000);
    client.port.close();
    QVERIFY(!somethingIsAt(linkPath()));
}

void TestUnplug::closeBehindAPacketUnplugs()
{
    ControllerOptions options;
    options.faults.closeAfterPackets = 5;
    EmulatorHost host;
    ControllerHandle controller = host.addPty(options, linkPath());
    SerialClient client(linkPath());
    const HangUpWatch watch(linkPath());

    client.send(startAt(500));

    QTRY_VERIFY(watch.hasHungUp());
    client.port.close();
    QCOMPARE(controller.packetsSent(), qint64(5));
}

QTEST_GUILESS_MAIN(TestUnplug)
#include "tst_unplug.moc"
