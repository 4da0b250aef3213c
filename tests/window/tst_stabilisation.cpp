// Switching stages and reading their status. The controllers are scripts in memory.

#include "monitorbench.h"
#include "window/stabilisation.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

using Link = SystemsBench::Link;
using Mnemonics = QList<QByteArray>;

const QByteArray refusal("\x01;", 2);
/// Of the length of a status reply, but no reply to an accepted command.
const QByteArray noStatus("\x01;\0;", 4);
constexpr uchar failed = 0x80;
constexpr int oldFirmware = 10;

} // namespace

class TestStabilisation final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<Bench>(); }
    void cleanup() { bench.reset(); }

    void clickSwitchesTheStageOfItsButton_data();
    void clickSwitchesTheStageOfItsButton();
    void switchOffTurnsTheLightOffAtOnce();
    void clickedButtonKeepsTheKeyboard();
    void streamIsStoppedForASwitchAndGoesOnAtItsRate();
    void refusedSwitchIsRepeatedOnceAndLeavesTheLook();
    void oldFirmwareIsAskedForItsStatusAfterASwitch();
    void withoutASystemAClickDoesNothing();
    void switchStageReachesOnlyTheMeantSystem();
    void switchStageTouchesNoWidget();
    void systemThatIsDownIsNotSwitched();
    void statusIsShown();
    void fourthFailureInARowIsTold();
    void statusWithBit7FailsButBeginsANewCount();
    void goodReadForgetsTheFailures();
    void failuresCanBeForgotten();
    void lightsOfAGivenStatusNeedNoExchange();
    void lightsOfAGivenStatusAreShownInSpiteOfBit7();
    void lightsOfAFailedStatusAreRead();

private:
    struct Bench : MonitorBench
    {
        Stabilisation stabilisation{systems, stages, toolBar};
    };

    Stabilisation& stabilisation() const { return bench->stabilisation; }
    void click(std::size_t stageIndex) const
    {
        bench->forms[stageIndex].stabilisation.click();
        stabilisation().switchAsClicked(bench->stages[stageIndex]);
    }

    std::unique_ptr<Bench> bench;
};

void TestStabilisation::clickSwitchesTheStageOfItsButton_data()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
}

void TestStabilisation::clickSwitchesTheStageOfItsButton()
{
    QFETCH(int, stage);
    const auto index = std::size_t(stage - 1);
    ScriptedConnection& connection = bench->add(Link::Running);
    click(index);
    QCOMPARE(connection.controller().messages(),
             QList<QByteArray>{QByteArray("SEA").append(char(stage)).append(';')});
    QCOMPARE(bench->forms[index].stabilisation.text(), QStringLiteral("ON"));
    QCOMPARE(bench->forms[1 - index].stabilisation.text(), QStringLiteral("OFF"));
    QVERIFY(bench->forms[index].stabilisation.isEnabled());
    QCOMPARE(bench->systems.at(0).status.stabilised1, stage == 1);
    QCOMPARE(bench->systems.at(0).status.stabilised2, stage == 2);

    click(index);
    QCOMPARE(connection.controller().messages().last(),
             QByteArray("CEA").append(char(stage)).append(';'));
    QCOMPARE(bench->forms[index].stabilisation.text(), QStringLiteral("OFF"));
}

void TestStabilisation::switchOffTurnsTheLightOffAtOnce()
{
    bench->add(Link::Running);
    bench->systems.at(0).status.active1 = true;
    bench->stages[0].stabilisation().showState(true, true);
    click(0);
    QCOMPARE(bench->forms[0].activeText.text(), QStringLiteral("Inactive"));
    QVERIFY(!bench->systems.at(0).status.active1);
}

void TestStabilisation::clickedButtonKeepsTheKeyboard()
{
    bench->add(Link::Running);
    QPushButton& button = bench->forms[0].stabilisation;
    button.show();
    QApplication::setActiveWindow(&button);
    button.setFocus();
    QTRY_VERIFY(button.hasFocus());
    click(0);
    QVERIFY(button.hasFocus());
}

void TestStabilisation::streamIsStoppedForASwitchAndGoesOnAtItsRate()
{
    ScriptedConnection& connection = bench->addStreaming();
    bench->samplingRate().setValue(50);
    const QSignalSpy streamFailed(&stabilisation(), &Stabilisation::streamFailed);
    click(0);
    QCOMPARE(connection.controller().messages(),
             QList<QByteArray>(
                 {"CLS;", QByteArray("SEA\x01;", 5), QByteArray("SLS\x00\x00\x00\x64;", 8)}));
    QVERIFY(connection.isStreaming());
    QCOMPARE(streamFailed.count(), 0);
}

void TestStabilisation::refusedSwitchIsRepeatedOnceAndLeavesTheLook()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("SEA", refusal);
    click(0);
    QCOMPARE(connection.controller().mnemonics(), Mnemonics({"SEA", "SEA"}));
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
    QVERIFY(bench->forms[0].stabilisation.isChecked());
    QVERIFY(!bench->systems.at(0).status.stabilised1);
    QVERIFY(bench->forms[0].stabilisation.isEnabled());
}

void TestStabilisation::oldFirmwareIsAskedForItsStatusAfterASwitch()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.setFirmwareVersion(oldFirmware);
    connection.controller().answer("GSF", replies::status(0x28));
    click(0);
    QCOMPARE(connection.controller().mnemonics(), Mnemonics({"SEA", "GSF"}));
    QVERIFY(bench->systems.at(0).status.stabilised1);
    QVERIFY(bench->systems.at(0).status.active1);
}

void TestStabilisation::withoutASystemAClickDoesNothing()
{
    click(0);
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
    QVERIFY(!stabilisation().readAndShow());
}

void TestStabilisation::switchStageReachesOnlyTheMeantSystem()
{
    ScriptedConnection& first = bench->add(Link::Running);
    ScriptedConnection& second = bench->add(Link::Running);
    stabilisation().switchStage(&second, Stage::Two, false);
    QCOMPARE(second.controller().messages(), QList<QByteArray>{QByteArray("CEA\x02;", 5)});
    QCOMPARE(first.controller().messages(), QList<QByteArray>());
}

void TestStabilisation::switchStageTouchesNoWidget()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("SEA", refusal);
    stabilisation().switchStage(&connection, Stage::One, true);
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"SEA"});
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
    QVERIFY(!bench->forms[0].stabilisation.isChecked());
}

void TestStabilisation::systemThatIsDownIsNotSwitched()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.disconnectController();
    stabilisation().switchStage(&connection, Stage::One, true);
    stabilisation().switchStage(nullptr, Stage::One, true);
    QCOMPARE(connection.controller().messages(), QList<QByteArray>());
}

void TestStabilisation::statusIsShown()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", replies::status(0x48));
    QVERIFY(stabilisation().readAndShow());
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("ON"));
    QCOMPARE(bench->forms[1].stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(bench->forms[0].activeText.text(), QStringLiteral("Inactive"));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
    QCOMPARE(connection.controller().mnemonics(), Mnemonics{"GSF"});
}

void TestStabilisation::fourthFailureInARowIsTold()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", noStatus);
    const QSignalSpy linkFailed(&stabilisation(), &Stabilisation::linkFailed);
    for (int i = 0; i < 3; ++i)
        QVERIFY(!stabilisation().readAndShow());
    QCOMPARE(linkFailed.count(), 0);
    QVERIFY(!stabilisation().readAndShow());
    QCOMPARE(linkFailed.count(), 1);
}

void TestStabilisation::statusWithBit7FailsButBeginsANewCount()
{
    // The reply is whole, so the line works: such failures alone never add up to four.
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", replies::status(0x88));
    const QSignalSpy linkFailed(&stabilisation(), &Stabilisation::linkFailed);
    for (int i = 0; i < 5; ++i)
        QVERIFY(!stabilisation().readAndShow());
    QCOMPARE(linkFailed.count(), 0);
    QCOMPARE(bench->forms[0].stabilisation.text(), QStringLiteral("OFF"));
}

void TestStabilisation::goodReadForgetsTheFailures()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    const QSignalSpy linkFailed(&stabilisation(), &Stabilisation::linkFailed);
    connection.controller().answer("GSF", noStatus);
    for (int i = 0; i < 3; ++i)
        QVERIFY(!stabilisation().readAndShow());
    connection.controller().answer("GSF", replies::status(0));
    QVERIFY(stabilisation().readAndShow());
    connection.controller().answer("GSF", noStatus);
    for (int i = 0; i < 3; ++i)
        QVERIFY(!stabilisation().readAndShow());
    QCOMPARE(linkFailed.count(), 0);
    QVERIFY(!stabilisation().readAndShow());
    QCOMPARE(linkFailed.count(), 1);
}

void TestStabilisation::failuresCanBeForgotten()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", noStatus);
    const QSignalSpy linkFailed(&stabilisation(), &Stabilisation::linkFailed);
    for (int i = 0; i < 3; ++i)
        stabilisation().readAndShow();
    stabilisation().forgetFailures();
    for (int i = 0; i < 3; ++i)
        stabilisation().readAndShow();
    QCOMPARE(linkFailed.count(), 0);
}

void TestStabilisation::lightsOfAGivenStatusNeedNoExchange()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    QVERIFY(stabilisation().showActive(0x20));
    QCOMPARE(bench->forms[0].activeText.text(), QStringLiteral("Active"));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Inactive"));
    QCOMPARE(connection.controller().messages(), QList<QByteArray>());
}

void TestStabilisation::lightsOfAGivenStatusAreShownInSpiteOfBit7()
{
    QVERIFY(stabilisation().showActive(0xC0));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
}

void TestStabilisation::lightsOfAFailedStatusAreRead()
{
    ScriptedConnection& connection = bench->add(Link::Running);
    connection.controller().answer("GSF", replies::status(0x40));
    QVERIFY(stabilisation().showActive(failed));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
    connection.controller().answer("GSF", noStatus);
    QVERIFY(!stabilisation().showActive(failed));
    QCOMPARE(bench->forms[1].activeText.text(), QStringLiteral("Active"));
}

QTEST_MAIN(TestStabilisation)
#include "tst_stabilisation.moc"
