// Buttons that must not be clicked while a controller is spoken to.

#include "controls/exchangebuttons.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>
#include <QtTest>

#include <atomic>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

struct Dialog
{
    Dialog()
    {
        auto* layout = new QVBoxLayout(&window);
        for (QWidget* widget : {static_cast<QWidget*>(ask), static_cast<QWidget*>(tell),
                                static_cast<QWidget*>(field)})
            layout->addWidget(widget);
        window.show();
        QApplication::setActiveWindow(&window);
        isActive = QTest::qWaitForWindowActive(&window);
    }

    QWidget window;
    QPushButton* ask = new QPushButton(&window);
    QPushButton* tell = new QPushButton(&window);
    QLineEdit* field = new QLineEdit(&window);
    ExchangeButtons buttons{window, {ask, tell}};
    bool isActive = false;
};

/// The state of a thread of this process as the kernel tells it: 'S' if it waits.
char stateOfThread(long id)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(id));
    if (!file.open(QIODevice::ReadOnly))
        return '?';
    const QByteArray text = file.readAll();
    return text.at(text.lastIndexOf(')') + 2);
}

/// Notes when a button is enabled.
class EnablingWatch final : public QObject
{
public:
    explicit EnablingWatch(QPushButton& watched)
        : button(watched)
    {
        clock.start();
        button.installEventFilter(this);
    }
    /// Since this was made; 0 if it never was.
    qint64 enabledMs() const { return atMs; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange && button.isEnabled())
            atMs = clock.elapsed();
        return QObject::eventFilter(object, event);
    }

private:
    QPushButton& button;
    QElapsedTimer clock;
    qint64 atMs = 0;
};

/// A click that the window system holds back for as long as nobody takes events. It comes from a
/// thread of its own, as with a real screen.
class HeldBackClick final
{
public:
    explicit HeldBackClick(QPushButton& button)
    {
        QWindow* window = button.window()->windowHandle();
        const QPointF place = button.mapTo(button.window(), button.rect().center());
        const QPointF onScreen = button.mapToGlobal(button.rect().center());
        thread = std::thread([=] {
            id = syscall(SYS_gettid);
            qt_handleMouseEvent(window, place, onScreen, Qt::LeftButton, Qt::LeftButton,
                                QEvent::MouseButtonPress, Qt::NoModifier, 1);
            qt_handleMouseEvent(window, place, onScreen, Qt::NoButton, Qt::LeftButton,
                                QEvent::MouseButtonRelease, Qt::NoModifier, 2);
            isDelivered = true;
        });
        // It waits for the delivery as soon as the event is in the queue.
        while (id == 0 || stateOfThread(id) != 'S')
            QThread::msleep(1);
    }
    ~HeldBackClick()
    {
        while (!isDelivered)
            QCoreApplication::processEvents();
        thread.join();
    }
    HeldBackClick(const HeldBackClick&) = delete;
    HeldBackClick& operator=(const HeldBackClick&) = delete;

private:
    std::atomic<long> id{0};
    std::atomic<bool> isDelivered{false};
    std::thread thread;
};

} // namespace

class TestExchangeButtons : public QObject
{
    Q_OBJECT

private slots:
    void lockedButtonsComeBackByThemselves();
    void clicksMadeDuringAnExchangeAreLost();
    void secondExchangeBeginsTheSettlingAnew();
    void buttonThatIsNotAllowedStaysDisabled();
    void permissionDuringAnExchangeCountsBehindIt();
    void permissionActsAtOnceWithoutAnExchange();
    void buttonThatWasDisabledAtFirstIsNotAllowed();
    void buttonOfADisabledDialogIsAllowed();
    void focusComesBack();
    void focusComesBackFromAnExchangeInTwoParts();
    void keysMeantForALockedButtonPressNoOther();
    void focusOfAFieldStays();
    void focusDoesNotComeBackToADisabledButton();
    void focusThatTheUserMovedStays();
};

void TestExchangeButtons::lockedButtonsComeBackByThemselves()
{
    Dialog dialog;
    dialog.buttons.lock();
    QVERIFY(!dialog.ask->isEnabled());
    QVERIFY(!dialog.tell->isEnabled());
    QTRY_VERIFY(dialog.ask->isEnabled());
    QVERIFY(dialog.tell->isEnabled());
}

void TestExchangeButtons::clicksMadeDuringAnExchangeAreLost()
{
    Dialog dialog;
    const QSignalSpy clicks(dialog.tell, &QPushButton::clicked);
    {
        dialog.buttons.lock();
        const HeldBackClick during(*dialog.tell);
        QTRY_VERIFY(dialog.tell->isEnabled());
    }
    QCOMPARE(clicks.count(), 0);
    {
        const HeldBackClick behind(*dialog.tell);
        QTRY_COMPARE(clicks.count(), 1);
    }
}

void TestExchangeButtons::secondExchangeBeginsTheSettlingAnew()
{
    Dialog dialog;
    dialog.buttons.lock();
    constexpr int halfOfTheSettlingMs = 10;
    QTest::qWait(halfOfTheSettlingMs);
    dialog.buttons.lock();
    const EnablingWatch watch(*dialog.tell);
    QTRY_VERIFY(dialog.tell->isEnabled());
    // Timers may be late, but not early.
    constexpr qint64 leastMs = 18;
    QVERIFY(watch.enabledMs() >= leastMs);
}

void TestExchangeButtons::buttonThatIsNotAllowedStaysDisabled()
{
    Dialog dialog;
    dialog.buttons.allow(*dialog.tell, false);
    dialog.buttons.lock();
    QTRY_VERIFY(dialog.ask->isEnabled());
    QVERIFY(!dialog.tell->isEnabled());
}

void TestExchangeButtons::permissionDuringAnExchangeCountsBehindIt()
{
    Dialog dialog;
    dialog.buttons.allow(*dialog.tell, false);
    dialog.buttons.lock();
    dialog.buttons.allow(*dialog.tell, true);
    dialog.buttons.allow(*dialog.ask, false);
    QVERIFY(!dialog.tell->isEnabled());
    QTRY_VERIFY(dialog.tell->isEnabled());
    QVERIFY(!dialog.ask->isEnabled());
}

void TestExchangeButtons::permissionActsAtOnceWithoutAnExchange()
{
    Dialog dialog;
    dialog.buttons.allow(*dialog.tell, false);
    QVERIFY(!dialog.tell->isEnabled());
    QVERIFY(dialog.ask->isEnabled());
    dialog.buttons.allow(*dialog.tell, true);
    QVERIFY(dialog.tell->isEnabled());
}

void TestExchangeButtons::buttonThatWasDisabledAtFirstIsNotAllowed()
{
    QWidget window;
    QPushButton disabled(&window);
    QPushButton enabled(&window);
    disabled.setEnabled(false);
    ExchangeButtons buttons(window, {&disabled, &enabled});
    buttons.lock();
    QTRY_VERIFY(enabled.isEnabled());
    QVERIFY(!disabled.isEnabled());
}

void TestExchangeButtons::buttonOfADisabledDialogIsAllowed()
{
    QWidget window;
    window.setEnabled(false);
    QPushButton button(&window);
    ExchangeButtons buttons(window, {&button});
    buttons.lock();
    window.setEnabled(true);
    QVERIFY(!button.isEnabled());
    QTRY_VERIFY(button.isEnabled());
}

void TestExchangeButtons::focusComesBack()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    dialog.tell->setFocus();
    dialog.buttons.lock();
    QVERIFY(!dialog.tell->hasFocus());
    QTRY_VERIFY(dialog.tell->hasFocus());
}

void TestExchangeButtons::focusComesBackFromAnExchangeInTwoParts()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    dialog.ask->setFocus();
    dialog.buttons.lock();
    dialog.buttons.lock();
    QTRY_VERIFY(dialog.ask->hasFocus());
}

void TestExchangeButtons::keysMeantForALockedButtonPressNoOther()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    QPushButton close(&dialog.window);
    close.show();
    const QSignalSpy closed(&close, &QPushButton::clicked);
    const QSignalSpy asked(dialog.ask, &QPushButton::clicked);
    dialog.ask->setFocus();
    dialog.buttons.lock();
    QTest::keyClick(dialog.window.windowHandle(), Qt::Key_Space);
    QTRY_VERIFY(dialog.ask->isEnabled());
    QCOMPARE(closed.count(), 0);
    QCOMPARE(asked.count(), 0);
}

void TestExchangeButtons::focusOfAFieldStays()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    dialog.field->setFocus();
    dialog.buttons.lock();
    QVERIFY(dialog.field->hasFocus());
    QTRY_VERIFY(dialog.ask->isEnabled());
    QVERIFY(dialog.field->hasFocus());
}

void TestExchangeButtons::focusDoesNotComeBackToADisabledButton()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    dialog.tell->setFocus();
    dialog.buttons.lock();
    dialog.buttons.allow(*dialog.tell, false);
    QTRY_VERIFY(dialog.ask->isEnabled());
    QVERIFY(!dialog.tell->hasFocus());
    QVERIFY(dialog.window.focusWidget() != dialog.tell);
}

void TestExchangeButtons::focusThatTheUserMovedStays()
{
    Dialog dialog;
    QVERIFY(dialog.isActive);
    dialog.ask->setFocus();
    dialog.buttons.lock();
    dialog.field->setFocus();
    QTRY_VERIFY(dialog.ask->isEnabled());
    QVERIFY(dialog.field->hasFocus());
}

QTEST_MAIN(TestExchangeButtons)
#include "tst_exchangebuttons.moc"
