// The service dialog by keyboard alone.

#include "servicebench.h"
#include "testedbuttons.h"

#include <QPushButton>
#include <QtTest>

namespace {

/// By the names of the widgets, until the first one comes again.
QStringList tabOrderFrom(const ServiceBench& bench, QWidget& first)
{
    first.setFocus();
    QStringList names;
    do {
        names.append(bench.dialog.focusWidget()->objectName());
        QTest::keyClick(bench.dialog.windowHandle(), Qt::Key_Tab);
    } while (bench.dialog.focusWidget() != &first && names.size() < 100);
    return names;
}

} // namespace

class TestServiceKeyboard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { opened.reset(); }

    void tabFollowsTheEye();
    void spaceStartsATestAndTheFocusStays();
    void enterStartsNothing();

private:
    ServiceBench& bench() const { return *opened; }

    std::unique_ptr<ServiceBench> opened;
};

void TestServiceKeyboard::initTestCase()
{
    opened = std::make_unique<ServiceBench>(steadyController());
    QVERIFY(opened->open());
}

void TestServiceKeyboard::tabFollowsTheEye()
{
    QStringList expected{"buttonGIN_1", "buttonGAS", "buttonS1S", "buttonCLS"};
    expected += namesOfEach("SSH", 2) + namesOfEach("CSH", 2) + namesOfEach("STF", 3)
                + namesOfEach("CTF", 3);
    expected += QStringList{"Drive_position",   "manalPosition_checkBox", "buttonSDA_1x",
                            "buttonSDA_2x",     "buttonSDA_1y",           "buttonSDA_2y",
                            "speed_pushButton", "error_PushButton",       "fram_PushButton"};
    for (const QString what : {"pFactor1", "pFactor2", "sensitivity1", "sensitivity2"}) {
        for (const QString value : {"_5000", "_2500", "_100"})
            expected.append(what + value);
    }
    expected += QStringList{"adjustIn1X",         "adjustIn1Y",       "adjustIn2X",
                            "adjustIn2Y",         "comboBox",         "baudrateChange",
                            "result_textBrowser", "clear_pushButton", "buttonClose"};
    QCOMPARE(tabOrderFrom(bench(), bench().find<QPushButton>("buttonGIN_1")), expected);
}

void TestServiceKeyboard::spaceStartsATestAndTheFocusStays()
{
    auto& button = bench().find<QPushButton>("buttonCTF_2");
    button.setFocus();
    bench().link.controller.clearWire();
    QTest::keyClick(bench().dialog.windowHandle(), Qt::Key_Space);
    QVERIFY(QTest::qWaitFor([this] { return bench().isReady(); }));
    QCOMPARE(bench().commands(), QByteArrayList{QByteArray("CTF\2;")});
    QVERIFY(button.hasFocus());
}

/// Not even where a number is typed, as most commands change something at the controller.
void TestServiceKeyboard::enterStartsNothing()
{
    bench().link.controller.clearWire();
    QVERIFY(bench().press("manalPosition_checkBox"));
    for (const char* name : {"drive_spinBox", "comboBox", "buttonCTF_1", "result_textBrowser"}) {
        bench().find<QWidget>(name).setFocus();
        QTest::keyClick(bench().dialog.windowHandle(), Qt::Key_Return);
        QTest::keyClick(bench().dialog.windowHandle(), Qt::Key_Enter);
    }
    QVERIFY(bench().dialog.isVisible());
    QCOMPARE(bench().commands(), QByteArrayList());
}

QTEST_MAIN(TestServiceKeyboard)
#include "tst_servicekeyboard.moc"
