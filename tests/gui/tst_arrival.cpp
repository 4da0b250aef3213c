// What is on the screen while the stored systems come up, before the window is there.

#include "noticereader.h"
#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QtTest>

namespace {

QString upText(int up, int all)
{
    return QStringLiteral("Connecting: %1 of %2 systems are up …").arg(up).arg(all);
}

} // namespace

class TestArrival final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void theOnlySystemIsNamed();
    void ofSeveralSystemsItIsToldHowManyAreUp();
    void aSystemThatDoesNotComeUpIsNotCounted();
    void withoutStoredSystemsNothingIsSaid();
};

void TestArrival::theOnlySystemIsNamed()
{
    WindowFixture fixture(2);
    QList<ConnectionSettings> records{fixture.record(0), fixture.record(1)};
    records[1].autoConnect = false;
    QVERIFY(fixture.writeSetupFile(records));
    const NoticeReader reader;
    QVERIFY(fixture.open());
    QCOMPARE(
        reader.texts,
        QStringList(
            QStringLiteral("Connecting to System_1 (%1) …").arg(fixture.controller(0).address())));
    QVERIFY(reader.pointerWaited);
    QVERIFY(!NoticeReader::isShown());
}

void TestArrival::ofSeveralSystemsItIsToldHowManyAreUp()
{
    WindowFixture fixture(3);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1), fixture.record(2)}));
    const NoticeReader reader;
    QVERIFY(fixture.open());
    QCOMPARE(reader.texts, QStringList({upText(0, 3), upText(1, 3), upText(2, 3), upText(3, 3)}));
    QVERIFY(reader.pointerWaited);
    QVERIFY(!NoticeReader::isShown());
}

void TestArrival::aSystemThatDoesNotComeUpIsNotCounted()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1)}));
    fixture.controller(0).stopListening();
    const NoticeReader reader;
    QVERIFY(fixture.open());
    QCOMPARE(reader.texts, QStringList({upText(0, 2), upText(1, 2)}));
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
