// A serial port that can not be opened, and what the log says of it.

#include "driverwatch.h"
#include "seriallink.h"
#include "support/anotheruser.h"
#include "support/logcapture.h"
#include "support/privatedev.h"

#include <QtTest>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// While it lives, nobody may write to any folder.
class NoFolder final
{
public:
    NoFolder() { present = true; }
    ~NoFolder() { present = false; }
    NoFolder(const NoFolder&) = delete;
    NoFolder& operator=(const NoFolder&) = delete;

    static bool isPresent() { return present; }

private:
    static std::atomic<bool> present;
};

std::atomic<bool> NoFolder::present{false};

} // namespace

/// In place of the library's.
extern "C" int access(const char* path, int mode) noexcept
{
    struct stat what
    {};
    if (NoFolder::isPresent() && mode == W_OK && ::stat(path, &what) == 0
        && S_ISDIR(what.st_mode)) {
        errno = EACCES;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_faccessat, AT_FDCWD, path, mode));
}

namespace {

QString noRights(const PseudoPort& port)
{
    return "warning: This user has no rights to use " + port.path()
           + ". Membership in the group \"dialout\" or the udev rule gives them: see \"Serial "
             "ports\" in the README";
}

bool setRights(const PseudoPort& port, mode_t mode)
{
    return ::chmod(port.device().toLocal8Bit().constData(), mode) == 0;
}

bool giveTo(const PseudoPort& port, uid_t user)
{
    constexpr gid_t sameGroup = static_cast<gid_t>(-1);
    return ::getuid() != 0
           || ::chown(port.device().toLocal8Bit().constData(), user, sameGroup) == 0;
}

} // namespace

class TestPortRefusals final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aPortThatIsMissingFailsWithoutAWord();
    void aBusyPortFailsAndTellsWhoHasIt();
    void aPortWithoutRightsFailsAndTellsWhatHelps();
    void aPortWhoseRightsGoBetweenTwoOpensTellsWhatHelps();
    void aPortThatCanNotBeLockedFailsAndTellsWhy();
};

void TestPortRefusals::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
}

void TestPortRefusals::aPortThatIsMissingFailsWithoutAWord()
{
    SerialLink link("ttyUSB996");
    const LogCapture log;
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenOrEndFailed);
    QVERIFY(log.lines().isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(link.lost.isEmpty());

    // Nothing can be sent, and nothing waits.
    QCOMPARE(link.exchange(&Connection::getStatusFlags), QByteArray());
}

void TestPortRefusals::aBusyPortFailsAndTellsWhoHasIt()
{
    EmulatedSerialLink one;
    QVERIFY(one.link.connect());
    SerialLink second(one.name);
    const LogCapture log;
    QVERIFY(!second.connect());
    QVERIFY(second.client.wait(5000));
    QCOMPARE(second.client.linkState(), LinkState::OpenOrEndFailed);
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith("warning: /dev/" + one.name + " is in use by "));
    QVERIFY(log.lines().first().contains(QString::number(::getpid())));
    QVERIFY(one.client.isConnected());
}

void TestPortRefusals::aPortWithoutRightsFailsAndTellsWhatHelps()
{
    const PseudoPort port;
    QVERIFY(setRights(port, 0));
    SerialLink link(port.name());
    const LogCapture log;
    const AnotherUser user;
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenOrEndFailed);
    QCOMPARE(log.lines(), QStringList(noRights(port)));
}

void TestPortRefusals::aPortWhoseRightsGoBetweenTwoOpensTellsWhatHelps()
{
    const PseudoPort port;
    QVERIFY(giveTo(port, AnotherUser::nobody));
    QVERIFY(setRights(port, S_IRUSR | S_IWUSR));
    SerialLink link(port.name());
    const LogCapture log;
    const AnotherUser user;
    // It is asked by the first open; the low latency mode opens the port for itself.
    const DriverWatch driver(TIOCEXCL, [&port] { setRights(port, 0); });
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenOrEndFailed);
    QCOMPARE(log.lines(), QStringList(noRights(port)));
}

void TestPortRefusals::aPortThatCanNotBeLockedFailsAndTellsWhy()
{
    const PseudoPort port;
    SerialLink link(port.name());
    const LogCapture log;
    const NoFolder folders;
    QVERIFY(!link.connect());
    QVERIFY(link.client.wait(5000));
    QCOMPARE(link.client.linkState(), LinkState::OpenOrEndFailed);
    // The library complains of each folder before.
    QVERIFY(!log.lines().isEmpty());
    QCOMPARE(log.lines().last(), "warning: " + port.path()
                                     + " can not be locked: there is no folder for lock files that "
                                       "this user may write to, such as /run/lock");
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QCoreApplication application(argc, argv);
    TestPortRefusals test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_portrefusals.moc"
