// What the GUI thread does while it waits for the end of a connection's thread.

#include "support/emulatedlink.h"

#include <QCursor>
#include <QGuiApplication>
#include <QRasterWindow>
#include <QtTest>

namespace {

/// A window that notes when the user's input reaches it.
class WatchedWindow final : public QRasterWindow
{
public:
    bool isReached() const { return reached; }

    /// Whether the input comes with the next events. There must be one that wakes the event loop.
    bool isReachedNext()
    {
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        QCoreApplication::processEvents();
        return reached;
    }

    /// Leaves a movement of the pointer in the queue, as a person does while the application is
    /// busy. The other ways of a test deliver input at once.
    void queueInput()
    {
        reached = false;
        QCursor::setPos(geometry().center() + QPoint(++step, 0));
    }

protected:
    void mouseMoveEvent(QMouseEvent*) override { reached = true; }

private:
    bool reached = false;
    int step = 0;
};

} // namespace

class TestThreadEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void inputReachesTheWindowWithTheNextEvents();
    void disconnectLeavesInputForLater();
    void deletionLeavesInputForLater();

private:
    std::unique_ptr<WatchedWindow> window;
};

void TestThreadEnd::initTestCase()
{
    window = std::make_unique<WatchedWindow>();
    window->setGeometry(100, 100, 100, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestThreadEnd::cleanupTestCase()
{
    window.reset();
}

void TestThreadEnd::inputReachesTheWindowWithTheNextEvents()
{
    window->queueInput();
    QVERIFY(!window->isReached());
    QVERIFY(window->isReachedNext());
}

void TestThreadEnd::disconnectLeavesInputForLater()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    window->queueInput();
    QCOMPARE(link.client.disconnectController(), 1);
    QVERIFY(!window->isReached());
    QVERIFY(window->isReachedNext());
}

void TestThreadEnd::deletionLeavesInputForLater()
{
    EmulatedLink link;
    QVERIFY(link.connect());
    window->queueInput();
    link.client.releaseInPlace();
    QVERIFY(!window->isReached());
    QVERIFY(window->isReachedNext());
}

QTEST_MAIN(TestThreadEnd)
#include "tst_threadend.moc"
