// What the GUI thread does while it waits for the end of a connection's thread.

#include "support/emulatedlink.h"

#include <QGuiApplication>
#include <QRasterWindow>
#include <QtTest>

namespace {

class ClickCounter final : public QRasterWindow
{
public:
    int clicks() const { return count; }

    /// Leaves a click in the queue, as a person does who clicks while the application is busy.
    void queueClick()
    {
        const QPointF middle(width() / 2.0, height() / 2.0);
        const QPointF onScreen = mapToGlobal(middle.toPoint());
        qt_handleMouseEvent(this, middle, onScreen, Qt::LeftButton, Qt::LeftButton,
                            QEvent::MouseButtonPress, Qt::NoModifier, ++clock);
        qt_handleMouseEvent(this, middle, onScreen, Qt::NoButton, Qt::LeftButton,
                            QEvent::MouseButtonRelease, Qt::NoModifier, ++clock);
    }

protected:
    void mouseReleaseEvent(QMouseEvent*) override { ++count; }

private:
    int count = 0;
    int clock = 0;
};

} // namespace

class TestThreadEnd : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void clicksAreLeftForLaterByADisconnect();
    void clicksAreLeftForLaterByADeletion();

private:
    std::unique_ptr<ClickCounter> window;
};

void TestThreadEnd::init()
{
    window = std::make_unique<ClickCounter>();
    window->resize(100, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestThreadEnd::clicksAreLeftForLaterByADisconnect()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    window->queueClick();
    QCOMPARE(link.client.disconnectController(), 1);
    QCOMPARE(window->clicks(), 0);
    QTRY_COMPARE(window->clicks(), 1);
}

void TestThreadEnd::clicksAreLeftForLaterByADeletion()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    window->queueClick();
    link.client.releaseInPlace();
    QCOMPARE(window->clicks(), 0);
    QTRY_COMPARE(window->clicks(), 1);
}

QTEST_MAIN(TestThreadEnd)
#include "tst_threadend.moc"
