// In a program without pictures.

#include "about/informationdialog.h"

#include <QFile>
#include <QLabel>
#include <QtTest>

namespace {

int reports = 0;

/// The offscreen platform has a remark of its own about each window.
void countReport(QtMsgType, const QMessageLogContext&, const QString& text)
{
    reports += text.contains(QLatin1String("propagateSizeHints")) ? 0 : 1;
}

} // namespace

class TestWithoutPictures final : public QObject
{
    Q_OBJECT

private slots:
    void aMissingQrCodeLeavesTheLabelEmptyAndIsNotReported();
};

void TestWithoutPictures::aMissingQrCodeLeavesTheLabelEmptyAndIsNotReported()
{
    QVERIFY(!QFile::exists(":/images/qr.png"));
    InformationDialog dialog(nullptr);
    const QtMessageHandler usual = qInstallMessageHandler(countReport);
    dialog.show();
    dialog.hide();
    dialog.show();
    qInstallMessageHandler(usual);
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.findChild<QLabel*>("qrCode")->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(reports, 0);
}

QTEST_MAIN(TestWithoutPictures)
#include "tst_withoutpictures.moc"
