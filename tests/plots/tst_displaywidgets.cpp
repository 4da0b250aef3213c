#include "plots/colorscalesframe.h"
#include "plots/thermoslider.h"
#include "support/widgetcheck.h"

#include <QtTest>

namespace {

const QColor good("lightgreen");
const QColor limit("red");

QImage picture(QWidget& widget)
{
    return widget.grab().toImage();
}

int pixelsOf(const QColor& color, const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

/// The coloured column of a piezo bar, in its pixels; its pixels are all there is of the colour.
QRect filledColumn(ThermoSlider& slider)
{
    const QImage image = picture(slider);
    QRect column;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(Qt::darkCyan))
                column |= QRect(x, y, 1, 1);
        }
    }
    const bool solid = pixelsOf(QColor(Qt::darkCyan), image) == column.width() * column.height();
    return solid ? column : QRect();
}

QRect filledColumn(double value)
{
    ThermoSlider slider(nullptr);
    slider.resize(60, 200);
    slider.setValue(value);
    return filledColumn(slider);
}

} // namespace

class TestDisplayWidgets final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void piezoBarIsANarrowUprightBarFromZeroToTen();
    void piezoBarFillsWithItsValue_data();
    void piezoBarFillsWithItsValue();
    void valueBeyondTheScaleFillsNoMoreThanThePipe();

    void colourBandsDivideTheHeight_data();
    void colourBandsDivideTheHeight();
    void colourScaleIsFivePixelsWide();
    void colourScaleIsGreenBetweenTwoRedEnds();
    void lowFrameShowsNoBands();
};

void TestDisplayWidgets::piezoBarIsANarrowUprightBarFromZeroToTen()
{
    const ThermoSlider slider(nullptr);
    QCOMPARE(slider.orientation(), Qt::Vertical);
    QCOMPARE(slider.scalePosition(), QwtThermo::TrailingScale);
    QCOMPARE(slider.fillBrush(), QBrush(Qt::darkCyan));
    QCOMPARE(slider.lowerBound(), 0.0);
    QCOMPARE(slider.upperBound(), 10.0);
    QCOMPARE(slider.pipeWidth(), 4);
    QCOMPARE(slider.spacing(), 0);
    QCOMPARE(slider.value(), 0.0);
    QCOMPARE(slider.font().family(), QStringLiteral("Sans Serif"));
    QCOMPARE(slider.font().pointSize(), 8);
    QCOMPARE(slider.scaleMaxMinor(), 0);
}

void TestDisplayWidgets::piezoBarFillsWithItsValue_data()
{
    QTest::addColumn<double>("value");
    for (const double value : {0.5, 2.5, 5.0, 7.5, 10.0})
        QTest::addRow("%.1f V", value) << value;
}

void TestDisplayWidgets::piezoBarFillsWithItsValue()
{
    QFETCH(double, value);
    ThermoSlider slider(nullptr);
    slider.resize(60, 200);
    slider.setValue(value);
    const QRect column = filledColumn(slider);
    QCOMPARE(column.width(), 4);
    // The scale leaves room for half a number at either end.
    const int numberHeight = QFontMetrics(slider.font()).height();
    const int zero = slider.height() - 1 - numberHeight / 2;
    const double reach = slider.height() - 1 - numberHeight;
    QVERIFY(qAbs(column.bottom() - zero) <= 1);
    QVERIFY(qAbs(column.top() - (zero - value / 10.0 * reach)) <= 1.0);
}

void TestDisplayWidgets::valueBeyondTheScaleFillsNoMoreThanThePipe()
{
    QCOMPARE(filledColumn(12.5), filledColumn(10.0));
    QCOMPARE(filledColumn(-3.0), filledColumn(0.0));
    QVERIFY(filledColumn(0.0).height() <= 1);
}

void TestDisplayWidgets::colourBandsDivideTheHeight_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("goodTop");
    QTest::addColumn<int>("goodBottom");
    QTest::addColumn<int>("upperBottom");
    QTest::addColumn<int>("lowerTop");
    QTest::addColumn<int>("lowerBottom");
    QTest::newRow("multiple of 8") << 80 << 10 << 69 << 14 << 70 << 79;
    QTest::newRow("remainder stays empty") << 87 << 10 << 69 << 14 << 70 << 79;
    QTest::newRow("lowest that shows") << 8 << 1 << 6 << 5 << 7 << 7;
    QTest::newRow("too low") << 7 << 0 << -1 << 4 << 0 << -1;
}

void TestDisplayWidgets::colourBandsDivideTheHeight()
{
    QFETCH(int, height);
    const ColorScaleBands bands = colorScaleBands(height);
    for (const QRect& band : {bands.good, bands.upperLimit, bands.lowerLimit}) {
        QCOMPARE(band.left(), 5);
        QCOMPARE(band.right(), 9);
    }
    QTEST(bands.good.top(), "goodTop");
    QTEST(bands.good.bottom(), "goodBottom");
    QCOMPARE(bands.upperLimit.top(), 5);
    QTEST(bands.upperLimit.bottom(), "upperBottom");
    QTEST(bands.lowerLimit.top(), "lowerTop");
    QTEST(bands.lowerLimit.bottom(), "lowerBottom");
}

void TestDisplayWidgets::colourScaleIsFivePixelsWide()
{
    ColorScalesFrame frame(nullptr);
    frame.resize(16, 80);
    const QImage image = picture(frame);
    const QColor empty = image.pixelColor(0, 40);
    for (int x = 0; x < 16; ++x)
        QCOMPARE(image.pixelColor(x, 40) != empty, x >= 5 && x <= 9);
    for (int y = 0; y < 80; ++y)
        QCOMPARE(image.pixelColor(7, y) != empty, y >= 5);
}

void TestDisplayWidgets::colourScaleIsGreenBetweenTwoRedEnds()
{
    ColorScalesFrame frame(nullptr);
    frame.resize(16, 80);
    const QImage image = picture(frame);
    QCOMPARE(image.pixelColor(7, 6), limit);
    QCOMPARE(image.pixelColor(7, 13), limit);
    QCOMPARE(image.pixelColor(7, 15), good);
    QCOMPARE(image.pixelColor(7, 68), good);
    QCOMPARE(image.pixelColor(7, 71), limit);
    QCOMPARE(image.pixelColor(7, 78), limit);
}

void TestDisplayWidgets::lowFrameShowsNoBands()
{
    ColorScalesFrame frame(nullptr);
    frame.resize(16, 7);
    const QImage image = picture(frame);
    QCOMPARE(pixelsOf(image.pixelColor(0, 0), image), 16 * 7);
}

QTEST_MAIN(TestDisplayWidgets)
#include "tst_displaywidgets.moc"
