// The whole road for two systems of a group: "Apply positions" in the parameter dialog leads the
// beams of one onto those of the other, and the window shows where both are.

#include "link/commandframe.h"
#include "link/connection.h"
#include "params/paramsdialog.h"
#include "plots/genericplot.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QLabel>
#include <QLineF>
#include <QPushButton>
#include <QtTest>

namespace {

constexpr int firstIndex = 0;
constexpr int strangerIndex = 1;
constexpr int partnerIndex = 2;

/// A system whose beams stand still, in the group that it shares a common detector with.
emulator::ControllerOptions memberOfGroup(quint64 seed, bool vm)
{
    emulator::ControllerOptions options;
    options.preset = emulator::Preset::Still;
    options.group = 7;
    options.seed = seed;
    options.vm = vm;
    return options;
}

/// Opens the window with two systems of a group, and between them one that has no group.
bool openGroup(WindowFixture& fixture, bool vm)
{
    emulator::ControllerOptions first = memberOfGroup(11, vm);
    first.stages[0].offsetXUm = 4.0;
    first.stages[0].offsetYUm = -2.0;
    first.stages[1].offsetXUm = -6.0;
    fixture.addController(first);
    fixture.addController();
    fixture.addController(memberOfGroup(12, vm));
    if (!fixture.open())
        return false;
    for (int number = 0; number <= partnerIndex; ++number) {
        ConnectionSettings record = fixture.record(number);
        record.group = number == strangerIndex ? 0 : 3;
        if (!fixture.registerSystem(record, number))
            return false;
    }
    return true;
}

/// By stage, V.
using Places = std::array<QPointF, 2>;

Places placesIn(const QByteArray& reply, const std::array<int, 2>& offsets)
{
    constexpr double voltPerMillivolt = 0.001;
    Places places;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const char* bytes = reply.constData();
        places[i] = voltPerMillivolt
                    * QPointF(command::signedValueAt(bytes, offsets[i]),
                              command::signedValueAt(bytes, offsets[i] + 2));
    }
    return places;
}

/// The test ends here if the controller does not answer with `length` bytes.
QByteArray ask(Connection& connection, void (Connection::*question)(), int length)
{
    (connection.*question)();
    QByteArray reply;
    connection.fetchReply(reply);
    if (reply.size() != length)
        qFatal("A controller does not answer");
    return reply;
}

/// How much further a beam at rest is on the common detector than on its own one, V.
Places wayToCommonDetector(Connection& connection)
{
    const Places common = placesIn(ask(connection, &Connection::getCommonAdjustment, 11), {2, 6});
    const Places own =
        placesIn(ask(connection, &Connection::triggerOneShot, command::packetLength), {4, 10});
    return {common[0] - own[0], common[1] - own[1]};
}

/// How far the beams of the two systems are from each other on the common detector of a stage, V,
/// by what the pointing plot shows of both. Negative if it shows nothing.
double apart(const WindowFixture& fixture, Stage stage, const Places& wayOfFirst,
             const Places& wayOfPartner)
{
    const GenericPlot& plot = fixture.pointingPlot(numberOf(stage));
    const QVector<QPointF> first = pointsOf(plot, firstIndex);
    const QVector<QPointF> second = pointsOf(plot, partnerIndex);
    if (first.isEmpty() || second.isEmpty())
        return -1.0;
    return QLineF(first.last() + wayOfFirst[indexOf(stage)],
                  second.last() + wayOfPartner[indexOf(stage)])
        .length();
}

/// Opens the parameters of a system with the controls of its group, which nothing else shows.
ParamsDialog* openGroupControls(const WindowFixture& fixture, int index)
{
    auto* dialog = fixture.window().findChild<ParamsDialog*>();
    dialog->openFor(&fixture.connection(index));
    dialog->findChild<QWidget*>("frame_2")->show();
    auto* button = dialog->findChild<QPushButton*>("alignPushButton");
    const bool isReady = QTest::qWaitForWindowExposed(dialog)
                         && QTest::qWaitFor([button] { return button->isEnabled(); });
    return isReady ? dialog : nullptr;
}

} // namespace

class TestLoopGroup final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void appliedPositionsBringThePartnerOntoTheFirst_data();
    void appliedPositionsBringThePartnerOntoTheFirst();
};

void TestLoopGroup::appliedPositionsBringThePartnerOntoTheFirst_data()
{
    QTest::addColumn<bool>("vm");
    QTest::newRow("all packets are shown") << false;
    QTest::newRow("VM, every second packet is shown") << true;
}

void TestLoopGroup::appliedPositionsBringThePartnerOntoTheFirst()
{
    QFETCH(bool, vm);
    WindowFixture fixture;
    QVERIFY(openGroup(fixture, vm));
    const Places wayOfFirst = wayToCommonDetector(fixture.connection(firstIndex));
    const Places wayOfPartner = wayToCommonDetector(fixture.connection(partnerIndex));
    for (const Stage stage : bothStages)
        fixture.controller(partnerIndex).setStage(numberOf(stage), true);
    QVERIFY(fixture.clickAction("startAction"));
    const auto apartAt = [&](Stage stage) {
        return apart(fixture, stage, wayOfFirst, wayOfPartner);
    };
    constexpr double leastApartV = 0.5;
    std::array<double, 2> before{};
    for (const Stage stage : bothStages) {
        QTRY_VERIFY(apartAt(stage) > leastApartV);
        before[indexOf(stage)] = apartAt(stage);
    }

    ParamsDialog* dialog = openGroupControls(fixture, firstIndex);
    QVERIFY(dialog);
    QVERIFY(user::click(dialog->findChild<QWidget*>("alignPushButton")));
    constexpr double togetherV = 0.003;
    for (const Stage stage : bothStages) {
        QTRY_VERIFY2(apartAt(stage) >= 0.0 && apartAt(stage) <= togetherV,
                     qPrintable(QString("%1 V apart").arg(apartAt(stage))));
        qInfo("Stage %d: %.3f V apart before, %.3f V behind it", numberOf(stage),
              before[indexOf(stage)], apartAt(stage));
    }
    const emulator::ControllerHandle stranger = fixture.controller(strangerIndex);
    QCOMPARE(stranger.count("SMD") + stranger.count("SAI"), 0);

    // The partner's stream has told the window so, too.
    dialog = openGroupControls(fixture, partnerIndex);
    QVERIFY(dialog);
    QCOMPARE(dialog->findChild<QLabel*>("detectorLabel1")->text(), QString("Common"));
    QCOMPARE(dialog->findChild<QLabel*>("detectorLabel2")->text(), QString("Common"));
}

QTEST_MAIN(TestLoopGroup)
#include "tst_loopgroup.moc"
