#include "app/switches.h"
#include "records.h"
#include "setup/settings.h"
#include "setupfiles.h"
#include "support/anotheruser.h"
#include "support/logcapture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using setupfiles::contentOf;
using setupfiles::goodFile;
using setupfiles::put;

class TestSettings final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anEmptyPathIsTheDefaultFile();
    void writersGiveAFileItsEnding_data();
    void writersGiveAFileItsEnding();
    void theReaderTakesThePathAsItIs();
    void aFailedReadKeepsTheRecords_data();
    void aFailedReadKeepsTheRecords();
    void aReadOnlyFileIsNotRead();
    void readingTellsWhatItFound();
    void aRootWithoutDevicesClearsTheRecords();
    void anOverlongTextEndsTheApplication_data();
    void anOverlongTextEndsTheApplication();
    void readingASetupFileNeedsNoScreen();

    void setListReplacesTheRecords();
    void getListDropsRecordsWithoutIdentification();
    void detectorDataAreFoundByTheDeviceKey();
    void updateChangesTheStoredRecord();
    void anUnknownRecordIsAdded();
    void recordsFollowTheShownOrder_data();
    void recordsFollowTheShownOrder();

private:
    QString path(const QString& name) const { return directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> directory;
};

void TestSettings::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    switches::configDir = QDir(directory->path());
}

void TestSettings::anEmptyPathIsTheDefaultFile()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "here")});
    QVERIFY(settings.write(QString()));
    QVERIFY(contentOf(path("ConnectionSetup.xml")).contains("here"));

    Settings other;
    QVERIFY(other.read(QString()));
    QList<ConnectionSettings> list;
    QVERIFY(other.getList(list));
    QCOMPARE(list.size(), 1);
}

void TestSettings::writersGiveAFileItsEnding_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("made");
    QTest::newRow("with ending") << "a.xml"
                                 << "a.xml";
    QTest::newRow("without") << "a"
                             << "a.xml";
    QTest::newRow("another one") << "a.txt"
                                 << "a.txt.xml";
    QTest::newRow("capitals") << "a.XML"
                              << "a.XML.xml";
    QTest::newRow("nothing but the ending") << ".xml"
                                            << ".xml";
}

void TestSettings::writersGiveAFileItsEnding()
{
    QFETCH(QString, given);
    QFETCH(QString, made);
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    for (const auto writer : {&Settings::write, &Settings::writeDetectors, &Settings::save}) {
        QFile::remove(path(made));
        QVERIFY((settings.*writer)(path(given)));
        QCOMPARE(QDir(directory->path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList({made}));
    }
}

void TestSettings::theReaderTakesThePathAsItIs()
{
    put(path("setup.txt"), goodFile);
    Settings settings;
    QVERIFY(settings.read(path("setup.txt")));
    QVERIFY(!settings.read(path("setup")));
}

void TestSettings::aFailedReadKeepsTheRecords_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("cut off") << QByteArray(goodFile).left(60);
    QTest::newRow("not XML") << QByteArray("hello");
    QTest::newRow("other root") << QByteArray("<Root/>");
    QTest::newRow("missing") << QByteArray();
}

void TestSettings::aFailedReadKeepsTheRecords()
{
    QFETCH(QByteArray, content);
    if (!content.isNull())
        put(path("bad.xml"), content);
    Settings settings;
    settings.setList({records::tcp("AB000000001", "kept")});

    QVERIFY(!settings.read(path("bad.xml")));
    QVERIFY(!settings.read(directory->path()));
    QList<ConnectionSettings> list;
    QVERIFY(settings.getList(list));
    QCOMPARE(list.first().label.text(), QStringLiteral("kept"));
    QCOMPARE(QFile::exists(path("bad.xml")), !content.isNull());
}

void TestSettings::aReadOnlyFileIsNotRead()
{
    put(path("setup.xml"), goodFile);
    Settings settings;
    QVERIFY(settings.read(path("setup.xml")));
    QVERIFY(QFile::setPermissions(path("setup.xml"),
                                  QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    // Whoever may not write the file may still reach it.
    QVERIFY(QFile::setPermissions(directory->path(), QFile::permissions(directory->path())
                                                         | QFile::ExeGroup | QFile::ExeOther));
    // Root may write everything.
    const AnotherUser user;
    QVERIFY(!contentOf(path("setup.xml")).isEmpty());
    QVERIFY(!settings.read(path("setup.xml")));
}

void TestSettings::readingTellsWhatItFound()
{
    put(path("setup.xml"),
        "<Zev_Lumetra><Device_AB000000001><Settings name=\"here\" id=\"one\"/></Device_AB000000001>"
        "<Device_CD000000002><Detector1/><General/></Device_CD000000002>"
        "<Device_EF000000003><General/><Settings/></Device_EF000000003></Zev_Lumetra>");
    Settings settings;
    const LogCapture log;
    QVERIFY(settings.read(path("setup.xml")));
    // A device of which only the detectors are known has nothing to tell.
    QCOMPARE(log.lines(),
             QStringList({"info: Loading connection settings \"" + path("setup.xml") + '"',
                          "info: Loaded connection settings for \"here\" with ID \"one\"",
                          "info: Loaded connection settings for \"\" with ID \"\"",
                          "info: Finished loading connection settings"}));
}

void TestSettings::aRootWithoutDevicesClearsTheRecords()
{
    put(path("root.xml"), "<Zev_Lumetra/>");
    Settings settings;
    settings.setList({records::tcp("AB000000001", "gone")});
    QVERIFY(settings.read(path("root.xml")));
    QList<ConnectionSettings> list;
    QVERIFY(!settings.getList(list));
}

void TestSettings::anOverlongTextEndsTheApplication_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<QByteArray>("attribute");
    for (const char* name : {"label", "name", "id"})
        QTest::newRow(name) << "<Zev_Lumetra><Device_A><Settings " + QByteArray(name) + "=\""
                                   + QByteArray(64, 'x') + "\"/></Device_A></Zev_Lumetra>"
                            << QByteArray("Device_A/Settings") << '"' + QByteArray(name) + '"';
    QTest::newRow("key") << QByteArray("<Zev_Lumetra><Device_123456789012><General/>"
                                       "</Device_123456789012></Zev_Lumetra>")
                         << QByteArray("Device_123456789012") << QByteArray("key in the tag");
}

void TestSettings::anOverlongTextEndsTheApplication()
{
    QFETCH(QByteArray, xml);
    QFETCH(QByteArray, element);
    QFETCH(QByteArray, attribute);
    put(path("long.xml"), xml);
    QProcess reader;
    // Ending is what is expected: no core file is wanted of it.
    reader.setProgram(QStringLiteral("/bin/sh"));
    reader.setArguments({"-c", "ulimit -c 0; exec \"$0\" \"$1\"", SETUP_READER, path("long.xml")});
    reader.start();
    QVERIFY(reader.waitForFinished());
    QCOMPARE(reader.exitStatus(), QProcess::CrashExit);
    const QByteArray told = reader.readAllStandardError();
    QVERIFY2(told.contains(path("long.xml").toLocal8Bit()), told.constData());
    QVERIFY2(told.contains('"' + element + '"'), told.constData());
    QVERIFY2(told.contains(attribute), told.constData());
    QCOMPARE(contentOf(path("long.xml")), xml);

    put(path("good.xml"), goodFile);
    reader.setArguments({"-c", "exec \"$0\" \"$1\"", SETUP_READER, path("good.xml")});
    reader.start();
    QVERIFY(reader.waitForFinished());
    QCOMPARE(reader.exitStatus(), QProcess::NormalExit);
    QCOMPARE(reader.readAllStandardOutput().trimmed(), QByteArray("1"));
}

void TestSettings::readingASetupFileNeedsNoScreen()
{
    QProcess reader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The loader prints the libraries in place of running the program.
    environment.insert("LD_TRACE_LOADED_OBJECTS", "1");
    reader.setProcessEnvironment(environment);
    reader.start(SETUP_READER, QStringList());
    QVERIFY(reader.waitForFinished());
    const QByteArray libraries = reader.readAllStandardOutput();
    QVERIFY(libraries.contains("libQt5Xml"));
    QVERIFY2(!libraries.contains("libQt5Gui"), libraries.constData());
}

void TestSettings::setListReplacesTheRecords()
{
    Settings settings;
    QVERIFY(settings.setList({records::tcp("AB000000001", "a")}));
    QList<ConnectionSettings> list;
    QVERIFY(settings.getList(list));
    QCOMPARE(list.size(), 1);
    QVERIFY(settings.setList(list));
    QVERIFY(!settings.setList({}));
    QVERIFY(!settings.getList(list));
    QVERIFY(list.isEmpty());
}

void TestSettings::getListDropsRecordsWithoutIdentification()
{
    Settings settings;
    settings.setList({ConnectionSettings(), records::tcp("AB000000001", "a")});
    QList<ConnectionSettings> list{ConnectionSettings(), ConnectionSettings()};
    QVERIFY(settings.getList(list));
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.first().label.text(), QStringLiteral("a"));

    settings.setList({ConnectionSettings()});
    QVERIFY(settings.getList(list));
    QVERIFY(list.isEmpty());
}

void TestSettings::detectorDataAreFoundByTheDeviceKey()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    QVERIFY(settings.read(path("a.xml")));

    // The key counts, not the rest of the text.
    ConnectionSettings known = records::tcp("AB000000001", "mine");
    QVERIFY(settings.getDetectorData(known));
    QCOMPARE(known.model[0], 2);
    QCOMPARE(known.beamDiameter[0], 7.0);
    QVERIFY(known.pulsedLaser);
    QCOMPARE(known.serial.text(), QStringLiteral("AB000000001"));
    QCOMPARE(known.label.text(), QStringLiteral("mine"));

    ConnectionSettings unknown = records::tcp("ab000000001", "other");
    QVERIFY(!settings.getDetectorData(unknown));
    QVERIFY(unknown.serial.isEmpty());
    QCOMPARE(unknown.model[0], 0);
}

void TestSettings::updateChangesTheStoredRecord()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    QVERIFY(settings.read(path("a.xml")));
    ConnectionSettings record = records::tcp("AB000000001", "not taken");
    record.model = {5, 4};
    record.beamDiameter = {1.5, 2.5};
    record.calculation = {1, 1};
    QVERIFY(settings.updateOrAdd(record));

    QList<ConnectionSettings> list;
    settings.getList(list);
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.first().label.text(), QStringLiteral("one"));
    QCOMPARE(list.first().id.text(), record.id.text());
    QCOMPARE(list.first().model, record.model);
    QCOMPARE(list.first().beamDiameter, record.beamDiameter);
    QCOMPARE(list.first().calculation, record.calculation);
    QVERIFY(!list.first().pulsedLaser);
}

void TestSettings::anUnknownRecordIsAdded()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    QVERIFY(settings.read(path("a.xml")));
    ConnectionSettings record = records::tcp("CD000000002", "two");
    QVERIFY(!settings.updateOrAdd(record));
    QCOMPARE(record.serial.text(), QStringLiteral("CD000000002"));
    QCOMPARE(record.position, 1);
    QVERIFY(settings.updateOrAdd(record));

    QList<ConnectionSettings> list;
    settings.getList(list);
    QCOMPARE(list.size(), 2);
    QCOMPARE(list.last().label.text(), QStringLiteral("two"));
}

void TestSettings::recordsFollowTheShownOrder_data()
{
    QTest::addColumn<QList<int>>("order");
    QTest::addColumn<QString>("shown");
    QTest::newRow("as made") << QList<int>{0, 1, 2} << "abc";
    QTest::newRow("first to the end") << QList<int>{1, 2, 0} << "bca";
    QTest::newRow("never told") << QList<int>{0, 0, 0} << "abc";
    QTest::newRow("out of range") << QList<int>{2, 3, -1} << "cab";
    QTest::newRow("named twice") << QList<int>{1, 1, 2} << "bca";
}

void TestSettings::recordsFollowTheShownOrder()
{
    QFETCH(QList<int>, order);
    QFETCH(QString, shown);
    QList<ConnectionSettings> list;
    for (int i = 0; i < order.size(); ++i) {
        list.append(records::tcp("AB000000001", QString(QChar('a' + i))));
        list.last().position = order.at(i);
    }
    QString labels;
    for (const ConnectionSettings& record : inShownOrder(list))
        labels += record.label.text();
    QCOMPARE(labels, shown);
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
