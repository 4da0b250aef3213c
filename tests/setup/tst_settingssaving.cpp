// What saving makes of a setup file.

#include "app/switches.h"
#include "records.h"
#include "setup/settings.h"
#include "setupfiles.h"
#include "support/fulldisk.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

using setupfiles::contentOf;
using setupfiles::goodFile;
using setupfiles::put;

class TestSettingsSaving final : public QObject
{
    Q_OBJECT

private slots:
    void init();

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

private:
    QString path(const QString& name) const { return directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> directory;
};

void TestSettingsSaving::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    switches::configDir = QDir(directory->path());
}

void TestSettingsSaving::writingAloneLosesDetectorsAndKeys()
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

void TestSettingsSaving::writeAndWriteDetectorsMakeAFullSave()
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

void TestSettingsSaving::saveIsBothInOne()
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

void TestSettingsSaving::writingDetectorsToNoFileMakesOne()
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

void TestSettingsSaving::writingDetectorsWaitsBeforeItCloses()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QElapsedTimer timer;
    timer.start();
    QVERIFY(settings.writeDetectors(path("a.xml")));
    QVERIFY(timer.elapsed() >= 15);
}

void TestSettingsSaving::aRecordOfAGroupLosesItWithASave()
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

void TestSettingsSaving::aDirectoryCanNotBeWritten()
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

void TestSettingsSaving::aFullDiskKeepsTheOldFile_data()
{
    QTest::addColumn<int>("room");
    QTest::newRow("not one byte") << 0;
    QTest::newRow("a part") << 200;
}

void TestSettingsSaving::aFullDiskKeepsTheOldFile()
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

void TestSettingsSaving::aBrokenFileIsNotTouchedByDetectors()
{
    const QByteArray broken = QByteArray(goodFile).left(80);
    put(path("a.xml"), broken);
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QVERIFY(!settings.writeDetectors(path("a.xml")));
    QCOMPARE(contentOf(path("a.xml")), broken);
}

void TestSettingsSaving::whatCouldNotBeLoadedIsNotSaved()
{
    put(path("a.xml"), goodFile);
    Settings settings;
    settings.setList({records::tcp("A> <0000001", "a")});
    QVERIFY(!settings.save(path("a.xml")));
    QVERIFY(!settings.write(path("a.xml")));
    QCOMPARE(contentOf(path("a.xml")), QByteArray(goodFile));
}

void TestSettingsSaving::aSaveLeavesNoOtherFiles()
{
    Settings settings;
    settings.setList({records::tcp("AB000000001", "a")});
    QVERIFY(settings.save(path("a.xml")));
    QVERIFY(settings.save(path("a.xml")));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.xml"}));
}

QTEST_GUILESS_MAIN(TestSettingsSaving)
#include "tst_settingssaving.moc"
