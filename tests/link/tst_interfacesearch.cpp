// The search for controllers, over pseudo terminals with the names of serial adapters.

#include "link/interfacesearch.h"
#include "support/anotheruser.h"
#include "support/logcapture.h"
#include "support/privatedev.h"
#include "support/pseudoport.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QtTest>

#include <functional>
#include <list>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Answer = AnsweringPort::Answer;

const QByteArray accepted("\0;", 2);
const QByteArray key("AB000000001");
/// Of a port that does not answer: two rates, two flow controls, two stops of 100 ms.
constexpr int silentPortMs = 800;

QByteArray nothing(const QByteArray&, AnsweringPort&)
{
    return QByteArray();
}

/// One that answers every `CLS;`, and `GID;` with what is given.
Answer answeringId(const QByteArray& reply)
{
    return [reply](const QByteArray& command, AnsweringPort&) {
        return command == "CLS;" ? accepted : reply;
    };
}

InterfaceLister listing(const QList<SerialInterface>& interfaces)
{
    return [interfaces] { return interfaces; };
}

SerialInterface adapter(const PseudoPort& port, const QString& manufacturer = "FTDI")
{
    return {port.name(), QStringLiteral("Serial adapter"), manufacturer};
}

/// As lines such as "Zev-..., ttyUSB7, 115200, 1".
QStringList described(const QList<FoundInterface>& found)
{
    QStringList lines;
    for (const FoundInterface& each : found)
        lines.append(QStringLiteral("%1, %2, %3, %4")
                         .arg(each.id, each.port)
                         .arg(each.baudRate)
                         .arg(each.flowControl));
    return lines;
}

QStringList searchAt(const PseudoPort& port)
{
    return described(searchInterfaces(false, false, listing({adapter(port)})));
}

QString entry(const PseudoPort& port, int baudRate, int flowControl)
{
    return described({{idTextWithKey(key), port.name(), baudRate, flowControl}}).first();
}

QString quoted(const QString& text)
{
    return '"' + text + '"';
}

} // namespace

class TestInterfaceSearch final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void withoutInterfacesNothingIsFound();
    void pseudoTerminalsAreNamedAndNotTried();
    void aControllerIsFoundAtItsRateAndFlowControl_data();
    void aControllerIsFoundAtItsRateAndFlowControl();
    void oneControllerMakesOneEntry();
    void severalAreFoundInTheOrderOfTheirPorts();
    void onlyAdaptersOfTheKnownManufacturerAreTried_data();
    void onlyAdaptersOfTheKnownManufacturerAreTried();
    void withoutControllersTheListIsEmptyAfterAllPorts();
    void aSilentPortTakes800Ms();
    void tenSilentPortsTakeTenTimesThat();

    void whoIsNoControllerIsNotFound_data();
    void whoIsNoControllerIsNotFound();
    void anIdentificationOf49BytesIsAskedForOnceMore();
    void theSecondAnswerIsTaken();
    void bothStopsAreSentWhateverTheFirstFinds();
    void theRestOfAStreamIsNoIdentification();

    void aSilentPortTellsTheStoryInOrder();
    void aFoundControllerTellsTheStoryInOrder();

    void aBusyPortIsPassedOver();
    void aPortWithoutRightsIsExplained();
    void aMissingPortIsPassedOver();
    void aPortThatVanishesIsNotWaitedFor_data();
    void aPortThatVanishesIsNotWaitedFor();
    void aPortThatVanishedDoesNotKeepTheOthersFromBeingFound();
    void theSearchLeavesThePortFree();
};

void TestInterfaceSearch::initTestCase()
{
    if (!devFolderProblem().isEmpty())
        QSKIP(qPrintable(devFolderProblem()));
    QVERIFY(PseudoPort().isValid());
}

void TestInterfaceSearch::withoutInterfacesNothingIsFound()
{
    const LogCapture log;
    QVERIFY(searchInterfaces(false, true, listing({})).isEmpty());
    QCOMPARE(log.lines(), QStringList({"info: Searching for serial interfaces",
                                       "info: Search for controllers completed"}));
}

void TestInterfaceSearch::pseudoTerminalsAreNamedAndNotTried()
{
    const AnsweringPort port(controllerAt(115200, true, key));
    const LogCapture log;
    QVERIFY(searchInterfaces(true, true, listing({})).isEmpty());
    const QString name = port.device().mid(int(strlen("/dev/")));
    QCOMPARE(log.count("info: Found pseudo interface  " + quoted(name)), 1);
    QVERIFY(port.commands().empty());

    QVERIFY(searchInterfaces(false, true, listing({})).isEmpty());
    QCOMPARE(log.count("info: Found pseudo interface  " + quoted(name)), 1);
}

void TestInterfaceSearch::aControllerIsFoundAtItsRateAndFlowControl_data()
{
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<bool>("flowControl");
    QTest::newRow("115200 with flow control") << 115200 << true;
    QTest::newRow("115200 without flow control") << 115200 << false;
    QTest::newRow("921600 with flow control") << 921600 << true;
    QTest::newRow("921600 without flow control") << 921600 << false;
}

void TestInterfaceSearch::aControllerIsFoundAtItsRateAndFlowControl()
{
    QFETCH(int, baudRate);
    QFETCH(bool, flowControl);
    const AnsweringPort port(controllerAt(baudRate, flowControl, key));
    QCOMPARE(searchAt(port), QStringList({entry(port, baudRate, flowControl ? 1 : 0)}));
}

void TestInterfaceSearch::oneControllerMakesOneEntry()
{
    // It hears every rate and flow control, and is taken at the first.
    const AnsweringPort port(answeringId(idReplyWithKey(key)));
    QCOMPARE(searchAt(port), QStringList({entry(port, 115200, 1)}));
    QCOMPARE(port.count("CLS;"), 2);
    QCOMPARE(port.count("GID;"), 1);
}

void TestInterfaceSearch::severalAreFoundInTheOrderOfTheirPorts()
{
    const AnsweringPort first(controllerAt(921600, true, key));
    const AnsweringPort silent(nothing);
    const AnsweringPort last(controllerAt(115200, false, key));
    const QStringList found = described(
        searchInterfaces(false, false, listing({adapter(first), adapter(silent), adapter(last)})));
    QCOMPARE(found, QStringList({entry(first, 921600, 1), entry(last, 115200, 0)}));
}

void TestInterfaceSearch::onlyAdaptersOfTheKnownManufacturerAreTried_data()
{
    QTest::addColumn<QString>("manufacturer");
    QTest::addColumn<bool>("anyDevice");
    QTest::addColumn<bool>("isTried");
    QTest::newRow("FTDI") << "FTDI" << false << true;
    QTest::newRow("lower case") << "ftdi" << false << false;
    QTest::newRow("mixed case") << "Ftdi" << false << false;
    QTest::newRow("with more behind it") << "FTDI Ltd" << false << false;
    QTest::newRow("another one") << "Prolific" << false << false;
    QTest::newRow("none") << "" << false << false;
    QTest::newRow("lower case, any device") << "ftdi" << true << true;
    QTest::newRow("none, any device") << "" << true << true;
}

void TestInterfaceSearch::onlyAdaptersOfTheKnownManufacturerAreTried()
{
    QFETCH(QString, manufacturer);
    QFETCH(bool, anyDevice);
    QFETCH(bool, isTried);
    const AnsweringPort port(controllerAt(115200, true, key));
    const LogCapture log;
    const QList<FoundInterface> found =
        searchInterfaces(false, anyDevice, listing({adapter(port, manufacturer)}));
    QCOMPARE(found.size(), isTried ? 1 : 0);
    QCOMPARE(port.commands().empty(), !isTried);
    QCOMPARE(log.count("info: Skipping interface"), isTried ? 0 : 1);
}

void TestInterfaceSearch::withoutControllersTheListIsEmptyAfterAllPorts()
{
    const AnsweringPort first(nothing);
    const AnsweringPort second(nothing);
    const LogCapture log;
    QVERIFY(searchInterfaces(false, false, listing({adapter(first), adapter(second)})).isEmpty());
    // Two ports, two rates, two flow controls.
    QCOMPARE(log.count("debug: Clear 0"), 8);
    QCOMPARE(log.count("debug: Clear 1"), 8);
    QVERIFY(first.count("CLS;") > 0 && second.count("CLS;") > 0);
    QCOMPARE(first.count("GID;") + second.count("GID;"), 0);
}

void TestInterfaceSearch::aSilentPortTakes800Ms()
{
    const PseudoPort port;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(searchAt(port).isEmpty());
    const qint64 passedMs = timer.elapsed();
    qInfo("A silent port took %lld ms", passedMs);
    QVERIFY2(passedMs >= silentPortMs && passedMs < 2 * silentPortMs,
             QByteArray::number(passedMs).constData());
}

void TestInterfaceSearch::tenSilentPortsTakeTenTimesThat()
{
    constexpr int count = 10;
    std::list<PseudoPort> ports(count);
    QList<SerialInterface> interfaces;
    for (const PseudoPort& port : ports)
        interfaces.append(adapter(port));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(searchInterfaces(false, false, listing(interfaces)).isEmpty());
    const qint64 passedMs = timer.elapsed();
    qInfo("Ten silent ports took %lld ms", passedMs);
    QVERIFY2(passedMs >= count * silentPortMs && passedMs < 2 * count * silentPortMs,
             QByteArray::number(passedMs).constData());
}

void TestInterfaceSearch::whoIsNoControllerIsNotFound_data()
{
    QTest::addColumn<QByteArray>("idReply");
    QTest::newRow("another maker") << idReplyWithKey(key).replace("Zev", "Abc");
    QTest::newRow("maker in the wrong case") << idReplyWithKey(key).replace("Zev", "zev");
    QTest::newRow("no answer to the question") << QByteArray();
    QTest::newRow("a refusal") << QByteArray("\1;", 2);
    QTest::newRow("49 bytes") << idReplyWithKey(key).chopped(1);
}

void TestInterfaceSearch::whoIsNoControllerIsNotFound()
{
    QFETCH(QByteArray, idReply);
    const AnsweringPort port(answeringId(idReply));
    const LogCapture log;
    QVERIFY(searchAt(port).isEmpty());
    // Every rate and flow control is tried all the same, and nobody is told as found.
    QCOMPARE(log.count("info: Interface closed"), 4);
    QVERIFY(log.lines().filter("Received ID").isEmpty());
}

void TestInterfaceSearch::anIdentificationOf49BytesIsAskedForOnceMore()
{
    const AnsweringPort port(answeringId(idReplyWithKey(key).chopped(1)));
    QVERIFY(searchAt(port).isEmpty());
    QCOMPARE(port.count("CLS;"), 4 * 2);
    QCOMPARE(port.count("GID;"), 4 * 2);
}

void TestInterfaceSearch::theSecondAnswerIsTaken()
{
    int asked = 0;
    const AnsweringPort port([&asked](const QByteArray& command, AnsweringPort&) {
        if (command == "CLS;")
            return accepted;
        return ++asked == 1 ? idReplyWithKey(key).chopped(1) : idReplyWithKey(key);
    });
    QCOMPARE(searchAt(port), QStringList({entry(port, 115200, 1)}));
    QCOMPARE(port.count("GID;"), 2);
}

void TestInterfaceSearch::bothStopsAreSentWhateverTheFirstFinds()
{
    // What the first stop finds is forgotten with the second.
    int stops = 0;
    const AnsweringPort port([&stops](const QByteArray& command, AnsweringPort&) {
        return command == "CLS;" && ++stops % 2 == 1 ? accepted : QByteArray();
    });
    const LogCapture log;
    QVERIFY(searchAt(port).isEmpty());
    QCOMPARE(port.count("CLS;"), 8);
    QCOMPARE(port.count("GID;"), 0);
    QCOMPARE(log.count("info: Connection timeout"), 4);
}

void TestInterfaceSearch::theRestOfAStreamIsNoIdentification()
{
    // A controller that was left streaming: the first stop is answered by its packets, too.
    int stops = 0;
    const AnsweringPort port([&stops](const QByteArray& command, AnsweringPort&) {
        if (command != "CLS;")
            return idReplyWithKey(key);
        return ++stops == 1 ? QByteArray(4 * 25, '\x2a') + accepted : accepted;
    });
    QCOMPARE(searchAt(port), QStringList({entry(port, 115200, 1)}));
}

void TestInterfaceSearch::aSilentPortTellsTheStoryInOrder()
{
    const AnsweringPort silent(nothing);
    const LogCapture log;
    searchInterfaces(false, false,
                     listing({{"ttyUSB998", "Other adapter", "ftdi"}, adapter(silent)}));
    QStringList story{"info: Searching for serial interfaces",
                      "info: Found interface  \"ttyUSB998\" \"Other adapter\" \"ftdi\"",
                      "info: Skipping interface",
                      "info: Found interface  " + quoted(silent.name())
                          + " \"Serial adapter\" \"FTDI\"",
                      "info: Trying to connect to interface  " + quoted(silent.name())};
    for (const char* baudRate : {"115200", "921600"}) {
        story.append(QStringLiteral("info: Baud rate %1").arg(baudRate));
        for (const char* flowControl : {"1", "0"})
            story += QStringList{QStringLiteral("info: Flow control %1").arg(flowControl),
                                 "debug: Clear 0", "debug: Clear 1", "info: Connection timeout",
                                 "info: Interface closed"};
    }
    story.append("info: Search for controllers completed");
    QCOMPARE(log.lines(), story);
}

void TestInterfaceSearch::aFoundControllerTellsTheStoryInOrder()
{
    int asked = 0;
    const AnsweringPort port([&asked](const QByteArray& command, AnsweringPort& self) {
        if (!self.hasHardwareFlowControl())
            return command == "CLS;" ? accepted : idReplyWithKey(key).chopped(++asked == 1 ? 1 : 0);
        return QByteArray();
    });
    const LogCapture log;
    QCOMPARE(searchAt(port).size(), 1);
    QCOMPARE(
        log.lines(),
        QStringList(
            {"info: Searching for serial interfaces",
             "info: Found interface  " + quoted(port.name()) + " \"Serial adapter\" \"FTDI\"",
             "info: Trying to connect to interface  " + quoted(port.name()),
             "info: Baud rate 115200", "info: Flow control 1", "debug: Clear 0", "debug: Clear 1",
             "info: Connection timeout", "info: Interface closed", "info: Flow control 0",
             "debug: Clear 0", "debug: Clear 1", "debug: Received: \"\\x00;\"",
             "info: Requesting controller ID", "info: Requesting controller ID",
             "info: Received ID " + quoted(idTextWithKey(key)), "info: Interface closed",
             "info: Search for controllers completed"}));
}

void TestInterfaceSearch::aBusyPortIsPassedOver()
{
    const AnsweringPort port(controllerAt(115200, true, key));
    const AnsweringPort other(controllerAt(115200, true, key));
    QSerialPort holder(port.name());
    QVERIFY(holder.open(QIODevice::ReadWrite));
    const LogCapture log;
    const QStringList found =
        described(searchInterfaces(false, false, listing({adapter(port), adapter(other)})));
    QCOMPARE(found, QStringList({entry(other, 115200, 1)}));
    QVERIFY(port.commands().empty());
    QCOMPARE(log.lines().filter("info: Cannot open interface \"Permission").size(), 4);
    // Told once, and who it is.
    const QStringList told = log.lines().filter("warning: ");
    QCOMPARE(told.size(), 1);
    QVERIFY(told.first().contains(port.path() + " is in use by"));
    QVERIFY(told.first().contains(QString::number(::getpid())));
}

void TestInterfaceSearch::aPortWithoutRightsIsExplained()
{
    const AnsweringPort port(controllerAt(115200, true, key));
    QCOMPARE(::chmod(port.device().toLocal8Bit().constData(), 0), 0);
    const LogCapture log;
    const AnotherUser nobody;
    QVERIFY(searchAt(port).isEmpty());
    QCOMPARE(log.lines().filter("info: Cannot open interface \"Permission denied\"").size(), 4);
    const QStringList told = log.lines().filter("warning: ");
    QCOMPARE(told, QStringList("warning: This user has no rights to use " + port.path()
                               + ". Membership in the group \"dialout\" or the udev rule gives "
                                 "them: see \"Serial ports\" in the README"));
}

void TestInterfaceSearch::aMissingPortIsPassedOver()
{
    const LogCapture log;
    QVERIFY(searchInterfaces(false, false, listing({{"ttyUSB997", "", "FTDI"}})).isEmpty());
    QCOMPARE(log.lines().filter("info: Cannot open interface \"No such file").size(), 4);
    QVERIFY(log.lines().filter("warning: ").isEmpty());
}

void TestInterfaceSearch::aPortThatVanishesIsNotWaitedFor_data()
{
    QTest::addColumn<QByteArray>("lastCommand");
    QTest::newRow("at the stop") << QByteArray("CLS;");
    QTest::newRow("when asked who it is") << QByteArray("GID;");
}

void TestInterfaceSearch::aPortThatVanishesIsNotWaitedFor()
{
    QFETCH(QByteArray, lastCommand);
    const AnsweringPort port([lastCommand](const QByteArray& command, AnsweringPort& self) {
        if (command == lastCommand)
            self.hangUpNow();
        return accepted;
    });
    const QString name = port.name();
    const LogCapture log;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(searchInterfaces(false, false, listing({{name, "", "FTDI"}})).isEmpty());
    // Less than the two waits for a port that is there and silent.
    QVERIFY2(timer.elapsed() < silentPortMs / 4, QByteArray::number(timer.elapsed()).constData());
    // What is left of the search finds no port.
    QCOMPARE(log.count("info: Interface closed"), 1);
    QCOMPARE(log.lines().filter("info: Cannot open interface").size(), 3);
    QCOMPARE(log.lines().last(), QStringLiteral("info: Search for controllers completed"));
}

void TestInterfaceSearch::aPortThatVanishedDoesNotKeepTheOthersFromBeingFound()
{
    const AnsweringPort gone([](const QByteArray&, AnsweringPort& self) {
        self.hangUpNow();
        return QByteArray();
    });
    const AnsweringPort port(controllerAt(921600, true, key));
    const QList<SerialInterface> interfaces{adapter(gone), adapter(port)};
    QCOMPARE(described(searchInterfaces(false, false, listing(interfaces))),
             QStringList({entry(port, 921600, 1)}));
}

void TestInterfaceSearch::theSearchLeavesThePortFree()
{
    const AnsweringPort port(controllerAt(115200, true, key));
    QCOMPARE(searchAt(port).size(), 1);
    QSerialPort next(port.name());
    QVERIFY(next.open(QIODevice::ReadWrite));
}

int main(int argc, char** argv)
{
    prepareDevFolder();
    QCoreApplication application(argc, argv);
    TestInterfaceSearch test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_interfacesearch.moc"
