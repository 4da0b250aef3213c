// The form of the recording dialog: what it says, how it looks and how the keyboard moves in it.

#include "dataloggerbench.h"

#include <algorithm>

namespace {

/// Names of the controls in the order of reading.
const QStringList readingOrder = {
    "lineEdit_FileName",   "pushButton_SaveAs", "spinBox_SaveRate", "lineEdit_RecordTime",
    "lineEdit_DataBlocks", "lineEdit_FileSize", "checkBox",         "pushButton_Start",
    "pushButton_Stop",     "pushButton_Close"};

/// The brightness of the darkest pixel, 0 .. 255.
int darkest(const QImage& image)
{
    int least = 255;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            least = std::min(least, qGray(image.pixel(x, y)));
    }
    return least;
}

QPalette darkPalette()
{
    QPalette palette(QColor(40, 40, 40));
    palette.setColor(QPalette::Base, QColor(25, 25, 25));
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::white);
    return palette;
}

} // namespace

class TestDataLoggerForm final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void textsAreToTheLetter_data();
    void textsAreToTheLetter();
    void windowHasItsTitleIconAndCloseButton();
    void windowIsNotModalAndHasOneSize();
    void fieldsBeginAsPlanned();
    void rateReadsTheSameEverywhere();
    void resultsCanNotBeTyped();
    void resultsHaveTheirBackground();
    void resultsAreReadableInADarkPalette();
    void everyTextHasRoom();
    void warningMovesNothing();
    void tipTellsWhatOneFileHolds();
    void chooserHasTheFocusAtEachOpening();
    void tabFollowsTheEye();
    void noButtonIsADefault();
    void enterStartsNothing();
    void escapeCloses();
    void closeCloses();
};

void TestDataLoggerForm::cleanup()
{
    QCOMPARE(leftWidgets(), QString());
}

void TestDataLoggerForm::textsAreToTheLetter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("file name") << "label_3"
                               << "Save as:";
    QTest::newRow("chooser") << "pushButton_SaveAs"
                             << "...";
    QTest::newRow("rate") << "label_2"
                          << "Save rate [Hz]";
    QTest::newRow("time") << "label"
                          << "Automatically stops after [hhh:mm:ss]";
    QTest::newRow("blocks") << "label_5"
                            << "Number of datablocks";
    QTest::newRow("size") << "label_4"
                          << "File size [MBytes]";
    QTest::newRow("all systems") << "checkBox"
                                 << "Save all displayed systems";
    QTest::newRow("warning")
        << "lblWarningLargeFile"
        << "You are about to create a file larger than or close to 2GB. Please "
           "ensure that this is supported by your file system.";
    QTest::newRow("start") << "pushButton_Start"
                           << "Start";
    QTest::newRow("stop") << "pushButton_Stop"
                          << "Stop";
    QTest::newRow("close") << "pushButton_Close"
                           << "Close";
}

void TestDataLoggerForm::textsAreToTheLetter()
{
    QFETCH(QString, name);
    const DataLoggerBench bench;
    QTEST(bench.find<QWidget>(name).property("text").toString(), "text");
}

void TestDataLoggerForm::windowHasItsTitleIconAndCloseButton()
{
    DataLoggerBench bench;
    QCOMPARE(bench.dialog.windowTitle(), QString("Data recording"));
    // The first two come with any button: without them it would have no place.
    QCOMPARE(bench.dialog.windowFlags(), Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                                             | Qt::WindowCloseButtonHint);
    const QImage icon = bench.dialog.windowIcon().pixmap(16).toImage();
    QVERIFY(!icon.isNull());
    QCOMPARE(icon, QIcon(":/images/Zevlogo1_freigestellt.gif").pixmap(16).toImage());
}

void TestDataLoggerForm::windowIsNotModalAndHasOneSize()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(!bench.dialog.isModal());
    QCOMPARE(bench.dialog.minimumSize(), bench.dialog.size());
    QCOMPARE(bench.dialog.maximumSize(), bench.dialog.size());
}

void TestDataLoggerForm::fieldsBeginAsPlanned()
{
    const DataLoggerDialog dialog(nullptr);
    QCOMPARE(dialog.saveRate(), 0);
    QVERIFY(!dialog.isRecordingEnabled());
    QVERIFY(!dialog.isRecording());
    QCOMPARE(dialog.findChild<QLineEdit*>("lineEdit_FileName")->text(), QString());
    QCOMPARE(dialog.findChild<QSpinBox*>("spinBox_SaveRate")->maximum(), 1000);
    const auto* time = dialog.findChild<QLineEdit*>("lineEdit_RecordTime");
    QCOMPARE(time->text(), QString("000:01:00"));
    QCOMPARE(time->inputMask(), QString("999:99:99"));
    QCOMPARE(time->maxLength(), 9);
    QCOMPARE(dialog.findChild<QLineEdit*>("lineEdit_DataBlocks")->text(), QString("0"));
    QCOMPARE(dialog.findChild<QLineEdit*>("lineEdit_FileSize")->text(), QString("0.0"));
    QVERIFY(dialog.findChild<QLabel*>("lblWarningLargeFile")->isHidden());
    QVERIFY(!dialog.findChild<QCheckBox*>("checkBox")->isChecked());
    const auto* progress = dialog.findChild<QProgressBar*>("progressBar");
    QCOMPARE(progress->value(), 0);
    QVERIFY(!progress->isEnabled());
    QVERIFY(!dialog.findChild<QPushButton*>("pushButton_Start")->isEnabled());
    QVERIFY(!dialog.findChild<QPushButton*>("pushButton_Stop")->isEnabled());
    QVERIFY(dialog.findChild<QPushButton*>("pushButton_SaveAs")->isEnabled());
}

void TestDataLoggerForm::rateReadsTheSameEverywhere()
{
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    {
        DataLoggerBench bench;
        QVERIFY(bench.open(250));
        QCOMPARE(bench.rate().text(), QString("250"));
        QCOMPARE(bench.text("lineEdit_DataBlocks"), QString("15000"));
    }
    QLocale::setDefault(QLocale::c());
}

void TestDataLoggerForm::resultsCanNotBeTyped()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    for (const QString name : {"lineEdit_DataBlocks", "lineEdit_FileSize"}) {
        const QString before = bench.text(name);
        QVERIFY(bench.type(name, "7"));
        QCOMPARE(bench.text(name), before);
    }
}

void TestDataLoggerForm::resultsHaveTheirBackground()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    for (const QString name : {"lineEdit_DataBlocks", "lineEdit_FileSize"}) {
        auto& field = bench.find<QLineEdit>(name);
        QCOMPARE(field.styleSheet(), QString("background-color: rgb(230, 230, 230);"));
        const QPoint besideTheText(10, field.height() / 2);
        QCOMPARE(QColor(field.grab().toImage().pixel(besideTheText)), QColor(230, 230, 230));
    }
    QCOMPARE(bench.find<QLabel>("lblWarningLargeFile").styleSheet(),
             QString("QLabel { color : red; }"));
}

void TestDataLoggerForm::resultsAreReadableInADarkPalette()
{
    const QPalette before = QApplication::palette();
    QApplication::setPalette(darkPalette());
    {
        DataLoggerBench bench;
        QVERIFY(bench.open());
        auto& field = bench.find<QLineEdit>("lineEdit_DataBlocks");
        QCOMPARE(field.palette().color(QPalette::Text), QColor(Qt::black));
        constexpr int framePx = 4;
        const QRect inside = field.rect().adjusted(framePx, framePx, -framePx, -framePx);
        constexpr int darkText = 100;
        QVERIFY(darkest(field.grab(inside).toImage()) < darkText);
    }
    QApplication::setPalette(before);
}

void TestDataLoggerForm::everyTextHasRoom()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(500));
    QVERIFY(bench.type("lineEdit_RecordTime", "999:99:99"));
    const QList<QLabel*> labels = bench.dialog.findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        QVERIFY2(label->width() >= label->minimumSizeHint().width(),
                 qPrintable(label->objectName()));
        QVERIFY2(label->height() >= label->heightForWidth(label->width()),
                 qPrintable(label->objectName()));
    }
    for (const QString& name : readingOrder) {
        const auto& widget = bench.find<QWidget>(name);
        QVERIFY2(widget.height() >= widget.minimumSizeHint().height(), qPrintable(name));
        // Three dots need less room than the shortest usual button.
        if (&widget != &bench.saveAsButton())
            QVERIFY2(widget.width() >= widget.minimumSizeHint().width(), qPrintable(name));
    }
    // The longest numbers that there are.
    const auto& blocks = bench.find<QLineEdit>("lineEdit_DataBlocks");
    constexpr int marginsPx = 12;
    QVERIFY(blocks.fontMetrics().horizontalAdvance("-2147483648") + marginsPx < blocks.width());
}

void TestDataLoggerForm::warningMovesNothing()
{
    DataLoggerBench bench;
    QVERIFY(bench.open(500));
    const auto places = [&bench] {
        QList<QRect> found;
        for (const QString& name : readingOrder)
            found.append(bench.find<QWidget>(name).geometry());
        found.append(bench.find<QWidget>("progressBar").geometry());
        found.append(bench.dialog.rect());
        return found;
    };
    const QList<QRect> before = places();
    QVERIFY(bench.type("lineEdit_RecordTime", "100:00:00"));
    QTRY_VERIFY(bench.find<QLabel>("lblWarningLargeFile").isVisible());
    QCoreApplication::processEvents();
    QCOMPARE(places(), before);
}

void TestDataLoggerForm::tipTellsWhatOneFileHolds()
{
    const DataLoggerBench bench;
    const QString tip = bench.find<QCheckBox>("checkBox").toolTip();
    QVERIFY(tip.contains("only one system"));
    QVERIFY(tip.contains("ends with its first line"));
}

void TestDataLoggerForm::chooserHasTheFocusAtEachOpening()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QCOMPARE(bench.saveAsButton().focusPolicy(), Qt::WheelFocus);
    QVERIFY(bench.saveAsButton().hasFocus());
    QVERIFY(bench.click("lineEdit_RecordTime"));
    QVERIFY(!bench.saveAsButton().hasFocus());
    bench.dialog.close();
    QVERIFY(bench.open());
    QVERIFY(bench.saveAsButton().hasFocus());
}

void TestDataLoggerForm::tabFollowsTheEye()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.fileName().setFocus();
    QStringList order;
    do {
        order.append(bench.dialog.focusWidget()->objectName());
        bench.press(Qt::Key_Tab);
    } while (!bench.fileName().hasFocus() && order.size() < 2 * readingOrder.size());
    QStringList expected = readingOrder;
    // There is nothing to stop.
    expected.removeOne("pushButton_Stop");
    QCOMPARE(order, expected);
}

void TestDataLoggerForm::noButtonIsADefault()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    const QList<QPushButton*> buttons = bench.dialog.findChildren<QPushButton*>();
    QCOMPARE(buttons.size(), 4);
    for (const QPushButton* button : buttons) {
        QVERIFY2(!button->isDefault(), qPrintable(button->objectName()));
        QVERIFY2(!button->autoDefault(), qPrintable(button->objectName()));
    }
}

void TestDataLoggerForm::enterStartsNothing()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.type("lineEdit_FileName", "run"));
    for (const QString& name : readingOrder) {
        bench.find<QWidget>(name).setFocus();
        bench.press(Qt::Key_Return);
        bench.press(Qt::Key_Enter);
    }
    QCOMPARE(bench.started.count(), 0);
    QVERIFY(bench.dialog.isVisible());
}

void TestDataLoggerForm::escapeCloses()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    bench.press(Qt::Key_Escape);
    QVERIFY(!bench.dialog.isVisible());
}

void TestDataLoggerForm::closeCloses()
{
    DataLoggerBench bench;
    QVERIFY(bench.open());
    QVERIFY(bench.click("pushButton_Close"));
    QVERIFY(!bench.dialog.isVisible());
}

QTEST_MAIN(TestDataLoggerForm)
#include "tst_dataloggerform.moc"
