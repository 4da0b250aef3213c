#include "plots/counter.h"
#include "support/wheel.h"
#include "support/widgetcheck.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

namespace {

/// A partnered counter with its partner in one active window, as in the tool bar.
class TwoCounters final
{
public:
    TwoCounters()
    {
        window.resize(300, 120);
        partner.move(0, 0);
        counter.move(0, 60);
        window.show();
        QApplication::setActiveWindow(&window);
        active = QTest::qWaitForWindowActive(&window);
        partner.spinBox->setValue(100);
    }

    void type(int value)
    {
        counter.spinBox->setFocus();
        counter.spinBox->selectAll();
        QTest::keyClicks(counter.spinBox, QString::number(value));
    }

    int shown() const { return counter.spinBox->value(); }

    QWidget window;
    Counter partner{&window, QString(), QString(), 1, 500, 1, nullptr};
    Counter counter{&window, QString(), QString(), 1, 500, 1, &partner};
    bool active = false;
};

QStringList labelTexts(const Counter& counter)
{
    QStringList texts;
    const auto labels = counter.findChildren<QLabel*>();
    for (const QLabel* label : labels)
        texts.append(label->text());
    return texts;
}

} // namespace

class TestCounter final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void fieldHoldsRangeStepAndSeparator();
    void labelsStandAroundTheNumber();
    void emptyTextsMakeNoLabels();
    void labelLeadsToTheNumber();
    void changeIsPassedOn();
    void wheelCountsOnlyWithFocus();

    void numberIsHeldAtThePartners();
    void typedNumberIsTheWish();
    void numberFromTheProgramIsNoWish();
    void wishReturnsWhenThePartnerRises();
    void wishAboveThePartnerReturnsToo();
    void partnerDoesNotChangeTheWishOfAFocusedCounter();
    void numberFollowsAPartnerBelowTheWish();
    void counterOutlivesItsPartner();
};

void TestCounter::fieldHoldsRangeStepAndSeparator()
{
    const Counter counter(nullptr, "Samples to take", QString(), 1, 10000000, 1000, nullptr);
    QCOMPARE(counter.minimum, 1);
    QVERIFY(!counter.partner);
    QCOMPARE(counter.spinBox->minimum(), 1);
    QCOMPARE(counter.spinBox->maximum(), 10000000);
    QCOMPARE(counter.spinBox->singleStep(), 1000);
    QVERIFY(counter.spinBox->isGroupSeparatorShown());
    QVERIFY(counter.spinBox->alignment().testFlag(Qt::AlignRight));
}

void TestCounter::labelsStandAroundTheNumber()
{
    Counter counter(nullptr, "Update rate", "[Hz]", 1, 430, 1, nullptr);
    counter.show();
    QCOMPARE(labelTexts(counter), QStringList({"Update rate ", " [Hz]"}));
    const auto labels = counter.findChildren<QLabel*>();
    QVERIFY(labels[0]->x() < counter.spinBox->x());
    QVERIFY(labels[1]->x() > counter.spinBox->x());
}

void TestCounter::emptyTextsMakeNoLabels()
{
    const Counter counter(nullptr, QString(), QString(), 1, 430, 1, nullptr);
    QCOMPARE(labelTexts(counter), QStringList());
}

void TestCounter::labelLeadsToTheNumber()
{
    const Counter counter(nullptr, "Update rate [Hz]", QString(), 1, 430, 1, nullptr);
    QCOMPARE(counter.findChild<QLabel*>()->buddy(), counter.spinBox);
    QCOMPARE(counter.spinBox->accessibleName(), QStringLiteral("Update rate [Hz]"));
    QCOMPARE(counter.focusProxy(), counter.spinBox);
}

void TestCounter::changeIsPassedOn()
{
    Counter counter(nullptr, QString(), QString(), 1, 430, 1, nullptr);
    QSignalSpy changed(&counter, &Counter::valueChanged);
    counter.spinBox->setValue(100);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toInt(), 100);
}

void TestCounter::wheelCountsOnlyWithFocus()
{
    TwoCounters two;
    QVERIFY(two.active);
    // By the wheel alone the box does not get the focus.
    QCOMPARE(two.counter.spinBox->focusPolicy(), Qt::StrongFocus);
    two.counter.spinBox->setValue(50);
    two.partner.spinBox->setFocus();
    turnWheel(*two.counter.spinBox);
    QCOMPARE(two.shown(), 50);

    two.counter.spinBox->setFocus();
    turnWheel(*two.counter.spinBox);
    QCOMPARE(two.shown(), 51);
}

void TestCounter::numberIsHeldAtThePartners()
{
    TwoCounters two;
    two.counter.spinBox->setValue(101);
    QCOMPARE(two.shown(), 100);
    two.counter.spinBox->setValue(100);
    QCOMPARE(two.shown(), 100);
    two.counter.spinBox->setValue(99);
    QCOMPARE(two.shown(), 99);
}

void TestCounter::typedNumberIsTheWish()
{
    TwoCounters two;
    QVERIFY(two.active);
    two.type(80);
    QCOMPARE(two.shown(), 80);
    QCOMPARE(two.counter.wishedValue, 80);
}

void TestCounter::numberFromTheProgramIsNoWish()
{
    TwoCounters two;
    QVERIFY(two.active);
    two.type(80);
    two.partner.spinBox->setFocus();
    two.counter.spinBox->setValue(60);
    QCOMPARE(two.counter.wishedValue, 80);
}

void TestCounter::wishReturnsWhenThePartnerRises()
{
    TwoCounters two;
    QVERIFY(two.active);
    two.type(80);

    two.partner.spinBox->setFocus();
    two.partner.spinBox->setValue(50);
    QCOMPARE(two.shown(), 50);
    two.partner.spinBox->setValue(200);
    QCOMPARE(two.shown(), 80);
}

void TestCounter::wishAboveThePartnerReturnsToo()
{
    TwoCounters two;
    QVERIFY(two.active);
    two.type(120);
    QCOMPARE(two.shown(), 100);
    QCOMPARE(two.counter.wishedValue, 120);
    two.partner.spinBox->setValue(200);
    QCOMPARE(two.shown(), 120);
}

void TestCounter::partnerDoesNotChangeTheWishOfAFocusedCounter()
{
    TwoCounters two;
    QVERIFY(two.active);
    two.type(80);
    QVERIFY(two.counter.spinBox->hasFocus());
    two.partner.spinBox->setValue(50);
    QCOMPARE(two.shown(), 50);
    two.partner.spinBox->setValue(200);
    QCOMPARE(two.shown(), 80);
}

// A partner at or below the wish sets the counter to its own number, also to a higher one.
void TestCounter::numberFollowsAPartnerBelowTheWish()
{
    TwoCounters two;
    two.counter.wishedValue = 90;
    two.counter.spinBox->setValue(10);
    two.partner.spinBox->setValue(70);
    QCOMPARE(two.shown(), 70);
}

void TestCounter::counterOutlivesItsPartner()
{
    auto partner = std::make_unique<Counter>(nullptr, QString(), QString(), 1, 9, 1, nullptr);
    Counter counter(nullptr, QString(), QString(), 1, 500, 1, partner.get());
    partner.reset();
    counter.spinBox->setValue(400);
    QCOMPARE(counter.spinBox->value(), 400);
}

QTEST_MAIN(TestCounter)
#include "tst_counter.moc"
