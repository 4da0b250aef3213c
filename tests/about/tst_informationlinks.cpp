// What the links open, by mouse and by keyboard alone.

#include "about/informationdialog.h"
#include "about/maker.h"
#include "images/images.h"
#include "support/desktop.h"

#include <QApplication>
#include <QLabel>
#include <QWindow>
#include <QtTest>

#include <memory>

class TestInformationLinks final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initImages(); }
    void init();
    void cleanup() { dialog.reset(); }

    void keyboardAloneOpensEveryLinkAndCloses();
    void aClickOpensTheWebSite();
    void aMissingDocumentIsNotReported();

private:
    void press(Qt::Key key) { QTest::keyClick(dialog->windowHandle(), key); }

    std::unique_ptr<InformationDialog> dialog;
};

void TestInformationLinks::init()
{
    dialog = std::make_unique<InformationDialog>(nullptr);
    dialog->show();
    QApplication::setActiveWindow(dialog.get());
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
}

void TestInformationLinks::keyboardAloneOpensEveryLinkAndCloses()
{
    const Desktop desktop;
    for (int link = 1; link <= 3; ++link) {
        press(Qt::Key_Tab);
        press(Qt::Key_Return);
        QCOMPARE(desktop.opened.size(), link);
    }
    const QString folder = "/" + QCoreApplication::applicationDirPath() + "/licenses/";
    QCOMPARE(desktop.opened.at(0).path(), folder + "QT_LICENSE.html");
    QCOMPARE(desktop.opened.at(1).path(), folder + "QWT.html");
    QCOMPARE(desktop.opened.at(2), QUrl(QLatin1String(maker::webAddress)));
    press(Qt::Key_Tab);
    QVERIFY(dialog->isVisible());
    press(Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(desktop.opened.size(), 3);
}

void TestInformationLinks::aClickOpensTheWebSite()
{
    const Desktop desktop;
    const auto* label = dialog->findChild<QLabel*>("link");
    constexpr int intoTheText = 10;
    const QPoint place = label->mapTo(dialog.get(), QPoint(intoTheText, label->height() / 2));
    QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(desktop.opened, QList<QUrl>{QUrl(QLatin1String(maker::webAddress))});
    QVERIFY(dialog->isVisible());
}

void TestInformationLinks::aMissingDocumentIsNotReported()
{
    const Desktop desktop(Desktop::Readers::Missing);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    QVERIFY(dialog->isVisible());
    QCOMPARE(QApplication::topLevelWidgets(), QWidgetList{dialog.get()});
}

QTEST_MAIN(TestInformationLinks)
#include "tst_informationlinks.moc"
