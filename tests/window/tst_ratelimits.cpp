#include "window/ratelimits.h"

#include <QtTest>

namespace {

QString shown(const RateField& field)
{
    return QStringLiteral("%1 of %2 %3")
        .arg(field.valueHz)
        .arg(field.maximumHz)
        .arg(field.enabled ? "enabled" : "disabled");
}

} // namespace

class TestRateLimits final : public QObject
{
    Q_OBJECT

private slots:
    void aSlowLineLimitsTheRate_data();
    void aSlowLineLimitsTheRate();
    void whatTheFieldShowsNext_data();
    void whatTheFieldShowsNext();
    void theUsersRateComesBackBehindTheLock_data();
    void theUsersRateComesBackBehindTheLock();
    void theLockedRateIsNeverTakenForTheUsers();
    void aMaximumThatChangedMeanwhileComesBack();
    void eachLockKeepsTheRateOfItsBeginning();
    void onlyTheLockIsALock();
};

void TestRateLimits::aSlowLineLimitsTheRate_data()
{
    QTest::addColumn<bool>("anySlowLine");
    QTest::addColumn<int>("maximumHz");
    QTest::newRow("slow") << true << 430;
    QTest::newRow("fast") << false << 500;
}

void TestRateLimits::aSlowLineLimitsTheRate()
{
    QFETCH(bool, anySlowLine);
    QTEST(RateLimits::maximumHz(anySlowLine), "maximumHz");
}

void TestRateLimits::whatTheFieldShowsNext_data()
{
    QTest::addColumn<bool>("slowLine");
    QTest::addColumn<bool>("allPulsed");
    QTest::addColumn<bool>("running");
    QTest::addColumn<QString>("field");

    QTest::newRow("fast, idle") << false << false << false << "120 of 500 enabled";
    QTest::newRow("fast, running") << false << false << true << "120 of 500 disabled";
    QTest::newRow("slow, idle") << true << false << false << "120 of 430 enabled";
    QTest::newRow("slow, running") << true << false << true << "120 of 430 disabled";
    QTest::newRow("fast, pulsed, idle") << false << true << false << "1000 of 1000 disabled";
    QTest::newRow("fast, pulsed, running") << false << true << true << "1000 of 1000 disabled";
    QTest::newRow("slow, pulsed, idle") << true << true << false << "1000 of 1000 disabled";
    QTest::newRow("slow, pulsed, running") << true << true << true << "1000 of 1000 disabled";
}

void TestRateLimits::whatTheFieldShowsNext()
{
    QFETCH(bool, slowLine);
    QFETCH(bool, allPulsed);
    QFETCH(bool, running);
    RateLimits rates;
    const RateField present{RateLimits::maximumHz(slowLine), 120, true};
    QTEST(shown(rates.next(present, allPulsed, running)), "field");
}

void TestRateLimits::theUsersRateComesBackBehindTheLock_data()
{
    QTest::addColumn<bool>("running");
    QTest::addColumn<QString>("field");
    QTest::newRow("idle") << false << "120 of 430 enabled";
    QTest::newRow("running") << true << "120 of 430 disabled";
}

void TestRateLimits::theUsersRateComesBackBehindTheLock()
{
    QFETCH(bool, running);
    RateLimits rates;
    const RateField locked = rates.next({430, 120, true}, true, running);
    QTEST(shown(rates.next(locked, false, running)), "field");
}

void TestRateLimits::theLockedRateIsNeverTakenForTheUsers()
{
    RateLimits rates;
    RateField field{500, 120, true};
    for (int tick = 0; tick < 3; ++tick)
        field = rates.next(field, true, false);
    QCOMPARE(shown(rates.next(field, false, false)), QString("120 of 500 enabled"));
}

void TestRateLimits::aMaximumThatChangedMeanwhileComesBack()
{
    RateLimits rates;
    const RateField locked = rates.next({500, 120, true}, true, false);
    rates.keepMaximum(430);
    QCOMPARE(shown(rates.next(locked, false, false)), QString("120 of 430 enabled"));
}

void TestRateLimits::eachLockKeepsTheRateOfItsBeginning()
{
    RateLimits rates;
    rates.next(rates.next({500, 120, true}, true, false), false, false);
    const RateField locked = rates.next({430, 77, true}, true, false);
    QCOMPARE(shown(rates.next(locked, false, false)), QString("77 of 430 enabled"));
}

void TestRateLimits::onlyTheLockIsALock()
{
    RateLimits rates;
    QVERIFY(!rates.isLocked());
    rates.next({500, 120, true}, false, true);
    QVERIFY(!rates.isLocked());
    rates.next({500, 120, true}, true, false);
    QVERIFY(rates.isLocked());
    rates.next({1000, 1000, false}, false, false);
    QVERIFY(!rates.isLocked());
}

QTEST_GUILESS_MAIN(TestRateLimits)
#include "tst_ratelimits.moc"
