// The box on a screen with two pixels for one, which the test sets for itself.

#include "about/informationdialog.h"
#include "images/images.h"

#include <QApplication>
#include <QLabel>
#include <QtTest>

class TestFineScreen final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initImages(); }

    void qrCodeHasThePixelsOfTheScreen();
};

void TestFineScreen::qrCodeHasThePixelsOfTheScreen()
{
    InformationDialog dialog(nullptr);
    dialog.show();
    const auto* label = dialog.findChild<QLabel*>("qrCode");
    const QPixmap picture = label->pixmap(Qt::ReturnByValue);
    const int side = dialog.findChild<QWidget*>("frame_2")->height();
    QCOMPARE(picture.devicePixelRatio(), 2.0);
    QCOMPARE(picture.size(), QSize(2 * side, 2 * side));
    QCOMPARE(label->size(), QSize(side, side));
    // Between black and white there is nothing.
    const QImage image = picture.toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            QVERIFY(pixel == qRgb(0, 0, 0) || pixel == qRgb(255, 255, 255));
        }
    }
}

int main(int argc, char* argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication app(argc, argv);
    TestFineScreen test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_finescreen.moc"
