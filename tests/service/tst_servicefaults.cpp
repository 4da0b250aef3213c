// Every button of the service dialog that sends one command, at a controller that refuses it,
// ignores it or answers it short. Built for a quiet link, and for one that streams.

#include "servicebench.h"
#include "testedbuttons.h"

#include <QtTest>

#include <memory>

using emulator::on;
using emulator::RuleDraft;

namespace {

constexpr bool isStreaming = FAULTS_DURING_STREAM;

/// For the next command of the button. A stream is stopped before it by the same command that one
/// of the buttons sends.
RuleDraft onCommandOf(const TestedButton& button)
{
    const bool comesSecond = isStreaming && button.command == "CLS;";
    return on(button.command.left(button.command.size() - 1)).after(comesSecond ? 1 : 0).once();
}

/// What is read of a button when its reply is cut to this many bytes.
QString resultOfCut(const TestedButton& button, int bytes)
{
    constexpr int bareReply = 2;
    return bytes == bareReply ? button.bareSuccess : button.failure;
}

QVector<int> cutsOf(const TestedButton& button)
{
    return button.wantsMore() ? QVector<int>{1, 2, 3} : QVector<int>{1};
}

} // namespace

class TestServiceFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { bench.reset(); }
    void failureIsTold_data() { addTestedButtons(); }
    void failureIsTold();

private:
    bool isAsBefore() const { return isStreaming ? bench->streams() : bench->isQuiet(); }

    /// Opened once for all rows: opening takes longer than most faults.
    std::unique_ptr<ServiceBench> bench;
};

void TestServiceFaults::initTestCase()
{
    bench = std::make_unique<ServiceBench>(steadyController());
    QVERIFY(isStreaming ? bench->openStreaming() : bench->open());
}

void TestServiceFaults::failureIsTold()
{
    QFETCH(TestedButton, button);
    const QByteArrayList expected =
        isStreaming
            ? QByteArrayList{"CLS;", button.command, streamStart(ServiceBench::streamRateHz)}
            : QByteArrayList{button.command};

    QVERIFY(bench->clickUnder({onCommandOf(button).refuse()}, button.name));
    QCOMPARE(bench->results(), button.failure);
    QCOMPARE(bench->commands(), expected);
    QVERIFY(isAsBefore());

    QVERIFY(bench->clickUnder({onCommandOf(button).ignore()}, button.name));
    QCOMPARE(bench->results(), button.failure);
    QCOMPARE(bench->commands(), expected);
    QVERIFY(isAsBefore());

    for (const int length : cutsOf(button)) {
        QVERIFY(bench->clickUnder({onCommandOf(button).cutTo(length)}, button.name));
        QCOMPARE(bench->results(), resultOfCut(button, length));
        QCOMPARE(bench->commands(), expected);
        QVERIFY(isAsBefore());
    }
}

QTEST_MAIN(TestServiceFaults)
#include "tst_servicefaults.moc"
