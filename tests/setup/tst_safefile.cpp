#include "app/switches.h"
#include "setup/safefile.h"
#include "support/anotheruser.h"
#include "support/fulldisk.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray oldBytes(100, 'o');
const QByteArray newBytes(300, 'n');

constexpr QFile::Permissions anybodyMayRead =
    QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
constexpr QFile::Permissions anybodyMayEnter =
    anybodyMayRead | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
constexpr QFile::Permissions anybodyMayWrite =
    anybodyMayRead | QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList filesIn(const QString& directory)
{
    return QDir(directory).entryList(QDir::Files | QDir::Hidden);
}

} // namespace

class TestSafeFile final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aFileIsReplacedAsAWhole();
    void aNewFileIsMade();
    void aFileThatIsNotThereHasAReason();
    void aFullDiskKeepsTheOldFile();
    void aFileWhoseDirectoryTakesNoneIsOverwritten();
    void aFailedOverwritingPutsTheOldBytesBack();
    void withoutRoomForACopyNothingIsOverwritten();
    void aNewFileInADirectoryThatTakesNoneFails();

private:
    QString path() const { return closed->filePath("a.xml"); }
    /// From here on no file can be made beside the old one, which itself can be written.
    void closeDirectory();

    /// Where the file is, and where copies can go.
    std::unique_ptr<QTemporaryDir> closed;
    std::unique_ptr<QTemporaryDir> config;
    std::unique_ptr<QTemporaryDir> temporary;
    QByteArray temporaryBefore;
};

void TestSafeFile::init()
{
    for (auto* directory : {&closed, &config, &temporary}) {
        *directory = std::make_unique<QTemporaryDir>();
        QVERIFY((*directory)->isValid());
    }
    switches::configDir = QDir(config->path());
    temporaryBefore = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(temporary->path()));
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(oldBytes), qint64(oldBytes.size()));
}

void TestSafeFile::cleanup()
{
    qputenv("TMPDIR", temporaryBefore);
    for (const auto* directory : {&closed, &config, &temporary})
        QFile::setPermissions((*directory)->path(), anybodyMayEnter | QFile::WriteOwner);
}

void TestSafeFile::closeDirectory()
{
    QVERIFY(QFile::setPermissions(path(), anybodyMayWrite));
    QVERIFY(QFile::setPermissions(closed->path(), anybodyMayEnter));
    for (const auto* directory : {&config, &temporary})
        QVERIFY(QFile::setPermissions((*directory)->path(), anybodyMayEnter | anybodyMayWrite));
}

void TestSafeFile::aFileIsReplacedAsAWhole()
{
    QString reason;
    QVERIFY2(safefile::replace(path(), newBytes, 0, reason), qPrintable(reason));
    QCOMPARE(contentOf(path()), newBytes);
    QCOMPARE(filesIn(closed->path()), QStringList{"a.xml"});
}

void TestSafeFile::aNewFileIsMade()
{
    QString reason;
    QVERIFY(safefile::replace(closed->filePath("b.xml"), newBytes, 0, reason));
    QCOMPARE(contentOf(closed->filePath("b.xml")), newBytes);
}

void TestSafeFile::aFileThatIsNotThereHasAReason()
{
    QString reason;
    QVERIFY(!safefile::read(closed->filePath("none.xml"), reason));
    QCOMPARE(reason, QStringLiteral("No such file or directory"));
    QVERIFY(!safefile::replace(closed->filePath("none/a.xml"), newBytes, 0, reason));
    QVERIFY(!reason.isEmpty());
}

void TestSafeFile::aFullDiskKeepsTheOldFile()
{
    QString reason;
    {
        const FullDisk disk(200);
        QVERIFY(!safefile::replace(path(), newBytes, 0, reason));
    }
    QCOMPARE(reason, QStringLiteral("there is not enough room for all of it"));
    QCOMPARE(contentOf(path()), oldBytes);
    QCOMPARE(filesIn(closed->path()), QStringList{"a.xml"});
}

void TestSafeFile::aFileWhoseDirectoryTakesNoneIsOverwritten()
{
    closeDirectory();
    QString reason;
    {
        // Root may write everywhere.
        const AnotherUser user;
        QVERIFY2(safefile::replace(path(), newBytes, 0, reason), qPrintable(reason));
        // A shorter one leaves no rest of the longer one.
        QVERIFY2(safefile::replace(path(), "short", 0, reason), qPrintable(reason));
    }
    QCOMPARE(contentOf(path()), QByteArray("short"));
    for (const auto* directory : {&config, &temporary})
        QCOMPARE(filesIn((*directory)->path()), QStringList());
}

void TestSafeFile::aFailedOverwritingPutsTheOldBytesBack()
{
    closeDirectory();
    QString reason;
    {
        const AnotherUser user;
        const FullDisk disk(200);
        QVERIFY(!safefile::replace(path(), newBytes, 0, reason));
    }
    QCOMPARE(reason, QStringLiteral("there is not enough room for all of it"));
    QCOMPARE(contentOf(path()), oldBytes);
    for (const auto* directory : {&config, &temporary})
        QCOMPARE(filesIn((*directory)->path()), QStringList());
}

void TestSafeFile::withoutRoomForACopyNothingIsOverwritten()
{
    closeDirectory();
    for (const auto* directory : {&config, &temporary})
        QVERIFY(QFile::setPermissions((*directory)->path(), anybodyMayEnter));
    QString reason;
    {
        const AnotherUser user;
        QVERIFY(!safefile::replace(path(), newBytes, 0, reason));
    }
    QVERIFY2(reason.contains("copy"), qPrintable(reason));
    QCOMPARE(contentOf(path()), oldBytes);
}

void TestSafeFile::aNewFileInADirectoryThatTakesNoneFails()
{
    closeDirectory();
    QString reason;
    {
        const AnotherUser user;
        QVERIFY(!safefile::replace(closed->filePath("b.xml"), newBytes, 0, reason));
    }
    QCOMPARE(reason, QStringLiteral("Permission denied"));
}

QTEST_GUILESS_MAIN(TestSafeFile)
#include "tst_safefile.moc"
