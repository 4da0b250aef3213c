// What the box shows, where it stands, and how it is closed.

#include "about/informationdialog.h"
#include "about/maker.h"
#include "images/images.h"

#include <QApplication>
#include <QDate>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QWindow>
#include <QtTest>

#include <memory>

namespace {

constexpr int desktopFontPt = 9;

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(45, 45, 48));
    palette.setColor(QPalette::WindowText, Qt::white);
    return palette;
}

/// How many pixels of the widget have just this colour.
int pixelsOf(QWidget& widget, const QColor& color)
{
    const QImage image = widget.grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

} // namespace

class TestInformationDialog final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void titleAndFlags();
    void labelsHaveTheirTexts_data();
    void labelsHaveTheirTexts();
    void copyrightNamesThisYear();
    void linksAreRichTextAndOpenOutside_data();
    void linksAreRichTextAndOpenOutside();
    void linksTakeAReadableColourWhenThePaletteTurnsDark();

    void qrCodeReadsAsTheWebAddress();
    void qrCodeFillsItsFrameInSharpModules();
    void sizeIsFixedAndNothingIsCut_data();
    void sizeIsFixedAndNothingIsCut();
    void titleIsLargerThanTheRestInEveryFont();
    void standsInTheMiddleOfTheScreen();
    void secondShowingKeepsTheQrCodeAndCentresAgain();

    void keysAndTheButtonClose_data();
    void keysAndTheButtonClose();
    void eachShowingBeginsAtTheButton();
    void aWindowThatWasMinimisedKeepsItsFocus();

private:
    bool show();
    template <typename T>
    T* find(const char* name) const;
    QImage qrCode() const;

    std::unique_ptr<InformationDialog> dialog;
};

void TestInformationDialog::initTestCase()
{
    initImages();
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), desktopFontPt));
}

void TestInformationDialog::init()
{
    dialog = std::make_unique<InformationDialog>(nullptr);
}

void TestInformationDialog::cleanup()
{
    dialog.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

bool TestInformationDialog::show()
{
    dialog->show();
    QApplication::setActiveWindow(dialog.get());
    return QTest::qWaitForWindowActive(dialog.get());
}

template <typename T>
T* TestInformationDialog::find(const char* name) const
{
    return dialog->findChild<T*>(QLatin1String(name));
}

QImage TestInformationDialog::qrCode() const
{
    return find<QLabel>("qrCode")->pixmap(Qt::ReturnByValue).toImage();
}

void TestInformationDialog::titleAndFlags()
{
    QCOMPARE(dialog->windowTitle(), QString("About this software"));
    const QIcon icon(QStringLiteral(":/images/Zevlogo1_freigestellt.gif"));
    QVERIFY(!icon.pixmap(16).isNull());
    QCOMPARE(dialog->windowIcon().pixmap(16).toImage(), icon.pixmap(16).toImage());
    QVERIFY(!dialog->isModal());
    QVERIFY(dialog->isWindow());
    // Qt adds a title and the system menu to a window that has a button.
    QCOMPARE(dialog->windowFlags() & ~Qt::WindowType_Mask,
             Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
}

void TestInformationDialog::labelsHaveTheirTexts_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    const auto add = [](const char* name, const QString& text) {
        QTest::newRow(name) << QByteArray(name) << text;
    };
    add("label_9", "Zev Lumetra");
    add("label", "Date");
    add("date", "2025-04-15");
    add("label_2", "Build");
    add("build", "B10624");
    add("label_3", "Version");
    add("version", "2.3.1");
    add("label_4", "Libraries");
    add("label_5", QString::fromUtf8(maker::name));
    add("label_6", QString::fromUtf8(maker::street));
    add("label_7", QString::fromUtf8(maker::town));
    add("label_8", QString::fromUtf8(maker::country));
    const QString folder = "file:///" + QCoreApplication::applicationDirPath() + "/licenses/";
    add("libs", "<a href=" + folder + "QT_LICENSE.html>Qt 5.9</a>, <a href=" + folder
                    + "QWT.html>Qwt 6.1.3</a>");
}

void TestInformationDialog::labelsHaveTheirTexts()
{
    QFETCH(QByteArray, name);
    QTEST(find<QLabel>(name.constData())->text(), "text");
    QVERIFY(!find<QLabel>(name.constData())->text().isEmpty());
}

void TestInformationDialog::copyrightNamesThisYear()
{
    const auto expected = [] {
        return QString("© %1 %2").arg(QDate::currentDate().year()).arg(QLatin1String(maker::name));
    };
    const QString before = expected();
    dialog = std::make_unique<InformationDialog>(nullptr);
    // The year can end between two lines of a test.
    QVERIFY((QStringList{before, expected()}.contains(find<QLabel>("copyRight")->text())));
}

void TestInformationDialog::linksAreRichTextAndOpenOutside_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("libraries") << QByteArray("libs");
    QTest::newRow("maker") << QByteArray("link");
}

void TestInformationDialog::linksAreRichTextAndOpenOutside()
{
    QFETCH(QByteArray, name);
    const auto* label = find<QLabel>(name.constData());
    QCOMPARE(label->textFormat(), Qt::RichText);
    QCOMPARE(label->textInteractionFlags(), Qt::TextInteractionFlags(Qt::TextBrowserInteraction));
    QVERIFY(label->openExternalLinks());
}

void TestInformationDialog::linksTakeAReadableColourWhenThePaletteTurnsDark()
{
    QVERIFY(show());
    const QColor blue = dialog->palette().color(QPalette::Link);
    for (const char* name : {"libs", "link"})
        QVERIFY2(pixelsOf(*find<QLabel>(name), blue) > 0, name);
    dialog->setPalette(darkPalette());
    for (const char* name : {"libs", "link"})
        QCOMPARE(pixelsOf(*find<QLabel>(name), blue), 0);
}

void TestInformationDialog::qrCodeReadsAsTheWebAddress()
{
    if (QStandardPaths::findExecutable("zbarimg").isEmpty())
        QSKIP("This machine has no zbarimg");
    QVERIFY(show());
    const QTemporaryDir folder;
    const QString picture = folder.filePath("dialog.png");
    QVERIFY(dialog->grab().save(picture));
    QProcess reader;
    reader.start("zbarimg", {"--quiet", "--nodbus", "--raw", picture});
    QVERIFY(reader.waitForFinished());
    QCOMPARE(reader.readAllStandardOutput().trimmed(), QByteArray(maker::webAddress));
}

void TestInformationDialog::qrCodeFillsItsFrameInSharpModules()
{
    QVERIFY(show());
    const int side = find<QWidget>("frame_2")->height();
    QCOMPARE(qrCode().size(), QSize(side, side));
    const QImage modules(":/images/qr.png");
    // A whole number of pixels for each module. An address of more than 62 letters has more
    // modules: then the frame needs another height.
    QCOMPARE(side % modules.width(), 0);
    const int pixels = side / modules.width();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            QCOMPARE(qrCode().pixel(x, y), modules.pixel(x / pixels, y / pixels));
    }
}

void TestInformationDialog::sizeIsFixedAndNothingIsCut_data()
{
    QTest::addColumn<int>("fontPt");
    QTest::newRow("a usual font") << desktopFontPt;
    QTest::newRow("a large font") << 3 * desktopFontPt;
}

void TestInformationDialog::sizeIsFixedAndNothingIsCut()
{
    QFETCH(int, fontPt);
    dialog->setFont(QFont(QStringLiteral("DejaVu Sans"), fontPt));
    const QSize least = dialog->minimumSize();
    QVERIFY(least.width() > 0 && least.height() > 0);
    QVERIFY(show());
    QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
    QCOMPARE(dialog->size(), dialog->minimumSize());
    QCOMPARE(dialog->size().expandedTo(least), dialog->size());
    const auto parts = dialog->findChildren<QWidget*>();
    for (const QWidget* part : parts) {
        const QRect place(part->mapTo(dialog.get(), QPoint(0, 0)), part->size());
        QVERIFY2(dialog->rect().contains(place), qPrintable(part->objectName()));
        const QSize needed = part->sizeHint().boundedTo(part->maximumSize());
        QVERIFY2(part->width() >= needed.width() && part->height() >= needed.height(),
                 qPrintable(part->objectName()));
    }
}

void TestInformationDialog::titleIsLargerThanTheRestInEveryFont()
{
    const QFont usual = QApplication::font();
    for (const int fontPt : {desktopFontPt, 3 * desktopFontPt}) {
        QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), fontPt));
        const InformationDialog other(nullptr);
        const auto* title = other.findChild<QLabel*>("label_9");
        QVERIFY(title->sizeHint().height()
                > 1.5 * other.findChild<QLabel*>("label")->sizeHint().height());
    }
    QApplication::setFont(usual);
}

void TestInformationDialog::standsInTheMiddleOfTheScreen()
{
    QVERIFY(show());
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(dialog->pos(), QPoint((screen.width() - dialog->width()) / 2,
                                   (screen.height() - dialog->height()) / 2));
}

void TestInformationDialog::secondShowingKeepsTheQrCodeAndCentresAgain()
{
    QVERIFY(show());
    const QPoint middle = dialog->pos();
    const QSize size = dialog->size();
    const qint64 picture = find<QLabel>("qrCode")->pixmap(Qt::ReturnByValue).cacheKey();
    dialog->move(middle + QPoint(50, 20));
    dialog->close();
    QVERIFY(show());
    QCOMPARE(find<QLabel>("qrCode")->pixmap(Qt::ReturnByValue).cacheKey(), picture);
    QCOMPARE(dialog->pos(), middle);
    QCOMPARE(dialog->size(), size);
}

void TestInformationDialog::keysAndTheButtonClose_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Escape") << int(Qt::Key_Escape);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Space on the button") << int(Qt::Key_Space);
    QTest::newRow("a click on the button") << 0;
}

void TestInformationDialog::keysAndTheButtonClose()
{
    QFETCH(int, key);
    // The second time as the first time.
    for (int showing = 1; showing <= 2; ++showing) {
        QVERIFY(show());
        const auto* button = find<QPushButton>("exit");
        if (key == 0)
            QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, {},
                              button->geometry().center());
        else
            QTest::keyClick(dialog->windowHandle(), Qt::Key(key));
        QVERIFY(!dialog->isVisible());
    }
}

void TestInformationDialog::eachShowingBeginsAtTheButton()
{
    for (int showing = 1; showing <= 2; ++showing) {
        QVERIFY(show());
        QVERIFY(find<QPushButton>("exit")->hasFocus());
        QTest::keyClick(dialog->windowHandle(), Qt::Key_Tab);
        QVERIFY(!find<QPushButton>("exit")->hasFocus());
        QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape);
    }
}

void TestInformationDialog::aWindowThatWasMinimisedKeepsItsFocus()
{
    QVERIFY(show());
    QTest::keyClick(dialog->windowHandle(), Qt::Key_Tab);
    QVERIFY(find<QLabel>("libs")->hasFocus());
    // The window system shows it again.
    QShowEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(dialog.get(), &event);
    QVERIFY(find<QLabel>("libs")->hasFocus());
}

QTEST_MAIN(TestInformationDialog)
#include "tst_informationdialog.moc"
