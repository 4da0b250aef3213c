#include "controls/windowplace.h"

#include <QtTest>

class TestWindowPlace final : public QObject
{
    Q_OBJECT

private slots:
    void isHalfOfWhatTheWindowLeavesFree_data();
    void isHalfOfWhatTheWindowLeavesFree();
};

void TestWindowPlace::isHalfOfWhatTheWindowLeavesFree_data()
{
    QTest::addColumn<QSize>("area");
    QTest::addColumn<QSize>("window");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("smaller") << QSize(1280, 960) << QSize(480, 260) << QPoint(400, 350);
    QTest::newRow("odd rests are dropped")
        << QSize(1919, 1079) << QSize(1280, 960) << QPoint(319, 59);
    QTest::newRow("as large") << QSize(1023, 767) << QSize(1023, 767) << QPoint(0, 0);
    QTest::newRow("larger") << QSize(499, 399) << QSize(600, 450) << QPoint(-50, -25);
}

void TestWindowPlace::isHalfOfWhatTheWindowLeavesFree()
{
    QFETCH(QSize, area);
    QFETCH(QSize, window);
    QTEST(middlePlace(area, window), "place");
}

QTEST_APPLESS_MAIN(TestWindowPlace)
#include "tst_windowplace.moc"
