#include "window/waitnotice.h"

#include <QGuiApplication>
#include <QScreen>
#include <QtTest>

class TestWaitNotice final : public QObject
{
    Q_OBJECT

private slots:
    void hiddenUntilItHasSomethingToSay();
    void saysWhatIsAwaited_data();
    void saysWhatIsAwaited();
    void namesAreShownAsTheyAre();
    void standsInTheMiddleOfTheScreen();
    void isPaintedAtOnce();
};

void TestWaitNotice::hiddenUntilItHasSomethingToSay()
{
    WaitNotice notice;
    QVERIFY(!notice.isVisible());
    notice.say(QStringLiteral("text"));
    QVERIFY(notice.isVisible());
    QCOMPARE(notice.text(), QStringLiteral("text"));
}

void TestWaitNotice::saysWhatIsAwaited_data()
{
    QTest::addColumn<bool>("connecting");
    QTest::addColumn<QString>("text");
    QTest::newRow("connecting") << true << QString::fromUtf8("Connecting to north (ttyUSB0) …");
    QTest::newRow("disconnecting") << false << "Disconnecting ...";
}

void TestWaitNotice::saysWhatIsAwaited()
{
    QFETCH(bool, connecting);
    WaitNotice notice;
    if (connecting)
        notice.showConnecting(QStringLiteral("north"), QStringLiteral("ttyUSB0"));
    else
        notice.showDisconnecting();
    QTEST(notice.text(), "text");
    QVERIFY(notice.isVisible());
}

void TestWaitNotice::namesAreShownAsTheyAre()
{
    WaitNotice notice;
    QCOMPARE(notice.textFormat(), Qt::PlainText);
    notice.showConnecting(QStringLiteral("<b>%2</b>"), QStringLiteral("ttyUSB0"));
    QCOMPARE(notice.text(), QString::fromUtf8("Connecting to <b>%2</b> (ttyUSB0) …"));
}

void TestWaitNotice::standsInTheMiddleOfTheScreen()
{
    WaitNotice notice;
    notice.say(QString(60, QLatin1Char('w')));
    const QPoint middle = QGuiApplication::primaryScreen()->availableGeometry().center();
    const QPoint away = notice.geometry().center() - middle;
    QVERIFY2(qAbs(away.x()) <= 1 && qAbs(away.y()) <= 1,
             qPrintable(QStringLiteral("%1 %2").arg(away.x()).arg(away.y())));
}

/// Whoever says it blocks the window next.
void TestWaitNotice::isPaintedAtOnce()
{
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
    WaitNotice notice;
    notice.say(QStringLiteral("first"));
    QVERIFY(QTest::qWaitForWindowExposed(&notice));
    PaintWatch watch;
    notice.installEventFilter(&watch);
    notice.say(QStringLiteral("second"));
    QVERIFY(watch.paints > 0);
}

QTEST_MAIN(TestWaitNotice)
#include "tst_waitnotice.moc"
