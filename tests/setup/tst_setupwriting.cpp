// Writing the XML of a setup file.

#include "records.h"
#include "setup/setupdocument.h"
#include "setupxml.h"

#include <QDomDocument>
#include <QtTest>

using records::idWithKey;
using setupxml::file;
using setupxml::onlyRecord;
using setupxml::wholeDevice;

namespace {

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

class TestSetupWriting final : public QObject
{
    Q_OBJECT

private slots:
    void connectionsHaveTheLaidDownForm();
    void aNumberIsWrittenAsWhatItMeans_data();
    void aNumberIsWrittenAsWhatItMeans();
    void neitherGroupNorCommonColorsSurvive();
    void anUnsetColourComesBackBlack();
    void textsWithMarkupComeBackWhole();
    void twoRecordsOfOneDeviceMakeTwoElements();
    void aFullDocumentComesBackAsItWas();
    void detectorsOfAnEmptyFileMakeARootAndAllDevices();
    void detectorsChangeNothingElse();
    void detectorPartsThatAreMissingStayMissing();
    void detectorsGoToEveryElementOfTheDevice();
    void detectorsFollowTheOtherParts();
    void detectorsOfABrokenFileAreRefused();
    void aKeyThatIsNoTagIsNotReadable();
};

void TestSetupWriting::connectionsHaveTheLaidDownForm()
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

void TestSetupWriting::aNumberIsWrittenAsWhatItMeans_data()
{
    QTest::addColumn<bool>("tcp");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("absent");
    QTest::newRow("TCP") << true << "port"
                         << "baudrate";
    QTest::newRow("serial") << false << "baudrate"
                            << "port";
}

void TestSetupWriting::aNumberIsWrittenAsWhatItMeans()
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

void TestSetupWriting::neitherGroupNorCommonColorsSurvive()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.group = 3;
    record.commonColorX = QStringLiteral("#00ffff");
    const ConnectionSettings back = onlyRecord(setupdocument::connections({record}));
    QCOMPARE(back.group, 0);
    QVERIFY(back.commonColorX.isEmpty());
}

void TestSetupWriting::anUnsetColourComesBackBlack()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.colorI.clear();
    QCOMPARE(onlyRecord(setupdocument::connections({record})).colorI, QStringLiteral("#000000"));
}

void TestSetupWriting::textsWithMarkupComeBackWhole()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    const QString text = QString::fromUtf8(" <a b=\"c\"> & 'd'\tµ \n");
    record.label.set(text);
    QCOMPARE(onlyRecord(setupdocument::connections({record})).label.text(), text);
}

void TestSetupWriting::twoRecordsOfOneDeviceMakeTwoElements()
{
    const auto content = setupdocument::read(setupdocument::connections(
        {records::tcp("AB000000001", "a"), records::tcp("AB000000001", "b")}));
    QVERIFY(content);
    QCOMPARE(content->records.size(), 2);
    QCOMPARE(content->records.at(1).label.text(), QStringLiteral("b"));
}

void TestSetupWriting::aFullDocumentComesBackAsItWas()
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

void TestSetupWriting::detectorsOfAnEmptyFileMakeARootAndAllDevices()
{
    const auto xml = setupdocument::withDetectors(
        "", {records::tcp("AB000000001", "a"), records::serial("CD000000002", "b")});
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

void TestSetupWriting::detectorsChangeNothingElse()
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

void TestSetupWriting::detectorPartsThatAreMissingStayMissing()
{
    const auto xml =
        setupdocument::withDetectors(file("<Device_AB000000001><General/></Device_AB000000001>"),
                                     {records::tcp("AB000000001", "a")});
    QVERIFY(xml);
    QVERIFY(xml->contains("pulsedLaser=\"0\""));
    QVERIFY(!xml->contains("Detector"));
}

void TestSetupWriting::detectorsGoToEveryElementOfTheDevice()
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

void TestSetupWriting::detectorsFollowTheOtherParts()
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

void TestSetupWriting::detectorsOfABrokenFileAreRefused()
{
    QVERIFY(!setupdocument::withDetectors("<Zev_Lumetra><Dev", {records::tcp("A", "a")}));
}

void TestSetupWriting::aKeyThatIsNoTagIsNotReadable()
{
    QVERIFY(
        setupdocument::isReadable(setupdocument::connections({records::tcp("AB000000001", "a")})));
    QVERIFY(
        !setupdocument::isReadable(setupdocument::connections({records::tcp("AB <>000001", "a")})));
}

QTEST_GUILESS_MAIN(TestSetupWriting)
#include "tst_setupwriting.moc"
