#include "about/linkcolor.h"

#include <QPalette>
#include <QtTest>

#include <cmath>

class TestLinkColor final : public QObject
{
    Q_OBJECT

private slots:
    void contrastOfKnownColours_data();
    void contrastOfKnownColours();
    void linkCanBeReadOnItsWindow_data();
    void linkCanBeReadOnItsWindow();
};

void TestLinkColor::contrastOfKnownColours_data()
{
    QTest::addColumn<QColor>("one");
    QTest::addColumn<QColor>("other");
    QTest::addColumn<double>("ratio");
    QTest::newRow("black and white") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
    QTest::newRow("white and black") << QColor(Qt::white) << QColor(Qt::black) << 21.0;
    QTest::newRow("a colour and itself") << QColor("#3060a0") << QColor("#3060a0") << 1.0;
    // Published examples, to two places.
    QTest::newRow("grey") << QColor("#767676") << QColor(Qt::white) << 4.54;
    QTest::newRow("red") << QColor("#ff0000") << QColor(Qt::white) << 4.00;
    QTest::newRow("green") << QColor("#00ff00") << QColor(Qt::white) << 1.37;
    QTest::newRow("blue") << QColor("#0000ff") << QColor(Qt::white) << 8.59;
}

void TestLinkColor::contrastOfKnownColours()
{
    QFETCH(QColor, one);
    QFETCH(QColor, other);
    QFETCH(double, ratio);
    QVERIFY(std::abs(contrastRatio(one, other) - ratio) < 0.01);
}

void TestLinkColor::linkCanBeReadOnItsWindow_data()
{
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("link");
    QTest::addColumn<bool>("keepsItsColour");
    const QColor blue(Qt::blue);
    QTest::newRow("blue on white") << QColor(Qt::white) << QColor(Qt::black) << blue << true;
    QTest::newRow("blue on light grey") << QColor("#efefef") << QColor(Qt::black) << blue << true;
    QTest::newRow("light blue on dark")
        << QColor("#2d2d30") << QColor(Qt::white) << QColor("#3d9df3") << true;
    QTest::newRow("blue on dark") << QColor("#2d2d30") << QColor(Qt::white) << blue << false;
    QTest::newRow("blue on black") << QColor(Qt::black) << QColor(Qt::white) << blue << false;
    QTest::newRow("white on white")
        << QColor(Qt::white) << QColor(Qt::black) << QColor(Qt::white) << false;
}

void TestLinkColor::linkCanBeReadOnItsWindow()
{
    QFETCH(QColor, window);
    QFETCH(QColor, text);
    QFETCH(QColor, link);
    QFETCH(bool, keepsItsColour);
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Link, link);
    const QColor color = readableLinkColor(palette);
    QVERIFY(contrastRatio(color, window) >= 4.5);
    QCOMPARE(color == link, keepsItsColour);
    // It stays a colour of its own as far as it can.
    QVERIFY(color != text);
}

QTEST_GUILESS_MAIN(TestLinkColor)
#include "tst_linkcolor.moc"
