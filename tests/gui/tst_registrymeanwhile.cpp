// The end of a connection takes no events: what the user or a timer wants meanwhile happens
// afterwards, to a list of connections that is whole again.

#include "link/connection.h"
#include "plots/genericplot.h"
#include "support/logcapture.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QTimer>
#include <QtTest>

namespace {

/// The systems 0, 1 and 2; the one in the middle is the one that ends.
constexpr int systems = 3;
constexpr int ending = 1;

enum class Meanwhile { CloseItself, CloseLowerIndex, CloseBoth, CloseWindow };

void doMeanwhile(const WindowFixture& fixture, Meanwhile what)
{
    MainWindow& window = fixture.window();
    const auto closeSystem = [&](int number) {
        QVERIFY(window.closedConnection(fixture.controller(number).address()));
    };
    if (what == Meanwhile::CloseWindow)
        QVERIFY(window.close());
    if (what == Meanwhile::CloseItself || what == Meanwhile::CloseBoth)
        closeSystem(ending);
    if (what == Meanwhile::CloseLowerIndex || what == Meanwhile::CloseBoth)
        closeSystem(ending - 1);
}

/// Does it as soon as events are taken.
void postMeanwhile(const WindowFixture& fixture, Meanwhile what)
{
    QTimer::singleShot(0, &fixture.window(), [&fixture, what] { doMeanwhile(fixture, what); });
}

/// The numbers of the systems whose thread still runs, read from the list of the window, which has
/// to be in step with all that is kept beside it.
QList<int> upSystems(const WindowFixture& fixture)
{
    const MainWindow& window = fixture.window();
    const int count = int(window.liveConnections().size());
    QList<int> up;
    if (window.liveStatuses().size() != count || fixture.pointingPlot(1).curveCount() != count
        || fixture.positionPlot(2).curveCount() != 2 * count)
        return {-1};
    for (int number = 0; number < systems; ++number) {
        for (int i = 0; i < count; ++i) {
            const bool isHere =
                fixture.connection(i).address() == fixture.controller(number).address();
            if (isHere && window.liveStatuses()[i].address != fixture.connection(i).address())
                return {-1};
            if (isHere && fixture.connection(i).isRunning())
                up.append(number);
        }
    }
    return up;
}

QStringList addressesOf(const WindowFixture& fixture, const QList<int>& numbers)
{
    QStringList addresses;
    for (const int number : numbers)
        addresses.append(fixture.controller(number).address());
    return addresses;
}

/// The addresses of the shown systems in the order in which they came.
QStringList shownAddresses(const WindowFixture& fixture)
{
    QStringList addresses;
    for (const int index : fixture.window().shownConnections())
        addresses.append(fixture.connection(index).address());
    return addresses;
}

void addCases()
{
    QTest::addColumn<Meanwhile>("meanwhile");
    QTest::addColumn<int>("registered");
    QTest::addColumn<QList<int>>("up");
    QTest::newRow("it is closed") << Meanwhile::CloseItself << 2 << QList<int>{0, 2};
    QTest::newRow("one before it is closed") << Meanwhile::CloseLowerIndex << 2 << QList<int>{2};
    QTest::newRow("both are closed") << Meanwhile::CloseBoth << 1 << QList<int>{2};
    QTest::newRow("the window is closed") << Meanwhile::CloseWindow << 0 << QList<int>();
}

} // namespace

Q_DECLARE_METATYPE(Meanwhile)

class TestRegistryMeanwhile final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatClosesWhileAConnectionEndsClosesAfterwards_data() { addCases(); }
    void whatClosesWhileAConnectionEndsClosesAfterwards();
    void whatClosesBeforeAReconnectionClosesAfterwards_data() { addCases(); }
    void whatClosesBeforeAReconnectionClosesAfterwards();
    void whatClosesWhileAForeignDeviceIsDroppedClosesAfterwards_data() { addCases(); }
    void whatClosesWhileAForeignDeviceIsDroppedClosesAfterwards();

private:
    QString endingAddress() const { return fixture->controller(ending).address(); }

    std::unique_ptr<WindowFixture> fixture;
};

void TestRegistryMeanwhile::init()
{
    fixture = std::make_unique<WindowFixture>(systems);
    QVERIFY(fixture->openWithSystems());
}

void TestRegistryMeanwhile::cleanup()
{
    fixture.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestRegistryMeanwhile::whatClosesWhileAConnectionEndsClosesAfterwards()
{
    QFETCH(Meanwhile, meanwhile);
    QFETCH(int, registered);
    QFETCH(QList<int>, up);
    postMeanwhile(*fixture, meanwhile);
    QVERIFY(fixture->window().disconnectConnection(endingAddress()));
    QCOMPARE(int(fixture->window().liveConnections().size()), systems);

    QCoreApplication::processEvents();
    QCOMPARE(int(fixture->window().liveConnections().size()), registered);
    QCOMPARE(upSystems(*fixture), up);
    QCOMPARE(shownAddresses(*fixture), addressesOf(*fixture, up));
    QTRY_VERIFY(!fixture->controller(ending).isConnected());
}

void TestRegistryMeanwhile::whatClosesBeforeAReconnectionClosesAfterwards()
{
    QFETCH(Meanwhile, meanwhile);
    QFETCH(int, registered);
    QFETCH(QList<int>, up);
    // One that is not closed afterwards stays up, and is shown last.
    QStringList shown = addressesOf(*fixture, up);
    if (meanwhile == Meanwhile::CloseLowerIndex) {
        up.prepend(ending);
        shown.append(endingAddress());
    }
    fixture->window().showConnection(endingAddress(), false);
    postMeanwhile(*fixture, meanwhile);
    QString id;
    QVERIFY(fixture->window().reconnectConnection(endingAddress(), id));
    QVERIFY(!id.isEmpty());
    QCOMPARE(int(fixture->window().liveConnections().size()), systems);

    QCoreApplication::processEvents();
    QCOMPARE(int(fixture->window().liveConnections().size()), registered);
    QCOMPARE(upSystems(*fixture), up);
    QCOMPARE(shownAddresses(*fixture), shown);
}

void TestRegistryMeanwhile::whatClosesWhileAForeignDeviceIsDroppedClosesAfterwards()
{
    QFETCH(Meanwhile, meanwhile);
    QFETCH(int, registered);
    QFETCH(QList<int>, up);
    QVERIFY(fixture->window().disconnectConnection(endingAddress()));
    emulator::ControllerOptions foreign;
    foreign.maker = "Abc";
    fixture->controller(ending).setIdentity(foreign);
    postMeanwhile(*fixture, meanwhile);
    const LogCapture log;
    QString id;
    QVERIFY(!fixture->window().reconnectConnection(endingAddress(), id));

    QVERIFY(id.isEmpty());
    QCOMPARE(log.count("info: Reconnecting failed"), 1);
    QCOMPARE(int(fixture->window().liveConnections().size()), systems);

    QCoreApplication::processEvents();
    QCOMPARE(int(fixture->window().liveConnections().size()), registered);
    QCOMPARE(upSystems(*fixture), up);
    QCOMPARE(shownAddresses(*fixture), addressesOf(*fixture, up));
    QTRY_VERIFY(!fixture->controller(ending).isConnected());
}

QTEST_MAIN(TestRegistryMeanwhile)
#include "tst_registrymeanwhile.moc"
