#include "setup/connectionwidget.h"
#include "widgettest.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

using widgettest::click;
using widgettest::named;

class TestConnectionWidget final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void itShowsWhoItIs();
    void theButtonAsksForTheOtherState();
    void theButtonKeepsItsStateUntilItIsTold();
    void theButtonKeepsItsWidth();
    void theTrashCanAsksToDelete();
    void anEditedLabelIsTold();
    void aBlankCanNotBeTyped();
    void moreThan25CharactersCanNotBeTyped();
    void theCheckBoxTellsAutoConnect();
    void settingAutoConnectShows();
    void enterStaysInTheLine();

private:
    QPushButton& button() const { return named<QPushButton>(*line, "Button"); }
    QLineEdit& label() const { return named<QLineEdit>(*line, "lineEdit"); }

    std::unique_ptr<QDialog> window;
    ConnectionWidget* line = nullptr;
};

void TestConnectionWidget::init()
{
    window = std::make_unique<QDialog>();
    auto* layout = new QVBoxLayout(window.get());
    line = new ConnectionWidget("Zev-text", "left", "127.0.0.9", window.get());
    layout->addWidget(line);
    widgettest::show(*window);
}

void TestConnectionWidget::cleanup()
{
    window.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

void TestConnectionWidget::itShowsWhoItIs()
{
    QCOMPARE(named<QLabel>(*line, "numberFill").text(), QStringLiteral("Zev-text"));
    QCOMPARE(named<QLabel>(*line, "info").text(), QStringLiteral("127.0.0.9"));
    QCOMPARE(label().text(), QStringLiteral("left"));
    QCOMPARE(button().text(), QStringLiteral("Reconnect"));
    QVERIFY(!named<QCheckBox>(*line, "checkBoxAutoConnect").isChecked());
    QCOMPARE(line->number(), QStringLiteral("Zev-text"));
    QCOMPARE(line->address(), QStringLiteral("127.0.0.9"));
    const QSize most = named<QPushButton>(*line, "deleteButton").maximumSize();
    QCOMPARE(most, QSize(22, 22));
}

void TestConnectionWidget::theButtonAsksForTheOtherState()
{
    QSignalSpy reconnects(line, &ConnectionWidget::reconnectC);
    QSignalSpy disconnects(line, &ConnectionWidget::disconnectC);
    QVERIFY(click(button()));
    QCOMPARE(reconnects.size(), 1);
    QCOMPARE(reconnects.first().first().toString(), QStringLiteral("127.0.0.9"));
    QCOMPARE(disconnects.size(), 0);

    line->setConnected(true);
    QCOMPARE(button().text(), QStringLiteral("Disconnect"));
    QVERIFY(click(button()));
    QCOMPARE(reconnects.size(), 1);
    QCOMPARE(disconnects.size(), 1);
    QCOMPARE(disconnects.first().first().toString(), QStringLiteral("127.0.0.9"));

    line->setConnected(false);
    QCOMPARE(button().text(), QStringLiteral("Reconnect"));
}

void TestConnectionWidget::theButtonKeepsItsStateUntilItIsTold()
{
    QSignalSpy reconnects(line, &ConnectionWidget::reconnectC);
    QVERIFY(click(button()));
    QVERIFY(click(button()));
    QCOMPARE(reconnects.size(), 2);
    QCOMPARE(button().text(), QStringLiteral("Reconnect"));
}

void TestConnectionWidget::theButtonKeepsItsWidth()
{
    const QRect before = button().geometry();
    line->setConnected(true);
    QCoreApplication::processEvents();
    QCOMPARE(button().geometry(), before);
}

void TestConnectionWidget::theTrashCanAsksToDelete()
{
    QSignalSpy spy(line, &ConnectionWidget::deleteConnection);
    QVERIFY(click(named<QPushButton>(*line, "deleteButton")));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toString(), QStringLiteral("127.0.0.9"));
}

void TestConnectionWidget::anEditedLabelIsTold()
{
    QSignalSpy spy(line, &ConnectionWidget::labelChanged);
    label().setFocus();
    QTest::keyClicks(&label(), "_2");
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.last().at(0).toString(), QStringLiteral("127.0.0.9"));
    QCOMPARE(spy.last().at(1).toString(), QStringLiteral("left_2"));
}

void TestConnectionWidget::aBlankCanNotBeTyped()
{
    QSignalSpy spy(line, &ConnectionWidget::labelChanged);
    QTest::keyClicks(&label(), " -.\t");
    QCOMPARE(label().text(), QStringLiteral("left"));
    QCOMPARE(spy.size(), 0);
    QTest::keyClicks(&label(), "x");
    QCOMPARE(label().text(), QStringLiteral("leftx"));
}

void TestConnectionWidget::moreThan25CharactersCanNotBeTyped()
{
    label().clear();
    QTest::keyClicks(&label(), QString(26, 'W'));
    QCOMPARE(label().text(), QString(25, 'W'));
}

void TestConnectionWidget::theCheckBoxTellsAutoConnect()
{
    QSignalSpy spy(line, &ConnectionWidget::autoConnectChanged);
    auto& box = named<QCheckBox>(*line, "checkBoxAutoConnect");
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(8, box.height() / 2));
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.at(0).first().toBool(), true);
    QCOMPARE(spy.at(1).first().toBool(), false);
}

void TestConnectionWidget::settingAutoConnectShows()
{
    line->setAutoConnect(true);
    QCOMPARE(named<QCheckBox>(*line, "checkBoxAutoConnect").checkState(), Qt::Checked);
    line->setAutoConnect(false);
    QCOMPARE(named<QCheckBox>(*line, "checkBoxAutoConnect").checkState(), Qt::Unchecked);
}

void TestConnectionWidget::enterStaysInTheLine()
{
    auto* other = new QPushButton(window.get());
    window->layout()->addWidget(other);
    other->setDefault(true);
    QSignalSpy clicks(other, &QPushButton::clicked);
    label().setFocus();
    QTest::keyClick(&label(), Qt::Key_Return);
    QTest::keyClick(&label(), Qt::Key_Enter);
    QCOMPARE(clicks.size(), 0);
    QTest::keyClick(&label(), Qt::Key_Escape);
    QVERIFY(!window->isVisible());
}

QTEST_MAIN(TestConnectionWidget)
#include "tst_connectionwidget.moc"
