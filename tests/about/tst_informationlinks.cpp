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
    void tabGoesRoundTheLinksInBothDirections_data();
    void tabGoesRoundTheLinksInBothDirections();
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

void TestInformationLinks::tabGoesRoundTheLinksInBothDirections_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QStringList>("names");
    const QString web = QUrl(QLatin1String(maker::webAddress)).fileName();
    QTest::newRow("forward") << int(Qt::Key_Tab) << QStringList{"QT_LICENSE.html", "QWT.html", web};
    QTest::newRow("backward") << int(Qt::Key_Backtab)
                              << QStringList{web, "QWT.html", "QT_LICENSE.html"};
}

void TestInformationLinks::tabGoesRoundTheLinksInBothDirections()
{
    QFETCH(int, key);
    QFETCH(QStringList, names);
    for (int round = 1; round <= 2; ++round) {
        const Desktop desktop;
        for (int link = 0; link < names.size(); ++link) {
            press(Qt::Key(key));
            press(Qt::Key_Return);
        }
        QStringList opened;
        for (const QUrl& url : desktop.opened)
            opened.append(url.fileName());
        QCOMPARE(opened, names);
        // To the button, from which the next round begins.
        press(Qt::Key(key));
    }
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
