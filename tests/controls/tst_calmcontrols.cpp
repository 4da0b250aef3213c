// What a person types into a field with a number, under any locale, and what the wheel does.

#include "controls/calmcombobox.h"
#include "controls/calmspinbox.h"
#include "controls/decimalspinbox.h"
#include "support/wheel.h"

#include <QVBoxLayout>
#include <QtTest>

namespace {

struct Controls
{
    Controls()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(field);
        layout->addWidget(count);
        layout->addWidget(choice);
        layout->addWidget(other);
        choice->addItems({"one", "two"});
        choice->setCurrentIndex(1);
        field->setRange(-5, 5);
        field->setSingleStep(0.1);
        field->setDecimals(3);
        window.show();
        QApplication::setActiveWindow(&window);
        isActive = QTest::qWaitForWindowActive(&window);
    }

    QWidget window;
    DecimalSpinBox* field = new DecimalSpinBox(&window);
    CalmSpinBox* count = new CalmSpinBox(&window);
    CalmComboBox* choice = new CalmComboBox(&window);
    QDoubleSpinBox* other = new QDoubleSpinBox(&window);
    bool isActive = false;
};

} // namespace

class TestCalmControls : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void commaAndPointAreTheSame_data();
    void commaAndPointAreTheSame();
    void numberIsShownWithAPointEverywhere();
    void wheelCountsOnlyWithFocus();
    void wheelChoosesOnlyWithFocus();
    void wheelCountsWholeNumbersOnlyWithFocus();
    void wholeNumberReadsTheSameEverywhere();
};

void TestCalmControls::commaAndPointAreTheSame_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("value");
    const QLocale german(QLocale::German);
    QTest::newRow("point") << QLocale::c() << "2.5" << 2.5;
    QTest::newRow("comma") << QLocale::c() << "2,5" << 2.5;
    QTest::newRow("point, German") << german << "2.5" << 2.5;
    QTest::newRow("comma, German") << german << "2,5" << 2.5;
    QTest::newRow("negative") << german << "-1,25" << -1.25;
    QTest::newRow("a second comma is not taken") << german << "1,2,5" << 1.25;
}

void TestCalmControls::commaAndPointAreTheSame()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, typed);
    QLocale::setDefault(locale);
    Controls controls;
    QVERIFY(controls.isActive);
    controls.field->setFocus();
    controls.field->selectAll();
    QTest::keyClicks(controls.field, typed);
    QTest::keyClick(controls.field, Qt::Key_Return);
    QTEST(controls.field->value(), "value");
}

void TestCalmControls::numberIsShownWithAPointEverywhere()
{
    QLocale::setDefault(QLocale(QLocale::German));
    Controls controls;
    controls.field->setValue(1.5);
    QCOMPARE(controls.field->text(), QString("1.500"));
}

void TestCalmControls::wheelCountsOnlyWithFocus()
{
    Controls controls;
    QVERIFY(controls.isActive);
    // By the wheel alone the field does not get the focus.
    QCOMPARE(controls.field->focusPolicy(), Qt::StrongFocus);
    controls.other->setFocus();
    turnWheel(*controls.field);
    QCOMPARE(controls.field->value(), 0.0);

    controls.field->setFocus();
    turnWheel(*controls.field);
    QCOMPARE(controls.field->value(), 0.1);
}

void TestCalmControls::wheelChoosesOnlyWithFocus()
{
    Controls controls;
    QVERIFY(controls.isActive);
    QCOMPARE(controls.choice->focusPolicy(), Qt::StrongFocus);
    controls.other->setFocus();
    turnWheel(*controls.choice);
    QCOMPARE(controls.choice->currentIndex(), 1);

    controls.choice->setFocus();
    turnWheel(*controls.choice);
    QCOMPARE(controls.choice->currentIndex(), 0);
}

void TestCalmControls::wheelCountsWholeNumbersOnlyWithFocus()
{
    Controls controls;
    QVERIFY(controls.isActive);
    QCOMPARE(controls.count->focusPolicy(), Qt::StrongFocus);
    controls.other->setFocus();
    turnWheel(*controls.count);
    QCOMPARE(controls.count->value(), 0);

    controls.count->setFocus();
    turnWheel(*controls.count);
    QCOMPARE(controls.count->value(), 1);
}

void TestCalmControls::wholeNumberReadsTheSameEverywhere()
{
    const QLocale arabicDigits(QLocale::Arabic, QLocale::Egypt);
    QVERIFY(arabicDigits.toString(12) != "12");
    QLocale::setDefault(arabicDigits);
    Controls controls;
    controls.count->setValue(12);
    QCOMPARE(controls.count->text(), QString("12"));
}

QTEST_MAIN(TestCalmControls)
#include "tst_calmcontrols.moc"
