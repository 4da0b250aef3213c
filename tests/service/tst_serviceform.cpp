// What the form of the service dialog shows.

#include "servicebench.h"
#include "testedbuttons.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

namespace {

/// The text at the left of a button; null if there is none.
QString rowLabel(const ServiceBench& bench, const QString& button)
{
    const QRect row = bench.find<QPushButton>(button).geometry();
    for (const auto* label : bench.dialog.findChildren<QLabel*>()) {
        if (label->isVisible() && label->geometry().center().y() == row.center().y()
            && label->geometry().right() < row.left())
            return label->text();
    }
    return {};
}

QStringList methodsOf(const QMetaObject& object, QMetaMethod::MethodType type)
{
    QStringList methods;
    for (int index = object.methodOffset(); index < object.methodCount(); ++index) {
        if (object.method(index).methodType() == type)
            methods.append(object.method(index).methodSignature());
    }
    return methods;
}

} // namespace

class TestServiceForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { opened.reset(); }

    void interfaceHasItsOrder();
    void titleAndKindOfWindow();
    void buttonsHaveTheirTexts_data();
    void buttonsHaveTheirTexts();
    void rowsHaveTheirLabels_data();
    void rowsHaveTheirLabels();
    void choicesHoldTheirEntries();
    void positionHasItsRange();
    void stagesAreNotHeldTogether();
    void rowsOfValuesStandInRow26();
    void columnsAreAligned();
    void rowsOfValuesTakeTheColumnsOfAnyForm_data();
    void rowsOfValuesTakeTheColumnsOfAnyForm();
    void everythingFitsOnASmallScreen();
    void rateThatTheSearchDoesNotFindIsTold();

private:
    ServiceBench& bench() const { return *opened; }

    std::unique_ptr<ServiceBench> opened;
};

void TestServiceForm::initTestCase()
{
    opened = std::make_unique<ServiceBench>(steadyController());
    QVERIFY(opened->open());
}

void TestServiceForm::interfaceHasItsOrder()
{
    const QMetaObject& object = ServiceDialog::staticMetaObject;
    QCOMPARE(methodsOf(object, QMetaMethod::Signal).first(),
             QString("testButton_Clicked(QString,QString)"));
    QStringList slotNames{"on_buttonGAS_clicked()", "buttonGIN_clicked()", "on_buttonS1S_clicked()",
                          "on_buttonCLS_clicked()"};
    for (const char* command : {"SSH", "CSH", "STF", "CTF"}) {
        for (const QString& name : namesOfEach(command, 3))
            slotNames.append("on_" + name + "_clicked()");
    }
    slotNames += QStringList{"on_buttonSDA_1x_clicked()",
                             "on_buttonSDA_2x_clicked()",
                             "on_buttonSDA_1y_clicked()",
                             "on_buttonSDA_2y_clicked()",
                             "on_buttonClose_clicked()",
                             "on_speed_pushButton_clicked()",
                             "on_clear_pushButton_clicked()",
                             "on_baudrateChange_clicked()",
                             "on_manalPosition_checkBox_clicked(bool)",
                             "on_error_PushButton_clicked()",
                             "on_fram_PushButton_clicked()"};
    QCOMPARE(methodsOf(object, QMetaMethod::Slot), slotNames);
}

void TestServiceForm::titleAndKindOfWindow()
{
    QCOMPARE(bench().dialog.windowTitle(), QString("Operation Tests Qor-Digital"));
    QCOMPARE(bench().dialog.objectName(), QString("servicedialog"));
    QVERIFY(!bench().dialog.isModal());
    QVERIFY(!bench().dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

void TestServiceForm::buttonsHaveTheirTexts_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const QString& name, const QString& text) {
        QTest::newRow(qPrintable(name)) << text;
    };
    row("buttonGIN_1", "GIN 1");
    for (const char* command : {"GAS", "S1S", "CLS"})
        row(QStringLiteral("button%1").arg(command), command);
    for (const QString command : {"SSH", "CSH", "STF", "CTF"}) {
        for (const QString number : {"1", "2", "3"})
            row("button" + command + '_' + number, command + ' ' + number);
    }
    row("buttonSDA_1x", "SDA 1 x");
    row("buttonSDA_2x", "SDA 2 x");
    row("buttonSDA_1y", "SDA 1 y");
    row("buttonSDA_2y", "SDA 2 y");
    row("error_PushButton", "Error");
    row("fram_PushButton", "FRAM");
    row("baudrateChange", "Apply");
    row("speed_pushButton", "Start");
    row("clear_pushButton", "Clear");
    row("buttonClose", "Close");
    for (const QString what : {"pFactor1", "pFactor2", "sensitivity1", "sensitivity2"}) {
        for (const QString value : {"5000", "2500", "100"})
            row(what + '_' + value, value + "mV");
    }
    for (const QString place : {"1X", "1Y", "2X", "2Y"})
        row("adjustIn" + place, place);
}

void TestServiceForm::buttonsHaveTheirTexts()
{
    const auto& button = bench().find<QPushButton>(QTest::currentDataTag());
    QTEST(button.text(), "text");
    QVERIFY(button.isVisible());
}

void TestServiceForm::rowsHaveTheirLabels_data()
{
    QTest::addColumn<QByteArray>("button");
    const auto row = [](const char* label, const char* button) {
        QTest::newRow(label) << QByteArray(button);
    };
    row("Get Intensity", "buttonGIN_1");
    row("Get Active Signal", "buttonGAS");
    row("Get Stream Sample", "buttonS1S");
    row("Clear Live Stream", "buttonCLS");
    row("Start Set+Hold", "buttonSSH_1");
    row("Clear Set+Hold", "buttonCSH_1");
    row("Set Trigger Freeze", "buttonSTF_1");
    row("Clear Trigger Freeze", "buttonCTF_1");
    row("Set Drive Actuator x", "buttonSDA_1x");
    row("Set Drive Actuator y", "buttonSDA_1y");
    row("Test connection speed", "speed_pushButton");
    row("Trouble Shooting", "error_PushButton");
    row("Set p factor stage 1", "pFactor1_5000");
    row("Set p factor stage 2", "pFactor2_5000");
    row("Set sensitivity stage 1", "sensitivity1_5000");
    row("Set sensitivity stage 2", "sensitivity2_5000");
    row("Set Adjust in to -1V ", "adjustIn1X");
    row("", "adjustIn2X");
}

void TestServiceForm::rowsHaveTheirLabels()
{
    QFETCH(QByteArray, button);
    QCOMPARE(rowLabel(bench(), button), QString(QTest::currentDataTag()));
}

void TestServiceForm::choicesHoldTheirEntries()
{
    const auto entriesOf = [this](const char* name) {
        const auto& box = bench().find<QComboBox>(name);
        QStringList entries;
        for (int index = 0; index < box.count(); ++index)
            entries.append(box.itemText(index));
        return entries;
    };
    QCOMPARE(entriesOf("comboBox"), QStringList({"115200", "460800", "921600"}));
    QCOMPARE(entriesOf("Drive_position"), QStringList({"0 ", "+2500", "-2500"}));
}

void TestServiceForm::positionHasItsRange()
{
    const auto& box = bench().find<QSpinBox>("drive_spinBox");
    QCOMPARE(box.minimum(), -5000);
    QCOMPARE(box.maximum(), 5000);
    QVERIFY(!box.isEnabled());
}

void TestServiceForm::stagesAreNotHeldTogether()
{
    const auto isShut = [this](const char* name) {
        return !bench().find<QPushButton>(name).isEnabled();
    };
    QVERIFY(isShut("buttonSSH_3"));
    QVERIFY(isShut("buttonCSH_3"));
    QVERIFY(bench().click("buttonGIN_1"));
    QVERIFY(isShut("buttonSSH_3"));
    QVERIFY(isShut("buttonCSH_3"));
}

void TestServiceForm::rowsOfValuesStandInRow26()
{
    auto* layout = qobject_cast<QGridLayout*>(bench().dialog.layout());
    QVERIFY(layout);
    QLayoutItem* item = layout->itemAtPosition(26, 0);
    QVERIFY(item);
    int row = 0;
    int column = 0;
    int rowSpan = 0;
    int columnSpan = 0;
    layout->getItemPosition(layout->indexOf(item->layout()), &row, &column, &rowSpan, &columnSpan);
    QCOMPARE((QVector<int>{row, column, rowSpan, columnSpan}), (QVector<int>{26, 0, 1, 4}));

    auto* rows = qobject_cast<QGridLayout*>(item->layout());
    QVERIFY(rows);
    const auto textAt = [rows](int r, int c) {
        return qobject_cast<QLabel*>(rows->itemAtPosition(r, c)->widget())->text();
    };
    QCOMPARE(textAt(1, 0), QString("Set p factor stage 1"));
    QCOMPARE(textAt(4, 0), QString("Set sensitivity stage 2"));
    QCOMPARE(textAt(5, 0), QString("Set Adjust in to -1V "));
    const QFont font = rows->itemAtPosition(1, 0)->widget()->font();
    QCOMPARE(font.family(), QString("Sans Serif"));
    QCOMPARE(font.pointSize(), 11);
}

void TestServiceForm::columnsAreAligned()
{
    const auto sidesOf = [this](const char* name) {
        const QRect place = bench().find<QPushButton>(name).geometry();
        return QPoint(place.left(), place.right());
    };
    QCOMPARE(sidesOf("pFactor1_5000"), sidesOf("buttonGIN_1"));
    QCOMPARE(sidesOf("pFactor1_2500"), sidesOf("buttonSSH_2"));
    QCOMPARE(sidesOf("pFactor1_100"), sidesOf("buttonSSH_3"));
    QCOMPARE(sidesOf("adjustIn2Y"), sidesOf("buttonSDA_2y"));
}

void TestServiceForm::rowsOfValuesTakeTheColumnsOfAnyForm_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("button");
    const QString wide(80, 'm');
    QTest::newRow("narrow") << "m"
                            << "m";
    QTest::newRow("wide label") << wide << "m";
    QTest::newRow("wide button") << "m" << wide;
}

void TestServiceForm::rowsOfValuesTakeTheColumnsOfAnyForm()
{
    QFETCH(QString, label);
    QFETCH(QString, button);
    QWidget window;
    QGridLayout form(&window);
    form.addWidget(new QLabel(label, &window), 0, 0);
    QPushButton first(button, &window);
    QPushButton third(QStringLiteral("m"), &window);
    form.addWidget(&first, 0, 1);
    form.addWidget(&third, 0, 3);
    const ValueRows rows(window, form);
    // As in the dialog, what is left goes elsewhere.
    form.setColumnStretch(4, 1);
    form.activate();
    const auto sidesOf = [](const QPushButton& each) {
        return QPoint(each.geometry().left(), each.geometry().right());
    };
    QCOMPARE(sidesOf(*rows.buttons()[0]), sidesOf(first));
    QCOMPARE(sidesOf(*rows.buttons()[2]), sidesOf(third));
    QCOMPARE(first.width(), third.width());
}

/// With room for the frame of the window and a bar of the desktop.
void TestServiceForm::everythingFitsOnASmallScreen()
{
    const QSize needed = bench().dialog.minimumSizeHint();
    QVERIFY2(needed.width() <= 1280 && needed.height() <= 740,
             qPrintable(QStringLiteral("%1 x %2").arg(needed.width()).arg(needed.height())));
}

void TestServiceForm::rateThatTheSearchDoesNotFindIsTold()
{
    for (const char* name : {"comboBox", "baudrateChange"})
        QVERIFY(bench().find<QWidget>(name).toolTip().contains("At 460800 the search"));
}

QTEST_MAIN(TestServiceForm)
#include "tst_serviceform.moc"
