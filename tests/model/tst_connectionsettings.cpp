#include "model/connectionsettings.h"

#include <QtTest>

class TestConnectionSettings : public QObject
{
    Q_OBJECT

private slots:
    void deviceKeyIsCharacters14To24();
    void shortIdGivesItsLastElevenCharacters();
    void textOf63BytesFitsAndOf64DoesNot();
    void textIsCountedInBytes();
    void textComesBackAsStored();
    void recordsOfOneDeviceAreEqual();
};

void TestConnectionSettings::deviceKeyIsCharacters14To24()
{
    const QString id = QStringLiteral("0123456789abcdKEY45678901-V40-rest");
    QCOMPARE(deviceKey(id), QStringLiteral("KEY45678901"));
}

void TestConnectionSettings::shortIdGivesItsLastElevenCharacters()
{
    QCOMPARE(deviceKey(QStringLiteral("0123456789ABCDEF")), QStringLiteral("56789ABCDEF"));
    QCOMPARE(deviceKey(QStringLiteral("short")), QStringLiteral("short"));
    QCOMPARE(deviceKey(QString()), QString());
}

void TestConnectionSettings::textOf63BytesFitsAndOf64DoesNot()
{
    QVERIFY(FixedText<64>::fits(QString(63, QLatin1Char('a'))));
    QVERIFY(!FixedText<64>::fits(QString(64, QLatin1Char('a'))));
}

void TestConnectionSettings::textIsCountedInBytes()
{
    QVERIFY(FixedText<12>::fits(QString(5, QChar(0x00b5))));
    QVERIFY(!FixedText<12>::fits(QString(6, QChar(0x00b5))));
}

void TestConnectionSettings::textComesBackAsStored()
{
    FixedText<64> text;
    QVERIFY(text.isEmpty());
    text.set(QStringLiteral("a long text"));
    text.set(QStringLiteral("table_3 µm"));
    QCOMPARE(text.text(), QStringLiteral("table_3 µm"));
    QVERIFY(!text.isEmpty());
}

void TestConnectionSettings::recordsOfOneDeviceAreEqual()
{
    ConnectionSettings a;
    ConnectionSettings b;
    a.serial.set(QStringLiteral("SN000000001"));
    b.serial.set(QStringLiteral("SN000000001"));
    b.label.set(QStringLiteral("other label"));
    QVERIFY(a == b);

    b.serial.set(QStringLiteral("SN000000002"));
    QVERIFY(!(a == b));
}

QTEST_GUILESS_MAIN(TestConnectionSettings)
#include "tst_connectionsettings.moc"
