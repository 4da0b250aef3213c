#include "controls/stagelook.h"
#include "stagebench.h"

#include <QtTest>

class TestStageSwitch final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench = std::make_unique<StageBench>(); }
    void cleanup() { bench.reset(); }

    void newSwitchIsOffAndInactive();
    void switchedOnItIsGreenAndChecked();
    void switchedOffItIsRedAndUnchecked();
    void activeStageHasAGreenLight();
    void stateOfTheControllerIsShown_data();
    void stateOfTheControllerIsShown();
    void whatShowsTheStateAlreadyIsLeftAlone();
    void clickAloneIsCorrectedByTheState();
    void clickChangesOnlyWhatIsWanted();
    void itIsEnabledAndDisabled();

private:
    StageSwitch& stageSwitch() const { return bench->stages[0].stabilisation(); }
    StageForm& form() const { return bench->forms[0]; }
    QRgb lightColor() const;

    std::unique_ptr<StageBench> bench;
};

QRgb TestStageSwitch::lightColor() const
{
    const QImage picture = form().activeIcon.pixmap(Qt::ReturnByValue).toImage();
    return picture.pixel(picture.rect().center());
}

void TestStageSwitch::newSwitchIsOffAndInactive()
{
    QCOMPARE(form().stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(form().activeText.text(), QStringLiteral("Inactive"));
    QVERIFY(!stageSwitch().isWantedOn());
}

void TestStageSwitch::switchedOnItIsGreenAndChecked()
{
    stageSwitch().showOn(true);
    QCOMPARE(form().stabilisation.text(), QStringLiteral("ON"));
    QCOMPARE(form().stabilisation.palette().color(QPalette::Button),
             stabilisationPalette(true).color(QPalette::Button));
    QVERIFY(stageSwitch().isWantedOn());
}

void TestStageSwitch::switchedOffItIsRedAndUnchecked()
{
    stageSwitch().showOn(true);
    stageSwitch().showOn(false);
    QCOMPARE(form().stabilisation.text(), QStringLiteral("OFF"));
    QCOMPARE(form().stabilisation.palette().color(QPalette::Button),
             stabilisationPalette(false).color(QPalette::Button));
    QVERIFY(!stageSwitch().isWantedOn());
}

void TestStageSwitch::activeStageHasAGreenLight()
{
    stageSwitch().showActive(true);
    QCOMPARE(form().activeText.text(), QStringLiteral("Active"));
    QVERIFY(qGreen(lightColor()) > qRed(lightColor()));
    stageSwitch().showActive(false);
    QCOMPARE(form().activeText.text(), QStringLiteral("Inactive"));
    QVERIFY(qRed(lightColor()) > qGreen(lightColor()));
}

void TestStageSwitch::stateOfTheControllerIsShown_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<bool>("active");
    QTest::newRow("off") << false << false;
    QTest::newRow("on") << true << false;
    QTest::newRow("on and active") << true << true;
    QTest::newRow("off and active") << false << true;
}

void TestStageSwitch::stateOfTheControllerIsShown()
{
    QFETCH(bool, on);
    QFETCH(bool, active);
    for (const bool before : {false, true}) {
        stageSwitch().showOn(before);
        stageSwitch().showActive(before);
        stageSwitch().showState(on, active);
        QCOMPARE(form().stabilisation.text(), on ? QString("ON") : QString("OFF"));
        QCOMPARE(form().stabilisation.isChecked(), on);
        QCOMPARE(form().activeText.text(), active ? QString("Active") : QString("Inactive"));
    }
}

void TestStageSwitch::whatShowsTheStateAlreadyIsLeftAlone()
{
    // Loading a picture at every tick would cost more than the samples.
    stageSwitch().showState(true, true);
    form().stabilisation.setPalette(QPalette(Qt::blue));
    form().activeIcon.setPixmap(QPixmap());
    stageSwitch().showState(true, true);
    QCOMPARE(form().stabilisation.palette().color(QPalette::Button), QColor(Qt::blue));
    QVERIFY(form().activeIcon.pixmap(Qt::ReturnByValue).isNull());
}

void TestStageSwitch::clickAloneIsCorrectedByTheState()
{
    form().stabilisation.click();
    QVERIFY(stageSwitch().isWantedOn());
    stageSwitch().showState(false, false);
    QVERIFY(!stageSwitch().isWantedOn());
}

void TestStageSwitch::clickChangesOnlyWhatIsWanted()
{
    form().stabilisation.click();
    QVERIFY(stageSwitch().isWantedOn());
    QCOMPARE(form().stabilisation.text(), QStringLiteral("OFF"));
}

void TestStageSwitch::itIsEnabledAndDisabled()
{
    stageSwitch().setEnabled(false);
    QVERIFY(!form().stabilisation.isEnabled());
    stageSwitch().setEnabled(true);
    QVERIFY(form().stabilisation.isEnabled());
}

QTEST_MAIN(TestStageSwitch)
#include "tst_stageswitch.moc"
