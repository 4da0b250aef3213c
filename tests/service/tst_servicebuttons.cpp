// Every button of the service dialog that sends one command, at a controller that obeys.

#include "servicebench.h"
#include "testedbuttons.h"

#include <QtTest>

#include <memory>

class TestServiceButtons : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void commandGoesOutAndItsSuccessIsTold_data();
    void commandGoesOutAndItsSuccessIsTold();
    void streamIsStoppedForTheCommandAndStartsAgain_data();
    void streamIsStoppedForTheCommandAndStartsAgain();

private:
    static constexpr int timeoutMs = 120;

    /// Opened once for all rows: opening takes longer than a test.
    std::unique_ptr<ServiceBench> quiet;
    std::unique_ptr<ServiceBench> streaming;
};

void TestServiceButtons::initTestCase()
{
    quiet = std::make_unique<ServiceBench>(steadyController());
    QVERIFY(quiet->open());
    streaming = std::make_unique<ServiceBench>(steadyController());
    QVERIFY(streaming->openStreaming());
    // Trigger freeze and a stop without a stream take whole time-outs.
    for (ServiceBench* bench : {quiet.get(), streaming.get()})
        bench->link.client.setTimeoutMs(timeoutMs);
}

void TestServiceButtons::cleanupTestCase()
{
    quiet.reset();
    streaming.reset();
}

void TestServiceButtons::commandGoesOutAndItsSuccessIsTold_data()
{
    addTestedButtons();
}

void TestServiceButtons::commandGoesOutAndItsSuccessIsTold()
{
    QFETCH(TestedButton, button);
    ServiceBench& bench = *quiet;
    QVERIFY(bench.click(button.name));
    QCOMPARE(bench.results(), button.success.join('\n'));
    QCOMPARE(bench.commands(), QByteArrayList{button.command});
    QVERIFY(bench.isQuiet());
}

void TestServiceButtons::streamIsStoppedForTheCommandAndStartsAgain_data()
{
    addTestedButtons();
}

void TestServiceButtons::streamIsStoppedForTheCommandAndStartsAgain()
{
    QFETCH(TestedButton, button);
    ServiceBench& bench = *streaming;
    QVERIFY(bench.click(button.name));
    QCOMPARE(bench.results(), button.success.join('\n'));
    QCOMPARE(bench.commands(),
             QByteArrayList({"CLS;", button.command, streamStart(ServiceBench::streamRateHz)}));
    QVERIFY(bench.streams());
}

QTEST_MAIN(TestServiceButtons)
#include "tst_servicebuttons.moc"
