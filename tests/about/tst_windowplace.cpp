#include "about/windowplace.h"

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
    QTest::addColumn<QRect>("area");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("a whole screen") << QRect(0, 0, 1280, 960) << QPoint(400, 350);
    QTest::newRow("odd rests are dropped") << QRect(0, 0, 1281, 961) << QPoint(400, 350);
    QTest::newRow("the corner is not added") << QRect(100, 30, 1280, 960) << QPoint(400, 350);
    QTest::newRow("a screen that is too small") << QRect(0, 0, 400, 200) << QPoint(-40, -30);
}

void TestWindowPlace::isHalfOfWhatTheWindowLeavesFree()
{
    QFETCH(QRect, area);
    QTEST(middlePlace(area, QSize(480, 260)), "place");
}

QTEST_APPLESS_MAIN(TestWindowPlace)
#include "tst_windowplace.moc"
