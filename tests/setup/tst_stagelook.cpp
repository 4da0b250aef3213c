// How the state of a stage looks on a screen of twice the density.

#include "controls/stagelook.h"
#include "images/images.h"
#include "overviewstatuses.h"
#include "setup/overviewwidget.h"
#include "widgettest.h"

#include <QLabel>
#include <QtTest>

using widgettest::named;

namespace {

constexpr QSize natural(22, 22);

QImage fineImage(bool active)
{
    return QImage(active ? QStringLiteral(":/images/green_light@2x.png")
                         : QStringLiteral(":/images/red_light@2x.png"))
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Whether every pixel of the screen gets one of the fine picture.
bool isFine(const QPixmap& shown, bool active)
{
    QImage image = shown.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1);
    return shown.devicePixelRatio() == 2.0 && image == fineImage(active);
}

} // namespace

class TestStageLook final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initImages();
        QCOMPARE(qApp->devicePixelRatio(), 2.0);
        QCOMPARE(fineImage(true).size(), 2 * natural);
        QVERIFY(fineImage(true) != fineImage(false));
    }

    void lightsAreSharp();
    void lightsOfTheOverviewAreSharp();
    void switchesThatAreOnAndOffDiffer();
};

void TestStageLook::lightsAreSharp()
{
    for (const bool active : {true, false})
        QVERIFY(isFine(stageLight(active, natural), active));
}

void TestStageLook::lightsOfTheOverviewAreSharp()
{
    OverviewWidget row(false);
    ConnectionStatus status = overviewstatuses::status("0");
    status.active2 = true;
    row.updateRow(status);
    QVERIFY(isFine(named<QLabel>(row, "active1").pixmap(Qt::ReturnByValue), false));
    QVERIFY(isFine(named<QLabel>(row, "active2").pixmap(Qt::ReturnByValue), true));
}

void TestStageLook::switchesThatAreOnAndOffDiffer()
{
    QCOMPARE(stabilisationPalette(true).button().color(), QColor("lightgreen"));
    QCOMPARE(stabilisationPalette(false).button().color(), QColor("lightcoral"));
    QCOMPARE(stabilisationPalette(true).buttonText().color(), QColor(Qt::black));
    QCOMPARE(stabilisationPalette(false).buttonText().color(), QColor(Qt::black));
}

int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "2");
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    TestStageLook test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_stagelook.moc"
