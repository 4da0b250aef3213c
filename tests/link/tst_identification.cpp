#include "link/identification.h"
#include "support/emulatedlink.h"

#include <QtTest>

namespace {

constexpr QChar micro(0xB5);

QByteArray reply(const QByteArray& text)
{
    return QByteArray("\0;", 2) + text + ';';
}

} // namespace

class TestIdentification : public QObject
{
    Q_OBJECT

private slots:
    void identityIsReadFromTheReply_data();
    void identityIsReadFromTheReply();
    void idIsTheReplyWithoutItsFrame();
    void connectionIsToldWhatTheControllerIs();
    void thirdStopFollowsASilentSecondIfAsked_data();
    void thirdStopFollowsASilentSecondIfAsked();
    void labelIsStoredInTheLocalEncoding_data();
    void labelIsStoredInTheLocalEncoding();
};

void TestIdentification::identityIsReadFromTheReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isController");
    QTest::addColumn<int>("firmware");
    QTest::addColumn<bool>("vm");
    QTest::addColumn<bool>("trigger");

    QTest::newRow("plain") << reply("Zev-Box-B-0001-V40-2020") << true << 40 << false << false;
    QTest::newRow("VM") << reply("Zev-Box-B-0001-VM12-2020") << true << 12 << true << false;
    QTest::newRow("trigger capable")
        << reply("Zev-Box-A-0001-V40-x") << true << 40 << false << true;
    QTest::newRow("version at the end") << reply("Zev-Box-B-V9") << true << 0 << false << false;
    QTest::newRow("no version") << reply("Zev-Box-B-0001") << true << 0 << false << false;
    QTest::newRow("other maker") << reply("Abc-Box-B-V40-2020") << false << 40 << false << false;
    QTest::newRow("ends where the trigger mark would be")
        << QByteArray("\0;Zev-Box-", 10) << true << 0 << false << false;
    QTest::newRow("refusal") << QByteArray("\x01;") << false << 0 << false << false;
    QTest::newRow("empty") << QByteArray() << false << 0 << false << false;
    QTest::newRow("no separator") << QByteArray("\0xZev-V40-;", 11) << false << 40 << false
                                  << false;
}

void TestIdentification::identityIsReadFromTheReply()
{
    QFETCH(QByteArray, bytes);
    const ControllerIdentity identity = readIdentity(bytes);
    QTEST(identity.isController, "isController");
    QTEST(identity.firmwareVersion, "firmware");
    QTEST(identity.vmFirmware, "vm");
    QTEST(identity.triggerCapable, "trigger");
}

void TestIdentification::idIsTheReplyWithoutItsFrame()
{
    QCOMPARE(readIdentity(reply("Zev-Box-B-0001-V40-2020")).id,
             QStringLiteral("Zev-Box-B-0001-V40-2020"));
}

void TestIdentification::connectionIsToldWhatTheControllerIs()
{
    emulator::ControllerOptions options;
    options.firmware = 33;
    options.vm = true;
    options.triggerCapable = true;
    EmulatedLink link(options);
    QVERIFY(link.connect());
    QVERIFY(identify(link.client, LineClearing::TwoStops).isController);
    QCOMPARE(link.client.firmwareVersion(), 33);
    QVERIFY(link.client.vmFirmware());
    QVERIFY(link.client.triggerCapable());
}

void TestIdentification::thirdStopFollowsASilentSecondIfAsked_data()
{
    QTest::addColumn<bool>("isSilent");
    QTest::addColumn<bool>("repeats");
    QTest::addColumn<int>("stops");
    QTest::newRow("answered, two stops") << false << false << 2;
    QTest::newRow("answered, and repeat") << false << true << 2;
    QTest::newRow("silent, two stops") << true << false << 2;
    QTest::newRow("silent, and repeat") << true << true << 3;
}

void TestIdentification::thirdStopFollowsASilentSecondIfAsked()
{
    QFETCH(bool, isSilent);
    QFETCH(bool, repeats);
    emulator::ControllerOptions options;
    if (isSilent)
        options.faults.silent = {"CLS"};
    constexpr int briefTimeoutMs = 50;
    EmulatedLink link(options, briefTimeoutMs);
    QVERIFY(link.connect());
    clearLine(link.client, repeats ? LineClearing::TwoStopsAndRepeat : LineClearing::TwoStops);
    QTEST(link.controller.commands().count("CLS;"), "stops");
}

void TestIdentification::labelIsStoredInTheLocalEncoding_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QByteArray>("stored");
    const QByteArray letters = "abcdefghijklmnopqrstuvwx";
    QTest::newRow("letters") << QString("left")
                             << QByteArray("left").leftJustified(command::labelLength);
    QTest::newRow("two bytes in UTF-8")
        << QString(micro) << QByteArray("\xc2\xb5").leftJustified(command::labelLength);
    // It is cut by bytes, whatever they stand for.
    QTest::newRow("cut in the middle of a letter") << QString(letters) + micro << letters + '\xc2';
}

void TestIdentification::labelIsStoredInTheLocalEncoding()
{
    QFETCH(QString, label);
    QFETCH(QByteArray, stored);
    EmulatedLink link;
    QVERIFY(link.connect());
    labelController(link.client, label);
    QCOMPARE(link.client.label(), label);
    QCOMPARE(link.controller.commands(), QByteArrayList{"SLA" + stored + ';'});
    QCOMPARE(link.controller.label(), stored);
}

QTEST_GUILESS_MAIN(TestIdentification)
#include "tst_identification.moc"
