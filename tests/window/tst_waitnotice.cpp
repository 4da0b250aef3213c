#include "window/waitnotice.h"

#include <QGuiApplication>
#include <QScreen>
#include <QtTest>

namespace {

class PaintWatch final : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

class TestWaitNotice final : public QObject
{
    Q_OBJECT

private slots:
    void hiddenUntilItHasSomethingToSay();
    void saysWhatIsAwaited_data();
    void saysWhatIsAwaited();
    void namesAreShownAsTheyAre();
    void standsInTheMiddleOfTheScreen();
    void standsInTheMiddleOfAWindowThatIsShown();
    void isPaintedAtOnce();
    void sameTextIsNotPaintedAgain();
};

void TestWaitNotice::hiddenUntilItHasSomethingToSay()
{
    const QWidget window;
    WaitNotice notice(window);
    QVERIFY(!notice.isVisible());
    notice.say(QStringLiteral("text"));
    QVERIFY(notice.isVisible());
    QCOMPARE(notice.text(), QStringLiteral("text"));
}

void TestWaitNotice::saysWhatIsAwaited_data()
{
    QTest::addColumn<int>("connecting");
    QTest::addColumn<QString>("text");
    QTest::newRow("connecting one") << 1 << QString::fromUtf8("Connecting to north (ttyUSB0) …");
    QTest::newRow("connecting several")
        << 5 << QString::fromUtf8("Connecting: 2 of 5 systems are up …");
    QTest::newRow("disconnecting") << 0 << "Disconnecting ...";
}

void TestWaitNotice::saysWhatIsAwaited()
{
    QFETCH(int, connecting);
    const QWidget window;
    WaitNotice notice(window);
    if (connecting > 0)
        notice.showConnecting(QStringLiteral("north"), QStringLiteral("ttyUSB0"), connecting / 2,
                              connecting);
    else
        notice.showDisconnecting();
    QTEST(notice.text(), "text");
    QVERIFY(notice.isVisible());
}

void TestWaitNotice::namesAreShownAsTheyAre()
{
    const QWidget window;
    WaitNotice notice(window);
    QCOMPARE(notice.textFormat(), Qt::PlainText);
    notice.showConnecting(QStringLiteral("<b>%2</b>"), QStringLiteral("ttyUSB0"), 0, 1);
    QCOMPARE(notice.text(), QString::fromUtf8("Connecting to <b>%2</b> (ttyUSB0) …"));
}

void TestWaitNotice::standsInTheMiddleOfTheScreen()
{
    const QWidget window;
    WaitNotice notice(window);
    notice.say(QString(60, QLatin1Char('w')));
    const QPoint middle = QGuiApplication::primaryScreen()->availableGeometry().center();
    const QPoint away = notice.geometry().center() - middle;
    QVERIFY2(qAbs(away.x()) <= 1 && qAbs(away.y()) <= 1,
             qPrintable(QStringLiteral("%1 %2").arg(away.x()).arg(away.y())));
}

void TestWaitNotice::standsInTheMiddleOfAWindowThatIsShown()
{
    QWidget window;
    window.setGeometry(50, 80, 300, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    WaitNotice notice(window);
    notice.showDisconnecting();
    const QPoint away = notice.geometry().center() - window.frameGeometry().center();
    QVERIFY2(qAbs(away.x()) <= 1 && qAbs(away.y()) <= 1,
             qPrintable(QStringLiteral("%1 %2").arg(away.x()).arg(away.y())));
}

/// Whoever says it blocks the window next.
void TestWaitNotice::isPaintedAtOnce()
{
    const QWidget window;
    WaitNotice notice(window);
    notice.say(QStringLiteral("first"));
    QVERIFY(QTest::qWaitForWindowExposed(&notice));
    PaintWatch watch;
    notice.installEventFilter(&watch);
    notice.say(QStringLiteral("second"));
    QVERIFY(watch.paints > 0);
}

/// A load says how many are up with every system that it begins.
void TestWaitNotice::sameTextIsNotPaintedAgain()
{
    const QWidget window;
    WaitNotice notice(window);
    notice.say(QStringLiteral("text"));
    QVERIFY(QTest::qWaitForWindowExposed(&notice));
    PaintWatch watch;
    notice.installEventFilter(&watch);
    notice.say(QStringLiteral("text"));
    QCOMPARE(watch.paints, 0);
    notice.hide();
    notice.say(QStringLiteral("text"));
    QVERIFY(notice.isVisible());
}

QTEST_MAIN(TestWaitNotice)
#include "tst_waitnotice.moc"
