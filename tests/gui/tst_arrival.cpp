// What is on the screen while the stored systems come up, before the window is there.

#include "noticereader.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QtTest>

class TestArrival final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void theSystemThatIsBeingConnectedIsNamed();
    void withoutStoredSystemsNothingIsSaid();
};

void TestArrival::theSystemThatIsBeingConnectedIsNamed()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1)}));
    const NoticeReader reader;
    QVERIFY(fixture.open());
    const auto notice = [&fixture](const char* label, int number) {
        return QStringLiteral("Connecting to %1 (%2) …")
            .arg(QLatin1String(label), fixture.controller(number).address());
    };
    QCOMPARE(reader.texts, QStringList({notice("System_1", 0), notice("System_2", 1)}));
    QVERIFY(!NoticeReader::isShown());
}

void TestArrival::withoutStoredSystemsNothingIsSaid()
{
    WindowFixture fixture;
    const NoticeReader reader;
    QVERIFY(fixture.open());
    QCOMPARE(reader.texts, QStringList());
}

QTEST_MAIN(TestArrival)
#include "tst_arrival.moc"
