#include "app/switches.h"
#include "fulldisk.h"
#include "records.h"
#include "setup/settings.h"
#include "support/anotheruser.h"
#include "support/logcapture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

const char goodFile[] =
    "<Zev_Lumetra><Device_AB000000001><Settings id=\"12345678901234AB000000001\""
    " label=\"one\"/><Detector1 model=\"2\" beamDiameter=\"7\"/>"
    "<General pulsedLaser=\"1\"/></Device_AB000000001></Zev_Lumetra>";

} // namespace

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

    void writingAloneLosesDetectorsAndKeys();
    void writeAndWriteDetectorsMakeAFullSave();
    void saveIsBothInOne();
    void writingDetectorsToNoFileMakesOne();
    void writingDetectorsWaitsBeforeItCloses();
    void aRecordOfAGroupLosesItWithASave();
    void aDirectoryCanNotBeWritten();
    void aFullDiskKeepsTheOldFile_data();
    void aFullDiskKeepsTheOldFile();
    void aBrokenFileIsNotTouchedByDetectors();
    void whatCouldNotBeLoadedIsNotSaved();
    void aSaveLeavesNoOtherFiles();

    // What the log tells.
    void aRefusedSaveTellsWhichRecordAndWhy();
    void aSaveThatFailsTellsWhy();
    void aFileThatDoesNotParseIsToldWithItsPlace_data();
    void aFileThatDoesNotParseIsToldWithItsPlace();
    void aMissingFileIsNoWarning();

    // A default file that can not be loaded.
    void anUnreadableDefaultFileIsKeptBeside_data();
    void anUnreadableDefaultFileIsKeptBeside();
    void onlyAnUnreadableDefaultFileIsKept_data();
    void onlyAnUnreadableDefaultFileIsKept();
    void anUnreadableFileThatCanNotBeKeptIsNotReplaced();

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

void TestSettings::writingAloneLosesDetectorsAndKeys()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.model = {2, 2};
    Settings settings;
    settings.setList({record});
    QVERIFY(settings.save(path("a.xml")));
    QVERIFY(settings.write(path("a.xml")));

    Settings other;
    QVERIFY(other.read(path("a.xml")));
    QList<ConnectionSettings> list;
    QVERIFY(other.getList(list));
    QVERIFY(list.first().serial.isEmpty());
    QCOMPARE(list.first().model, (std::array<int, 2>{0, 0}));
    QCOMPARE(list.first().beamDiameter[0], 50.0);
}

void TestSettings::writeAndWriteDetectorsMakeAFullSave()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.model = {2, 5};
    Settings settings;
    settings.setList({record});
    QVERIFY(settings.write(path("a.xml")));
    QVERIFY(settings.writeDetectors(path("a.xml")));

    Settings other;
    QVERIFY(other.read(path("a.xml")));
    QList<ConnectionSettings> list;
    QVERIFY(other.getList(list));
    QCOMPARE(list.first().serial.text(), QStringLiteral("AB000000001"));
    QCOMPARE(list.first().model, (std::array<int, 2>{2, 5}));
    QCOMPARE(list.first().label.text(), QStringLiteral("a"));
}

void TestSettings::saveIsBothInOne()
{
    ConnectionSettings record = records::tcp("AB000000001", "a");
    record.model = {2, 5};
    Settings settings;
    settings.setList({record, records::serial("CD000000002", "b")});
    QVERIFY(settings.save(path("one.xml")));

    Settings other;
    QVERIFY(other.read(path("one.xml")));
    QList<ConnectionSettings> list;
    QVERIFY(other.getList(list));
    QCOMPARE(list.size(), 2);
    QCOMPARE(list.first().model, (std::array<int, 2>{2, 5}));
    QCOMPARE(list.last().serial.text(), QStringLiteral("CD000000002"));
    QCOMPARE(list.last().label.text(), QStringLiteral("b"));
}

void TestSettings::writingDetectorsToNoFileMakesOne()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QVERIFY(settings.writeDetectors(path("new.xml")));
    put(path("empty.xml"), QByteArray());
    QVERIFY(settings.writeDetectors(path("empty.xml")));
    QCOMPARE(contentOf(path("new.xml")).count("<Device_AB000000001>"), 1);
    QCOMPARE(contentOf(path("empty.xml")).count("<Device_AB000000001>"), 1);

    Settings other;
    QVERIFY(other.read(path("new.xml")));
    QList<ConnectionSettings> list;
    QVERIFY(other.getList(list));
    QVERIFY(list.isEmpty());
}

void TestSettings::writingDetectorsWaitsBeforeItCloses()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QElapsedTimer timer;
    timer.start();
    QVERIFY(settings.writeDetectors(path("a.xml")));
    QVERIFY(timer.elapsed() >= 15);
}

void TestSettings::aRecordOfAGroupLosesItWithASave()
{
    put(path("g.xml"), QByteArray(goodFile).replace("label=", "group=\"3\" label="));
    Settings settings;
    QVERIFY(settings.read(path("g.xml")));
    QList<ConnectionSettings> list;
    settings.getList(list);
    QCOMPARE(list.first().group, 3);

    QVERIFY(settings.save(path("g.xml")));
    QVERIFY(!contentOf(path("g.xml")).contains("group"));
}

void TestSettings::aDirectoryCanNotBeWritten()
{
    QVERIFY(QDir(directory->path()).mkdir("d.xml"));
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    for (const QString& target : {path("d.xml"), path("none/a.xml")}) {
        QVERIFY(!settings.write(target));
        QVERIFY(!settings.writeDetectors(target));
        QVERIFY(!settings.save(target));
    }
}

void TestSettings::aFullDiskKeepsTheOldFile_data()
{
    QTest::addColumn<int>("room");
    QTest::newRow("not one byte") << 0;
    QTest::newRow("a part") << 200;
}

void TestSettings::aFullDiskKeepsTheOldFile()
{
    QFETCH(int, room);
    put(path("a.xml"), goodFile);
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    for (const auto writer : {&Settings::write, &Settings::writeDetectors, &Settings::save}) {
        {
            const FullDisk disk(static_cast<rlim_t>(room));
            QVERIFY(!(settings.*writer)(path("a.xml")));
        }
        QCOMPARE(contentOf(path("a.xml")), QByteArray(goodFile));
        QCOMPARE(QDir(directory->path()).entryList(QDir::Files).size(), 1);
    }
    QVERIFY(settings.save(path("a.xml")));
}

void TestSettings::aBrokenFileIsNotTouchedByDetectors()
{
    const QByteArray broken = QByteArray(goodFile).left(80);
    put(path("a.xml"), broken);
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QVERIFY(!settings.writeDetectors(path("a.xml")));
    QCOMPARE(contentOf(path("a.xml")), broken);
}

void TestSettings::whatCouldNotBeLoadedIsNotSaved()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    settings.setList({records::tcp("A> <0000001", "a")});
    QVERIFY(!settings.save(path("a.xml")));
    QVERIFY(!settings.write(path("a.xml")));
    QCOMPARE(contentOf(path("a.xml")), QByteArray(goodFile));
}

void TestSettings::aSaveLeavesNoOtherFiles()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QVERIFY(settings.save(path("a.xml")));
    QVERIFY(settings.save(path("a.xml")));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.xml"}));
}

void TestSettings::aRefusedSaveTellsWhichRecordAndWhy()
{
    Settings settings;
    settings.setList(
        {records::tcp("AB000000001", "good"), records::tcp("A> <0000001", "left_arm")});
    for (const auto writer : {&Settings::write, &Settings::save}) {
        const LogCapture log;
        QVERIFY(!(settings.*writer)(path("a.xml")));
        QCOMPARE(log.lines().size(), 1);
        const QString told = log.lines().first();
        for (const QString& part :
             {QString("warning: "), path("a.xml"), QString("left_arm"),
              records::idWithKey("A> <0000001"), QString("key \"A> <0000001\""), QString("XML")})
            QVERIFY2(told.contains(part), qPrintable(told));
        QVERIFY2(!told.contains("good"), qPrintable(told));
    }
    QVERIFY(!QFile::exists(path("a.xml")));
}

void TestSettings::aSaveThatFailsTellsWhy()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    const LogCapture log;
    {
        const FullDisk disk(0);
        QVERIFY(!settings.save(path("a.xml")));
    }
    QVERIFY(!settings.save(path("none/a.xml")));
    QCOMPARE(log.lines(), QStringList({"warning: Could not save connection settings "
                                           + path("a.xml") + ": File too large",
                                       "warning: Could not save connection settings "
                                           + path("none/a.xml") + ": No such file or directory"}));
}

void TestSettings::aFileThatDoesNotParseIsToldWithItsPlace_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::newRow("wrong end tag")
        << QByteArray("<Zev_Lumetra>\n <Device_A>\n </B>\n</Zev_Lumetra>") << "line 3, column 5: ";
    QTest::newRow("not XML") << QByteArray("hello") << "line 1, column 1: ";
    QTest::newRow("other root") << QByteArray("<Root/>")
                                << "the root element is \"Root\", not \"Zev_Lumetra\"";
}

void TestSettings::aFileThatDoesNotParseIsToldWithItsPlace()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    put(path("bad.xml"), content);
    Settings settings;
    const LogCapture log;
    QVERIFY(!settings.read(path("bad.xml")));
    QCOMPARE(log.lines().size(), 2);
    const QString told = log.lines().last();
    QVERIFY2(told.startsWith("warning: Could not load connection settings " + path("bad.xml") + ": "
                             + reason),
             qPrintable(told));
}

void TestSettings::aMissingFileIsNoWarning()
{
    Settings settings;
    const LogCapture log;
    QVERIFY(!settings.read(QString()));
    QCOMPARE(log.lines().filter("warning"), QStringList());
}

void TestSettings::anUnreadableDefaultFileIsKeptBeside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("cut off") << QByteArray(goodFile).left(80);
    QTest::newRow("other root") << QByteArray("<Root/>");
}

void TestSettings::anUnreadableDefaultFileIsKeptBeside()
{
    QFETCH(QByteArray, content);
    put(path("ConnectionSetup.xml"), content);
    put(path("ConnectionSetup.xml.unreadable"), "an older one");
    Settings settings;
    QVERIFY(!settings.read(QString()));
    settings.setList({records::tcp("CD000000002", "new")});
    QVERIFY(settings.save(QString()));
    QCOMPARE(contentOf(path("ConnectionSetup.xml.unreadable")), content);
    QCOMPARE(records::labelsIn(contentOf(path("ConnectionSetup.xml"))), QStringList{"new"});
}

void TestSettings::onlyAnUnreadableDefaultFileIsKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("one that can be loaded") << "ConnectionSetup.xml" << QByteArray(goodFile);
    QTest::newRow("an empty one") << "ConnectionSetup.xml" << QByteArray("");
    QTest::newRow("another file") << "other.xml" << QByteArray("hello");
}

void TestSettings::onlyAnUnreadableDefaultFileIsKept()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    put(path(name), content);
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    QVERIFY(settings.save(name == "other.xml" ? path(name) : QString()));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files | QDir::Hidden), QStringList{name});
}

void TestSettings::anUnreadableFileThatCanNotBeKeptIsNotReplaced()
{
    put(path("ConnectionSetup.xml"), "hello");
    QVERIFY(QDir(directory->path()).mkdir("ConnectionSetup.xml.unreadable"));
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    const LogCapture log;
    QVERIFY(!settings.save(QString()));
    QCOMPARE(contentOf(path("ConnectionSetup.xml")), QByteArray("hello"));
    QCOMPARE(log.lines().filter("Could not keep").size(), 1);
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
