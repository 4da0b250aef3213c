#include "plots/scrollbar.h"
#include "support/widgetcheck.h"

#include <QSignalSpy>
#include <QStyle>
#include <QtTest>

class TestScrollBar final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Qt::Orientation>("Qt::Orientation"); }
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void verticalBarAloneStartsInverted();
    void newBarSpansZeroToOne();
    void barMadeWithABaseShowsAllOfIt();
    void spanBecomesRangeStepsAndPosition();
    void spanIsReadBackFromTheSlider();
    void movingTheSliderFromTheProgramIsSilent();
    void newBaseGivesTheSliderAnotherMeaning();
    void sameBaseChangesNothing();
    void sameInversionChangesNothing();
    void inversionKeepsTheSpanSeenUnderTheNewFlag();
    void changedValueTellsTheVisibleSpan();
    void draggedSliderTellsTheVisibleSpan();
    void clickBesideTheSliderScrollsByAPage();
    void extentIsTheThicknessInTheStyle_data();
    void extentIsTheThicknessInTheStyle();
};

void TestScrollBar::verticalBarAloneStartsInverted()
{
    QVERIFY(ScrollBar().isInverted());
    QVERIFY(ScrollBar(Qt::Vertical).isInverted());
    QVERIFY(!ScrollBar(Qt::Horizontal).isInverted());
}

void TestScrollBar::newBarSpansZeroToOne()
{
    const ScrollBar bar(Qt::Horizontal);
    QCOMPARE(bar.minBaseValue(), 0.0);
    QCOMPARE(bar.maxBaseValue(), 1.0);
}

void TestScrollBar::barMadeWithABaseShowsAllOfIt()
{
    const ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    QCOMPARE(bar.minBaseValue(), -5.0);
    QCOMPARE(bar.maxBaseValue(), 5.0);
    QCOMPARE(bar.minSliderValue(), -5.0);
    QCOMPARE(bar.maxSliderValue(), 5.0);
}

void TestScrollBar::spanBecomesRangeStepsAndPosition()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    bar.moveSlider(-1.0, 1.0);
    QCOMPARE(bar.minimum(), 100000);
    QCOMPARE(bar.maximum(), 900000);
    QCOMPARE(bar.singleStep(), 1000);
    QCOMPARE(bar.pageStep(), 200000);
    QCOMPARE(bar.value(), 500000);
}

void TestScrollBar::spanIsReadBackFromTheSlider()
{
    ScrollBar bar(Qt::Vertical, -5.0, 5.0);
    bar.moveSlider(2.0, 4.0);
    QCOMPARE(bar.value(), 200000);
    QCOMPARE(bar.minSliderValue(), 2.0);
    QCOMPARE(bar.maxSliderValue(), 4.0);
}

void TestScrollBar::movingTheSliderFromTheProgramIsSilent()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    QSignalSpy changed(&bar, &ScrollBar::valueChanged);
    bar.moveSlider(-5.0, -4.0);
    bar.moveSlider(1.0, 2.0);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!bar.signalsBlocked());
}

void TestScrollBar::newBaseGivesTheSliderAnotherMeaning()
{
    ScrollBar bar(Qt::Horizontal, 0.0, 1.0);
    bar.moveSlider(0.25, 0.75);
    bar.setBase(0.0, 10.0);
    QCOMPARE(bar.value(), 500000);
    QCOMPARE(bar.minSliderValue(), 2.5);
    QCOMPARE(bar.maxSliderValue(), 7.5);
}

void TestScrollBar::sameBaseChangesNothing()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    bar.moveSlider(-1.0, 1.0);
    bar.setPageStep(7);
    bar.setBase(-5.0, 5.0);
    QCOMPARE(bar.pageStep(), 7);
}

void TestScrollBar::sameInversionChangesNothing()
{
    ScrollBar bar(Qt::Vertical, -5.0, 5.0);
    bar.moveSlider(2.0, 4.0);
    bar.setPageStep(7);
    bar.setInverted(true);
    QCOMPARE(bar.pageStep(), 7);
    QCOMPARE(bar.value(), 200000);
}

// The slider stays where it is on the bar, so it shows the mirrored span.
void TestScrollBar::inversionKeepsTheSpanSeenUnderTheNewFlag()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    bar.moveSlider(2.0, 4.0);
    QCOMPARE(bar.value(), 800000);
    bar.setInverted(true);
    QVERIFY(bar.isInverted());
    QCOMPARE(bar.value(), 800000);
    QCOMPARE(bar.minSliderValue(), -4.0);
    QCOMPARE(bar.maxSliderValue(), -2.0);
}

void TestScrollBar::changedValueTellsTheVisibleSpan()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    bar.moveSlider(-1.0, 1.0);
    QSignalSpy changed(&bar, &ScrollBar::valueChanged);
    bar.setValue(600000);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].value<Qt::Orientation>(), Qt::Horizontal);
    QCOMPARE(changed[0][1].toDouble(), 0.0);
    QCOMPARE(changed[0][2].toDouble(), 2.0);
}

void TestScrollBar::draggedSliderTellsTheVisibleSpan()
{
    ScrollBar bar(Qt::Vertical, -5.0, 5.0);
    bar.moveSlider(-1.0, 1.0);
    QSignalSpy moved(&bar, &ScrollBar::sliderMoved);
    bar.setSliderDown(true);
    bar.setSliderPosition(600000);
    bar.setSliderDown(false);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved[0][0].value<Qt::Orientation>(), Qt::Vertical);
    QCOMPARE(moved[0][1].toDouble(), -2.0);
    QCOMPARE(moved[0][2].toDouble(), 0.0);
}

void TestScrollBar::clickBesideTheSliderScrollsByAPage()
{
    ScrollBar bar(Qt::Horizontal, -5.0, 5.0);
    bar.resize(400, bar.extent());
    bar.moveSlider(-1.0, 1.0);
    QSignalSpy changed(&bar, &ScrollBar::valueChanged);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(350, bar.height() / 2));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][1].toDouble(), 1.0);
    QCOMPARE(changed[0][2].toDouble(), 3.0);
}

void TestScrollBar::extentIsTheThicknessInTheStyle_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::newRow("horizontal") << Qt::Horizontal;
    QTest::newRow("vertical") << Qt::Vertical;
}

void TestScrollBar::extentIsTheThicknessInTheStyle()
{
    QFETCH(Qt::Orientation, orientation);
    const ScrollBar bar(orientation);
    const QSize hint = bar.sizeHint();
    QVERIFY(bar.extent() > 0);
    QCOMPARE(bar.extent(), orientation == Qt::Vertical ? hint.width() : hint.height());
}

QTEST_MAIN(TestScrollBar)
#include "tst_scrollbar.moc"
