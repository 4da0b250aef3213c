#include "records.h"
#include "setup/setupdocument.h"

#include <QDomDocument>
#include <QtTest>

namespace {

using records::idWithKey;
using setupdocument::Content;

QByteArray file(const QByteArray& devices)
{
    return "<!DOCTYPE SetupML>\n<Zev_Lumetra>\n" + devices + "</Zev_Lumetra>\n";
}

const char wholeDevice[] = R"( <Device_AB000000001>
  <General pulsedLaser="1"/>
  <Detector2 calculation="1" model="5" beamDiameter="12.25"/>
  <Detector1 beamDiameter="250.5" model="1" calculation="0"/>
  <Unknown name="ignored"/>
  <DisplayColors colorX="#010203" colorY="#aabbcc" colorI="#00ff00"/>
  <Settings id="Zev-V40-000000AB000000001-x" port="2001" baudrate="7" autoConnect="1" label="left_arm" type="1" name="127.0.0.5"/>
 </Device_AB000000001>
)";

ConnectionSettings onlyRecord(const QByteArray& xml)
{
    const std::optional<Content> content = setupdocument::read(xml);
    return content && content->records.size() == 1 ? content->records.first()
                                                   : ConnectionSettings();
}

QDomElement elementIn(const QByteArray& xml, const QString& device, const QString& part)
{
    QDomDocument document;
    document.setContent(xml);
    return document.documentElement().firstChildElement(device).firstChildElement(part);
}

QStringList childTags(const QDomElement& element)
{
    QStringList tags;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        tags.append(child.tagName());
    return tags;
}

} // namespace

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
    void connectionsHaveTheLaidDownForm();
    void aNumberIsWrittenAsWhatItMeans_data();
    void aNumberIsWrittenAsWhatItMeans();
    void neitherGroupNorCommonColorsSurvive();
    void anUnsetColourComesBackBlack();
    void textsWithMarkupComeBackWhole();
    void twoRecordsOfOneDeviceMakeTwoElements();
    void aFullDocumentComesBackAsItWas();

    void detectorsOfAnEmptyFileMakeARootAndAllDevices();
    void fileOfNoBytesIsAnEmptyFile();
    void detectorsChangeNothingElse();
    void detectorPartsThatAreMissingStayMissing();
    void detectorsGoToEveryElementOfTheDevice();
    void detectorsFollowTheOtherParts();
    void detectorsOfABrokenFileAreRefused();
    void aKeyThatIsNoTagIsNotReadable();
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

void TestSetupDocument::connectionsHaveTheLaidDownForm()
{
    const QByteArray xml = setupdocument::connections(
        {records::tcp("AB000000001", "left"), records::serial("CD000000002", "right")});

    QVERIFY2(xml.startsWith("<!DOCTYPE SetupML>\n<Zev_Lumetra>\n <Device_AB000000001>\n  <"),
             xml.constData());
    QDomDocument document;
    QVERIFY(document.setContent(xml));
    QCOMPARE(document.doctype().name(), QStringLiteral("SetupML"));
    QCOMPARE(childTags(document.documentElement()),
             QStringList({"Device_AB000000001", "Device_CD000000002"}));
    QCOMPARE(childTags(document.documentElement().firstChildElement()),
             QStringList({"Settings", "DisplayColors"}));

    const QDomElement settings = elementIn(xml, "Device_AB000000001", "Settings");
    QCOMPARE(settings.attribute("name"), QStringLiteral("127.0.0.9"));
    QCOMPARE(settings.attribute("type"), QStringLiteral("1"));
    QCOMPARE(settings.attribute("label"), QStringLiteral("left"));
    QCOMPARE(settings.attribute("id"), idWithKey("AB000000001"));
    QCOMPARE(settings.attribute("autoConnect"), QStringLiteral("1"));
    const QDomElement colors = elementIn(xml, "Device_AB000000001", "DisplayColors");
    QCOMPARE(colors.attribute("colorX"), QStringLiteral("#ff0000"));
    QCOMPARE(colors.attribute("colorY"), QStringLiteral("#008000"));
    QCOMPARE(colors.attribute("colorI"), QStringLiteral("#0000ff"));
}

void TestSetupDocument::aNumberIsWrittenAsWhatItMeans_data()
{
    QTest::addColumn<bool>("tcp");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("absent");
    QTest::newRow("TCP") << true << "port"
                         << "baudrate";
    QTest::newRow("serial") << false << "baudrate"
                            << "port";
}

void TestSetupDocument::aNumberIsWrittenAsWhatItMeans()
{
    QFETCH(bool, tcp);
    QFETCH(QString, written);
    QFETCH(QString, absent);
    const QByteArray xml = setupdocument::connections(
        {tcp ? records::tcp("AB000000001", "a") : records::serial("AB000000001", "a")});
    const QDomElement settings = elementIn(xml, "Device_AB000000001", "Settings");
    QCOMPARE(settings.attribute(written), tcp ? QString("2000") : QString("921600"));
    QVERIFY(!settings.hasAttribute(absent));
}

void TestSetupDocument::neitherGroupNorCommonColorsSurvive()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.group = 3;
    record.commonColorX = QStringLiteral("#00ffff");
    const ConnectionSettings back = onlyRecord(setupdocument::connections({record}));
    QCOMPARE(back.group, 0);
    QVERIFY(back.commonColorX.isEmpty());
}

void TestSetupDocument::anUnsetColourComesBackBlack()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.colorI.clear();
    QCOMPARE(onlyRecord(setupdocument::connections({record})).colorI, QStringLiteral("#000000"));
}

void TestSetupDocument::textsWithMarkupComeBackWhole()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    const QString text = QString::fromUtf8(" <a b=\"c\"> & 'd'\tµ \n");
    record.label.set(text);
    QCOMPARE(onlyRecord(setupdocument::connections({record})).label.text(), text);
}

void TestSetupDocument::twoRecordsOfOneDeviceMakeTwoElements()
{
    const auto content = setupdocument::read(setupdocument::connections(
        {records::tcp("AB000000001", "a"), records::tcp("AB000000001", "b")}));
    QVERIFY(content);
    QCOMPARE(content->records.size(), 2);
    QCOMPARE(content->records.at(1).label.text(), QStringLiteral("b"));
}

void TestSetupDocument::aFullDocumentComesBackAsItWas()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.pulsedLaser = true;
    record.model = {2, 4};
    record.beamDiameter = {0.1, 12345.678};
    record.calculation = {1, 0};
    const auto xml = setupdocument::withDetectors(setupdocument::connections({record}), {record});
    QVERIFY(xml);
    const ConnectionSettings back = onlyRecord(*xml);
    QCOMPARE(back.serial.text(), QStringLiteral("AB000000001"));
    QCOMPARE(back.pulsedLaser, true);
    QCOMPARE(back.model, record.model);
    QCOMPARE(back.beamDiameter, record.beamDiameter);
    QCOMPARE(back.calculation, record.calculation);
    QCOMPARE(back.autoConnect, true);
}

void TestSetupDocument::detectorsOfAnEmptyFileMakeARootAndAllDevices()
{
    const auto xml = setupdocument::withDetectors(
        {}, {records::tcp("AB000000001", "a"), records::serial("CD000000002", "b")});
    QVERIFY(xml);
    QDomDocument document;
    QVERIFY(document.setContent(*xml));
    QCOMPARE(document.documentElement().tagName(), QStringLiteral("Zev_Lumetra"));
    QCOMPARE(childTags(document.documentElement().firstChildElement()),
             QStringList({"Detector1", "Detector2", "General"}));

    const auto content = setupdocument::read(*xml);
    QCOMPARE(content->records.size(), 2);
    QVERIFY(content->records.at(0).id.isEmpty());
    QCOMPARE(content->records.at(1).serial.text(), QStringLiteral("CD000000002"));
}

void TestSetupDocument::fileOfNoBytesIsAnEmptyFile()
{
    const QByteArray noBytes("");
    QVERIFY(!noBytes.isNull());
    QVERIFY(setupdocument::withDetectors(noBytes, {records::tcp("AB000000001", "a")}));
}

void TestSetupDocument::detectorsChangeNothingElse()
{
    const QByteArray before = file(R"(<!-- kept --><Device_AB000000001 own="1">
<Detector1 beamDiameter="1" model="0" calculation="0" note="kept"/><Detector2/>
<General more="kept"/><Settings group="3" label="kept"/></Device_AB000000001><Other deep="kept"/>)");
    ConnectionSettings record = records::tcp("AB000000001", "changed");
    record.model = {3, 2};
    record.pulsedLaser = true;
    const auto after = setupdocument::withDetectors(before, {record});
    QVERIFY(after);

    QCOMPARE(after->count("kept"), 5);
    QVERIFY(!after->contains("changed"));
    const QDomElement detector = elementIn(*after, "Device_AB000000001", "Detector1");
    QCOMPARE(detector.attribute("model"), QStringLiteral("3"));
    QCOMPARE(detector.attribute("beamDiameter"), QStringLiteral("50"));
    const QDomElement second = elementIn(*after, "Device_AB000000001", "Detector2");
    QCOMPARE(second.attribute("model"), QStringLiteral("2"));
    QCOMPARE(elementIn(*after, "Device_AB000000001", "General").attribute("pulsedLaser"),
             QStringLiteral("1"));
    QCOMPARE(elementIn(*after, "Device_AB000000001", "Settings").attribute("group"),
             QStringLiteral("3"));
    QVERIFY(after->contains("own=\"1\""));
}

void TestSetupDocument::detectorPartsThatAreMissingStayMissing()
{
    const auto xml =
        setupdocument::withDetectors(file("<Device_AB000000001><General/></Device_AB000000001>"),
                                     {records::tcp("AB000000001", "a")});
    QVERIFY(xml);
    QVERIFY(xml->contains("pulsedLaser=\"0\""));
    QVERIFY(!xml->contains("Detector"));
}

void TestSetupDocument::detectorsGoToEveryElementOfTheDevice()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.model = {4, 0};
    const auto xml =
        setupdocument::withDetectors(file("<Device_AB000000001><Detector1/></Device_AB000000001>"
                                          "<Device_AB000000001><Detector1/></Device_AB000000001>"),
                                     {record});
    QVERIFY(xml);
    QCOMPARE(xml->count("model=\"4\""), 2);
    QCOMPARE(xml->count("<Device_AB000000001>"), 2);
}

void TestSetupDocument::detectorsFollowTheOtherParts()
{
    const ConnectionSettings record = records::tcp("AB000000001", "a");
    const auto xml = setupdocument::withDetectors(setupdocument::connections({record}), {record});
    QVERIFY(xml);
    QDomDocument document;
    QVERIFY(document.setContent(*xml));
    QCOMPARE(childTags(document.documentElement()), QStringList({"Device_AB000000001"}));
    QCOMPARE(childTags(document.documentElement().firstChildElement()),
             QStringList({"Settings", "DisplayColors", "Detector1", "Detector2", "General"}));
}

void TestSetupDocument::detectorsOfABrokenFileAreRefused()
{
    QVERIFY(!setupdocument::withDetectors("<Zev_Lumetra><Dev", {records::tcp("A", "a")}));
}

void TestSetupDocument::aKeyThatIsNoTagIsNotReadable()
{
    QVERIFY(
        setupdocument::isReadable(setupdocument::connections({records::tcp("AB000000001", "a")})));
    QVERIFY(
        !setupdocument::isReadable(setupdocument::connections({records::tcp("AB <>000001", "a")})));
}

QTEST_GUILESS_MAIN(TestSetupDocument)
#include "tst_setupdocument.moc"
