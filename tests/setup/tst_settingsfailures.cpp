// What is told of setup files that can not be loaded or saved, and what becomes of them.

#include "app/switches.h"
#include "records.h"
#include "setup/settings.h"
#include "setupfiles.h"
#include "support/fulldisk.h"
#include "support/logcapture.h"

#include <QTemporaryDir>
#include <QtTest>

using setupfiles::contentOf;
using setupfiles::goodFile;
using setupfiles::put;

class TestSettingsFailures final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aRefusedSaveTellsWhichRecordAndWhy();
    void aSaveThatFailsTellsWhy();
    void aFileThatDoesNotParseIsToldWithItsPlace_data();
    void aFileThatDoesNotParseIsToldWithItsPlace();
    void aMissingFileIsNoWarning();
    void anUnreadableDefaultFileIsKeptBeside_data();
    void anUnreadableDefaultFileIsKeptBeside();
    void theDefaultFileIsKnownByAnyWayToIt();
    void onlyAnUnreadableDefaultFileIsKept_data();
    void onlyAnUnreadableDefaultFileIsKept();
    void anUnreadableFileThatCanNotBeKeptIsNotReplaced();

private:
    QString path(const QString& name) const { return directory->filePath(name); }

    std::unique_ptr<QTemporaryDir> directory;
};

void TestSettingsFailures::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
    switches::configDir = QDir(directory->path());
}

void TestSettingsFailures::aRefusedSaveTellsWhichRecordAndWhy()
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

void TestSettingsFailures::aSaveThatFailsTellsWhy()
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

void TestSettingsFailures::aFileThatDoesNotParseIsToldWithItsPlace_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::newRow("wrong end tag")
        << QByteArray("<Zev_Lumetra>\n <Device_A>\n </B>\n</Zev_Lumetra>") << "line 3, column 5: ";
    QTest::newRow("not XML") << QByteArray("hello") << "line 1, column 1: ";
    QTest::newRow("other root") << QByteArray("<Root/>")
                                << "the root element is \"Root\", not \"Zev_Lumetra\"";
}

void TestSettingsFailures::aFileThatDoesNotParseIsToldWithItsPlace()
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

void TestSettingsFailures::aMissingFileIsNoWarning()
{
    Settings settings;
    const LogCapture log;
    QVERIFY(!settings.read(QString()));
    QCOMPARE(log.lines().filter("warning"), QStringList());
}

void TestSettingsFailures::anUnreadableDefaultFileIsKeptBeside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("cut off") << QByteArray(goodFile).left(80);
    QTest::newRow("other root") << QByteArray("<Root/>");
}

void TestSettingsFailures::anUnreadableDefaultFileIsKeptBeside()
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

void TestSettingsFailures::theDefaultFileIsKnownByAnyWayToIt()
{
    put(path("ConnectionSetup.xml"), "hello");
    QVERIFY(QFile::link(directory->path(), path("way")));
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    QVERIFY(settings.save(path("way/ConnectionSetup.xml")));
    QCOMPARE(records::labelsIn(contentOf(path("ConnectionSetup.xml"))), QStringList{"new"});
    const QString kept = path("way/ConnectionSetup.xml.unreadable");
    QCOMPARE(contentOf(kept), QByteArray("hello"));
}

void TestSettingsFailures::onlyAnUnreadableDefaultFileIsKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("one that can be loaded") << "ConnectionSetup.xml" << QByteArray(goodFile);
    QTest::newRow("an empty one") << "ConnectionSetup.xml" << QByteArray("");
    QTest::newRow("another file") << "other.xml" << QByteArray("hello");
}

void TestSettingsFailures::onlyAnUnreadableDefaultFileIsKept()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    put(path(name), content);
    Settings settings;
    settings.setList({records::tcp("CD000000002", "new")});
    QVERIFY(settings.save(name == "other.xml" ? path(name) : QString()));
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files | QDir::Hidden), QStringList{name});
}

void TestSettingsFailures::anUnreadableFileThatCanNotBeKeptIsNotReplaced()
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

QTEST_GUILESS_MAIN(TestSettingsFailures)
#include "tst_settingsfailures.moc"
