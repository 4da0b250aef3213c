#include "setup/colors.h"
#include "support/logcapture.h"

#include <QtTest>

class TestColors final : public QObject
{
    Q_OBJECT

private slots:
    void aNameBecomesItsColour_data();
    void aNameBecomesItsColour();
    void aNameThatMeansNoColourIsTakenInSilence_data();
    void aNameThatMeansNoColourIsTakenInSilence();
    void aColourIsNamedByItsThreeParts();
    void aColourThatWasNeverSetHasNoName();
};

void TestColors::aNameBecomesItsColour_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QColor>("color");
    QTest::newRow("three parts") << "#010203" << QColor(1, 2, 3);
    QTest::newRow("capitals") << "#AABBCC" << QColor(0xaa, 0xbb, 0xcc);
    QTest::newRow("a word") << "red" << QColor(Qt::red);
}

void TestColors::aNameBecomesItsColour()
{
    QFETCH(QString, name);
    QFETCH(QColor, color);
    QCOMPARE(toColor(name), color);
}

void TestColors::aNameThatMeansNoColourIsTakenInSilence_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("unknown word") << "nonesuch";
    QTest::newRow("too short") << "#0";
}

void TestColors::aNameThatMeansNoColourIsTakenInSilence()
{
    QFETCH(QString, name);
    const LogCapture log;
    QVERIFY(!toColor(name).isValid());
    QCOMPARE(log.lines(), QStringList());
}

void TestColors::aColourIsNamedByItsThreeParts()
{
    QCOMPARE(toName(Qt::darkGreen), QStringLiteral("#008000"));
    QCOMPARE(toName(QColor(1, 2, 3, 4)), QStringLiteral("#010203"));
}

void TestColors::aColourThatWasNeverSetHasNoName()
{
    QCOMPARE(toName(QColor()), QString());
}

QTEST_GUILESS_MAIN(TestColors)
#include "tst_colors.moc"
