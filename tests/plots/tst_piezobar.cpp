// What a piezo bar paints for a new value: no more than has changed, and the same picture as the
// library's own bar. Runs once for each of several device pixel ratios.

#include "ordinarypicture.h"
#include "plots/thermoslider.h"
#include "support/widgetcheck.h"

#include <QBackingStore>
#include <QPaintEvent>
#include <QStyle>
#include <QStyleFactory>
#include <QVBoxLayout>

#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

Q_DECLARE_METATYPE(std::vector<double>)
Q_DECLARE_METATYPE(std::function<void(QwtThermo&)>)

namespace {

/// The library's own bar with the settings of a piezo bar.
class OrdinaryBar final : public QwtThermo
{
public:
    explicit OrdinaryBar(QWidget* parent)
        : QwtThermo(parent)
    {
        const ThermoSlider like(nullptr);
        setOrientation(like.orientation());
        setScalePosition(like.scalePosition());
        setFillBrush(like.fillBrush());
        setScale(like.lowerBound(), like.upperBound());
        setPipeWidth(like.pipeWidth());
        setSpacing(like.spacing());
        setFont(like.font());
        setScaleMaxMinor(like.scaleMaxMinor());
    }

    using QwtThermo::pipeRect;
};

/// A bar in a window, at a place where pixels of the screen begin and end within its own.
template <typename Bar>
class BarOnScreen final
{
public:
    BarOnScreen()
    {
        window.resize(67, 211);
        bar.setGeometry(5, 3, 57, 203);
        window.show();
        shown = QTest::qWaitForWindowExposed(&window);
        QApplication::processEvents();
    }

    /// What stands on the screen, in its pixels.
    QImage picture() const
    {
        QApplication::processEvents();
        return static_cast<const QImage&>(*window.backingStore()->paintDevice())
            .copy()
            .convertToFormat(QImage::Format_RGB32);
    }

    QWidget window;
    Bar bar{&window};
    bool shown = false;
};

/// Collects what a widget is asked to paint.
class PaintRecord final : public QObject
{
public:
    explicit PaintRecord(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++count;
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }

    /// Paint events, and all that they covered.
    int count = 0;
    QRegion region;
};

} // namespace

class TestPiezoBar final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void valuesLookAsThoseOfTheLibrary_data();
    void valuesLookAsThoseOfTheLibrary();
    void alarmsLookAsThoseOfTheLibrary();
    void aValueThatIsNotPaintedIsSeen();
    void changesLookAsThoseOfTheLibrary_data();
    void changesLookAsThoseOfTheLibrary();

    void aValueOnTheSamePixelPaintsNothing();
    void everyOtherValuePaintsWithinThePipe();
    void everyOtherChangePaintsTheWholeBar_data();
    void everyOtherChangePaintsTheWholeBar();
    void aValueBehindAnotherChangeTakesNothingFromIt();

    void theValueIsExactlyThatWhichWasSet();
    void aHiddenBarShowsItsValueLater();
    void updatesThatAreOffStayOff();

private:
    using Change = std::function<void(QwtThermo&)>;
    static void addChanges();

    void setBoth(double value) const
    {
        mine->bar.setValue(value);
        ordinary->bar.setValue(value);
    }
    void verifyPicture() const
    {
        const QImage shown = mine->picture();
        const QImage expected = ordinary->picture();
        if (shown == expected)
            return;
        keepPictures(shown, expected);
        QCOMPARE(differingPixels(shown, expected), 0);
    }

    /// How much of the scale a pixel is.
    double pixel() const
    {
        const QwtThermo& bar = ordinary->bar;
        return (bar.upperBound() - bar.lowerBound()) / ordinary->bar.pipeRect().height();
    }

    /// A value from which a step of `pixels` stays on its pixel.
    double valueWithRoomFor(double pixels) const
    {
        constexpr double near = 4.0;
        ordinary->bar.setValue(near);
        const QImage before = ordinary->picture();
        ordinary->bar.setValue(near + pixels * pixel());
        return ordinary->picture() == before ? near : near + pixels * pixel();
    }

    std::unique_ptr<BarOnScreen<ThermoSlider>> mine;
    std::unique_ptr<BarOnScreen<OrdinaryBar>> ordinary;
};

void TestPiezoBar::init()
{
    mine = std::make_unique<BarOnScreen<ThermoSlider>>();
    ordinary = std::make_unique<BarOnScreen<OrdinaryBar>>();
    QVERIFY(mine->shown && ordinary->shown);
    QVERIFY(mine->picture().width() > 0);
    QCOMPARE(mine->picture().width(), qRound(67 * mine->window.devicePixelRatioF()));
}

void TestPiezoBar::cleanup()
{
    mine.reset();
    ordinary.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestPiezoBar::valuesLookAsThoseOfTheLibrary_data()
{
    QTest::addColumn<std::vector<double>>("values");
    using Values = std::vector<double>;
    QTest::newRow("jumps") << Values{10.0, 0.0, 5.0, 9.9, 0.1, 10.0};
    QTest::newRow("above the scale") << Values{9.99, 10.01, 12.5, 10.0, 32.767, 9.95};
    QTest::newRow("below the scale") << Values{0.01, -0.01, -3.0, 0.0, -32.768, 0.05};
    QTest::newRow("across the scale") << Values{-5.0, 15.0, -5.0, 5.0, 15.0};
    Values slowly;
    for (int i = -10; i <= 1010; i += 3)
        slowly.push_back(0.01 * i);
    QTest::newRow("up, slowly") << slowly;
    QTest::newRow("down, slowly") << Values(slowly.rbegin(), slowly.rend());
    Values noise;
    for (int i = 0; i < 200; ++i)
        noise.push_back(0.001 * (i * 7919 % 14000) - 2.0);
    QTest::newRow("noise") << noise;
}

void TestPiezoBar::valuesLookAsThoseOfTheLibrary()
{
    QFETCH(std::vector<double>, values);
    for (const double value : values) {
        setBoth(value);
        verifyPicture();
        if (QTest::currentTestFailed())
            return;
    }
}

void TestPiezoBar::alarmsLookAsThoseOfTheLibrary()
{
    setBoth(6.0);
    const QImage quiet = mine->picture();
    for (QwtThermo* bar : std::initializer_list<QwtThermo*>{&mine->bar, &ordinary->bar}) {
        bar->setAlarmBrush(Qt::red);
        bar->setAlarmLevel(5.0);
        bar->setAlarmEnabled(true);
    }
    QVERIFY(mine->picture() != quiet);
    constexpr int steps = 60;
    for (int i = -steps; i <= steps; ++i) {
        setBoth(5.0 + 0.05 * (steps - std::abs(i)) * pixel() - pixel());
        verifyPicture();
    }
}

void TestPiezoBar::aValueThatIsNotPaintedIsSeen()
{
    setBoth(4.0);
    verifyPicture();
    ordinary->bar.setValue(4.0 + 1.5 * pixel());
    QVERIFY(differingPixels(mine->picture(), ordinary->picture()) > 0);
}

void TestPiezoBar::addChanges()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("size", [](QwtThermo& bar) { bar.resize(50, 150); });
    row("place", [](QwtThermo& bar) { bar.move(8, 6); });
    row("palette", [](QwtThermo& bar) { bar.setPalette(QPalette(Qt::darkGray)); });
    row("font", [](QwtThermo& bar) { bar.setFont(QFont(QStringLiteral("Sans Serif"), 14)); });
    row("scale", [](QwtThermo& bar) { bar.setScale(-5.0, 12.0); });
    row("disabled", [](QwtThermo& bar) { bar.setEnabled(false); });
    row("pipe", [](QwtThermo& bar) { bar.setPipeWidth(9); });
    row("border", [](QwtThermo& bar) { bar.setBorderWidth(5); });
    row("brush", [](QwtThermo& bar) { bar.setFillBrush(Qt::red); });
    row("side of the scale", [](QwtThermo& bar) { bar.setScalePosition(QwtThermo::NoScale); });
    row("origin", [](QwtThermo& bar) { bar.setOriginMode(QwtThermo::OriginMaximum); });
}

void TestPiezoBar::changesLookAsThoseOfTheLibrary_data()
{
    addChanges();
}

void TestPiezoBar::changesLookAsThoseOfTheLibrary()
{
    QFETCH(Change, change);
    setBoth(6.0);
    const QImage before = mine->picture();
    change(mine->bar);
    change(ordinary->bar);
    ordinary->bar.update();
    verifyPicture();
    QVERIFY(differingPixels(mine->picture(), before) != 0);
    for (const double value : {6.0 + 2.0 * pixel(), 11.0, 0.0, -6.0, 3.0}) {
        setBoth(value);
        verifyPicture();
    }
}

void TestPiezoBar::aValueOnTheSamePixelPaintsNothing()
{
    const auto verifyNothingPainted = [this](double from, double to) {
        mine->bar.setValue(from);
        mine->picture();
        const PaintRecord paints(mine->bar);
        mine->bar.setValue(to);
        QApplication::processEvents();
        QCOMPARE(paints.count, 0);
        QCOMPARE(mine->bar.value(), to);
    };
    const double from = valueWithRoomFor(0.1);
    verifyNothingPainted(from, from + 0.1 * pixel());
    verifyNothingPainted(from, from);
    verifyNothingPainted(12.0, 13.0);
    verifyNothingPainted(-1.0, -2.0);
}

void TestPiezoBar::everyOtherValuePaintsWithinThePipe()
{
    setBoth(4.0);
    mine->picture();
    const QRect pipe = ordinary->bar.pipeRect();
    for (const double value : {4.0 + 1.5 * pixel(), 9.0, 9.0 - 1.5 * pixel(), 0.0, 10.0, 7.0}) {
        const PaintRecord paints(mine->bar);
        mine->bar.setValue(value);
        QApplication::processEvents();
        QCOMPARE(paints.count, 1);
        QVERIFY(!paints.region.isEmpty());
        QVERIFY(paints.region.subtracted(pipe).isEmpty());
    }
}

void TestPiezoBar::everyOtherChangePaintsTheWholeBar_data()
{
    addChanges();
    const Change change = [](QwtThermo& bar) {
        bar.setStyle(QStyleFactory::create(QStringLiteral("Windows")));
        bar.style()->setParent(&bar);
    };
    QTest::newRow("style") << change;
}

void TestPiezoBar::everyOtherChangePaintsTheWholeBar()
{
    QFETCH(Change, change);
    mine->bar.setValue(6.0);
    mine->picture();
    const PaintRecord paints(mine->bar);
    change(mine->bar);
    QApplication::processEvents();
    QCOMPARE(paints.region.boundingRect(), mine->bar.rect());
}

void TestPiezoBar::aValueBehindAnotherChangeTakesNothingFromIt()
{
    setBoth(6.0);
    mine->picture();
    const PaintRecord paints(mine->bar);
    for (QwtThermo* bar : std::initializer_list<QwtThermo*>{&mine->bar, &ordinary->bar}) {
        bar->setScale(0.0, 20.0);
        bar->setValue(15.0);
    }
    QApplication::processEvents();
    QCOMPARE(paints.region.boundingRect(), mine->bar.rect());
    verifyPicture();
}

void TestPiezoBar::theValueIsExactlyThatWhichWasSet()
{
    QwtThermo& base = mine->bar;
    for (const double value : {5.0, 5.0000001, 5.0, 32.767, -32.768, 0.0}) {
        base.setValue(value);
        QCOMPARE(base.value(), value);
        QCOMPARE(base.property("value").toDouble(), value);
    }
    setBoth(5.0);
    base.setValue(8.0);
    ordinary->bar.setValue(8.0);
    verifyPicture();
}

void TestPiezoBar::aHiddenBarShowsItsValueLater()
{
    setBoth(2.0);
    mine->picture();
    for (QwtThermo* bar : std::initializer_list<QwtThermo*>{&mine->bar, &ordinary->bar}) {
        bar->hide();
        bar->setValue(7.0);
        bar->show();
    }
    verifyPicture();
}

void TestPiezoBar::updatesThatAreOffStayOff()
{
    setBoth(2.0);
    mine->picture();
    mine->bar.setUpdatesEnabled(false);
    const PaintRecord paints(mine->bar);
    setBoth(7.0);
    QApplication::processEvents();
    QCOMPARE(paints.count, 0);
    QVERIFY(!mine->bar.updatesEnabled());
    mine->bar.setUpdatesEnabled(true);
    verifyPicture();
    mine->bar.setValue(3.0);
    ordinary->bar.setValue(3.0);
    QVERIFY(mine->bar.updatesEnabled());
    verifyPicture();
}

QTEST_MAIN(TestPiezoBar)
#include "tst_piezobar.moc"
