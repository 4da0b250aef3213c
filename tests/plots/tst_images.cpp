#include "images/images.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QtTest>

namespace {

QString twiceAsLarge(const QString& file)
{
    const int dot = file.lastIndexOf(QLatin1Char('.'));
    return file.left(dot) + QLatin1String("@2x") + file.mid(dot);
}

/// The picture for a pixel ratio of 2, as an icon hands it out.
QImage fine(const QString& file)
{
    QImage image = QPixmap(twiceAsLarge(file)).toImage();
    image.setDevicePixelRatio(2.0);
    return image;
}

QImage shown(const QImage& image, const QSize& size)
{
    return image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

/// Share of the pixels in which two pictures differ by more than a tint, with colour left out.
double differenceInGrey(const QImage& one, const QImage& other)
{
    int different = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            different += qAbs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y))) > 64 ? 1 : 0;
    }
    return double(different) / (one.width() * one.height());
}

} // namespace

/// At a pixel ratio of 2, which the test sets for itself.
class TestImages final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initImages(); }

    void pictureIsCompiledInAtBothSizes_data();
    void pictureIsCompiledInAtBothSizes();
    void iconTakesTheFinerPicture_data() { pictureIsCompiledInAtBothSizes_data(); }
    void iconTakesTheFinerPicture();
    void lightsDifferInMoreThanColour_data();
    void lightsDifferInMoreThanColour();
};

void TestImages::pictureIsCompiledInAtBothSizes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");
    const QSize iconSize(22, 22);
    for (const char* name :
         {"go.xpm", "stop.xpm", "clear.png", "green_light.png", "red_light.png", "TrashCan.png"})
        QTest::newRow(name) << QStringLiteral(":/images/") + name << iconSize;
    QTest::newRow("logo") << QStringLiteral(":/images/Zevlogo1_freigestellt.gif") << QSize(63, 30);
}

void TestImages::pictureIsCompiledInAtBothSizes()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);
    const QImage image(file);
    const QImage fineImage(twiceAsLarge(file));
    QCOMPARE(image.size(), size);
    QCOMPARE(fineImage.size(), 2 * size);
    for (const QImage& picture : {image, fineImage}) {
        QVERIFY(picture.hasAlphaChannel());
        QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
    }
}

void TestImages::iconTakesTheFinerPicture()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);
    const QPixmap pixmap = QIcon(file).pixmap(size);
    QCOMPARE(pixmap.devicePixelRatio(), 2.0);
    QCOMPARE(pixmap.toImage(), fine(file));
}

void TestImages::lightsDifferInMoreThanColour_data()
{
    QTest::addColumn<int>("pixels");
    QTest::newRow("beside a stage") << 13;
    QTest::newRow("in the tool bar") << 22;
}

void TestImages::lightsDifferInMoreThanColour()
{
    QFETCH(int, pixels);
    const QSize size(pixels, pixels);
    const QImage green = shown(QImage(":/images/green_light.png"), size);
    const QImage red = shown(QImage(":/images/red_light.png"), size);
    QVERIFY(differenceInGrey(green, red) > 0.2);
}

int main(int argc, char* argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QGuiApplication app(argc, argv);
    TestImages test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_images.moc"
