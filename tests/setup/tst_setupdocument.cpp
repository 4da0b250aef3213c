// Reading the XML of a setup file.

#include "setup/setupdocument.h"
#include "setupxml.h"

#include <QtTest>

using setupxml::file;
using setupxml::onlyRecord;
using setupxml::wholeDevice;

class TestSetupDocument final : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldOfADeviceIsRead();
    void aSerialDeviceTakesTheBaudRate();
    void missingAttributesReadAsNothing_data();
    void missingAttributesReadAsNothing();
    void missingElementsLeaveTheDefaults();
    void anyChildOfTheRootIsADevice();
    void aGroupIsReadAsANumber_data();
    void aGroupIsReadAsANumber();
    void subsystemColorsReadLikeDisplayColors();
    void commonColorsAreRead();
    void aRootWithoutDevicesIsAnEmptySetup();
    void badInputIsNoSetup_data();
    void badInputIsNoSetup();
    void anOverlongTextIsTold_data();
    void anOverlongTextIsTold();
    void firstOverlongTextIsToldWithItsSizes();
    void anErrorTellsItsPlace();
};

void TestSetupDocument::everyFieldOfADeviceIsRead()
{
    const ConnectionSettings record = onlyRecord(file(wholeDevice));

    QCOMPARE(record.type, ConnectionType::Tcp);
    QCOMPARE(record.name.text(), QStringLiteral("127.0.0.5"));
    QCOMPARE(record.label.text(), QStringLiteral("left_arm"));
    QCOMPARE(record.id.text(), QStringLiteral("Zev-V40-000000AB000000001-x"));
    QCOMPARE(record.baudRateOrPort, 2001);
    QVERIFY(record.autoConnect);
    QCOMPARE(record.serial.text(), QStringLiteral("AB000000001"));
    QCOMPARE(record.colorX, QStringLiteral("#010203"));
    QCOMPARE(record.colorY, QStringLiteral("#aabbcc"));
    QCOMPARE(record.colorI, QStringLiteral("#00ff00"));
    QVERIFY(record.pulsedLaser);
    QCOMPARE(record.model, (std::array<int, 2>{1, 5}));
    QCOMPARE(record.beamDiameter, (std::array<double, 2>{250.5, 12.25}));
    QCOMPARE(record.calculation, (std::array<int, 2>{0, 1}));
    QCOMPARE(record.group, 0);
    QVERIFY(record.commonColorX.isEmpty());
}

void TestSetupDocument::aSerialDeviceTakesTheBaudRate()
{
    const ConnectionSettings record = onlyRecord(
        file("<D><Settings type=\"0\" port=\"2001\" baudrate=\"115200\" id=\"x\"/></D>"));
    QCOMPARE(record.type, ConnectionType::Serial);
    QCOMPARE(record.baudRateOrPort, 115200);
}

void TestSetupDocument::missingAttributesReadAsNothing_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("Settings") << QByteArray("<Settings/>");
    QTest::newRow("Settings that are no numbers")
        << QByteArray("<Settings type=\"one\" autoConnect=\"yes\" baudrate=\"fast\"/>");
    QTest::newRow("Detector1") << QByteArray("<Detector1/>");
    QTest::newRow("Detector2") << QByteArray("<Detector2/>");
    QTest::newRow("General") << QByteArray("<General/>");
    QTest::newRow("DisplayColors") << QByteArray("<DisplayColors/>");
}

void TestSetupDocument::missingAttributesReadAsNothing()
{
    QFETCH(QByteArray, part);
    const ConnectionSettings record = onlyRecord(file("<Device_K>" + part + "</Device_K>"));

    QCOMPARE(record.type, ConnectionType::Serial);
    QCOMPARE(record.baudRateOrPort, 0);
    QVERIFY(!record.autoConnect);
    QVERIFY(record.id.isEmpty());
    QVERIFY(record.colorX.isEmpty());
    QVERIFY(!record.pulsedLaser);
    // A detector without attributes has the diameter 0, not the default one.
    QCOMPARE(record.beamDiameter[0], part.contains("Detector1") ? 0.0 : 50.0);
    QCOMPARE(record.beamDiameter[1], part.contains("Detector2") ? 0.0 : 50.0);
    QCOMPARE(record.serial.text(), part.contains("General") ? QStringLiteral("K") : QString());
}

void TestSetupDocument::missingElementsLeaveTheDefaults()
{
    const ConnectionSettings record =
        onlyRecord(file("<Device_K><Settings id=\"abc\" type=\"1\"/></Device_K>"));
    QVERIFY(record.serial.isEmpty());
    QCOMPARE(record.beamDiameter, (std::array<double, 2>{50.0, 50.0}));
    QCOMPARE(record.model, (std::array<int, 2>{0, 0}));
    QVERIFY(!record.pulsedLaser);
}

void TestSetupDocument::anyChildOfTheRootIsADevice()
{
    const auto content = setupdocument::read(
        file("<Whatever><Settings id=\"a\"/></Whatever><!-- none --><Device_B/>"));
    QVERIFY(content);
    QCOMPARE(content->records.size(), 3);
    QCOMPARE(content->records.at(0).id.text(), QStringLiteral("a"));
    QVERIFY(content->records.at(1).id.isEmpty());
}

void TestSetupDocument::aGroupIsReadAsANumber_data()
{
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<int>("group");
    QTest::newRow("none") << QByteArray() << 0;
    QTest::newRow("3") << QByteArray("group=\"3\"") << 3;
    QTest::newRow("false") << QByteArray("group=\"false\"") << 0;
    QTest::newRow("no number") << QByteArray("group=\"many\"") << 0;
}

void TestSetupDocument::aGroupIsReadAsANumber()
{
    QFETCH(QByteArray, attribute);
    QFETCH(int, group);
    QCOMPARE(onlyRecord(file("<D><Settings " + attribute + "/></D>")).group, group);
}

void TestSetupDocument::subsystemColorsReadLikeDisplayColors()
{
    const QByteArray colors = "Colors colorX=\"#112233\" colorY=\"#445566\" colorI=\"red\"/></D>";
    const ConnectionSettings old = onlyRecord(file("<D><Subsystem" + colors));
    const ConnectionSettings now = onlyRecord(file("<D><Display" + colors));
    QCOMPARE(old.colorX, QStringLiteral("#112233"));
    QCOMPARE(old.colorX, now.colorX);
    QCOMPARE(old.colorY, now.colorY);
    QCOMPARE(old.colorI, QStringLiteral("red"));
    QCOMPARE(old.colorI, now.colorI);

    const QByteArray saved = setupdocument::connections({old});
    QVERIFY(saved.contains("<DisplayColors"));
    QVERIFY(!saved.contains("SubsystemColors"));
}

void TestSetupDocument::commonColorsAreRead()
{
    const ConnectionSettings record = onlyRecord(
        file("<D><CommonColors colorX=\"#000001\" colorY=\"#000002\" colorI=\"#000003\"/></D>"));
    QCOMPARE(record.commonColorX, QStringLiteral("#000001"));
    QCOMPARE(record.commonColorY, QStringLiteral("#000002"));
    QCOMPARE(record.commonColorI, QStringLiteral("#000003"));
    QVERIFY(record.colorX.isEmpty());
}

void TestSetupDocument::aRootWithoutDevicesIsAnEmptySetup()
{
    const auto content = setupdocument::read("<Zev_Lumetra/>");
    QVERIFY(content);
    QVERIFY(content->records.isEmpty());
    QVERIFY(!content->misfit);
}

void TestSetupDocument::badInputIsNoSetup_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << file(wholeDevice).left(300);
    QTest::newRow("not XML") << QByteArray("label=left_arm\n");
    QTest::newRow("noise") << QByteArray("\x00\xff\x13\x80<<", 6);
    QTest::newRow("other root") << QByteArray("<Setup><Device_A/></Setup>");
    QTest::newRow("two roots") << QByteArray("<Zev_Lumetra/><Zev_Lumetra/>");
}

void TestSetupDocument::badInputIsNoSetup()
{
    QFETCH(QByteArray, xml);
    QVERIFY(!setupdocument::read(xml));
    QVERIFY(!setupdocument::isReadable(xml));
}

void TestSetupDocument::anOverlongTextIsTold_data()
{
    QTest::addColumn<QByteArray>("device");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("element");
    QTest::addColumn<bool>("fits");
    const QByteArray most(63, 'w');
    for (const char* name : {"label", "id", "name"}) {
        const auto settings = [name](const QByteArray& text) -> QByteArray {
            return QByteArray("<Device_A><Settings ") + name + "=\"" + text + "\"/></Device_A>";
        };
        const QString where = QStringLiteral("Device_A/Settings");
        QTest::addRow("%s of 63", name) << settings(most) << QString(name) << where << true;
        QTest::addRow("%s of 64", name) << settings(most + 'w') << QString(name) << where << false;
        QTest::addRow("%s of 32 letters of two bytes", name)
            << settings(QByteArray("\xc3\xa4").repeated(32)) << QString(name) << where << false;
    }
    QTest::newRow("key of 11") << QByteArray("<Device_12345678901><General/></Device_12345678901>")
                               << QString() << QString() << true;
    QTest::newRow("key of 12") << QByteArray(
        "<Device_123456789012><General/></Device_123456789012>")
                               << QStringLiteral("key in the tag")
                               << QStringLiteral("Device_123456789012") << false;
}

void TestSetupDocument::anOverlongTextIsTold()
{
    QFETCH(QByteArray, device);
    QFETCH(QString, attribute);
    QFETCH(QString, element);
    QFETCH(bool, fits);
    const auto content = setupdocument::read(file(device));
    QVERIFY(content);
    QCOMPARE(!content->misfit, fits);
    QCOMPARE(setupdocument::isReadable(file(device)), fits);
    if (!fits) {
        QCOMPARE(content->misfit->attribute, attribute);
        QCOMPARE(content->misfit->element, element);
    }
}

void TestSetupDocument::anErrorTellsItsPlace()
{
    setupdocument::ReadError error;
    QVERIFY(!setupdocument::read("<Zev_Lumetra>\n <A>\n</Zev_Lumetra>", error));
    QCOMPARE(error.line, 3);
    QVERIFY(error.column > 0);
    QVERIFY(!error.text.isEmpty());
    // Another root is no matter of a place.
    QVERIFY(!setupdocument::read("<Root/>", error));
    QCOMPARE(error.line, 0);
    QVERIFY2(error.text.contains("\"Root\""), qPrintable(error.text));
}

void TestSetupDocument::firstOverlongTextIsToldWithItsSizes()
{
    const auto content =
        setupdocument::read(file("<Device_A><Settings name=\"" + QByteArray(70, 'w') + "\" label=\""
                                 + QByteArray(80, 'w') + "\"/></Device_A>"));
    QVERIFY(content && content->misfit);
    QCOMPARE(content->misfit->attribute, QStringLiteral("name"));
    QCOMPARE(content->misfit->bytes, 70);
    QCOMPARE(content->misfit->capacity, 63);
}

QTEST_GUILESS_MAIN(TestSetupDocument)
#include "tst_setupdocument.moc"
