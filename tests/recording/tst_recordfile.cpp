#include "recording/recordfile.h"
#include "recordings.h"
#include "support/anotheruser.h"
#include "support/fulldisk.h"

#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string line = "a line of 16 ch\n";

/// A pipe with a name, open for reading without a wait.
class Pipe final
{
public:
    explicit Pipe(const QByteArray& path)
    {
        if (::mkfifo(path.constData(), 0600) == 0)
            descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK);
    }
    ~Pipe() { ::close(descriptor); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool isOpen() const { return descriptor >= 0; }

    /// All that is in it.
    QByteArray read()
    {
        QByteArray all;
        QByteArray part(PIPE_BUF, '\0');
        for (;;) {
            const ssize_t count = ::read(descriptor, part.data(), std::size_t(part.size()));
            if (count <= 0)
                return all;
            all.append(part.constData(), int(count));
        }
    }

private:
    int descriptor = -1;
};

} // namespace

class TestRecordFile final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anOldFileIsReplaced();
    void linesWaitForTheFlush();
    void theEndOfTheFileFlushes();
    void aFileThatIsClosedHasNotFailed();
    void programsThatAreStartedDoNotInheritIt();
    void whatCanNotBeOpenedHasAReason_data();
    void whatCanNotBeOpenedHasAReason();
    void whoMayNotWriteIsTold();
    void aFullDiskKeepsWholeLines_data();
    void aFullDiskKeepsWholeLines();
    void aFailedFileTakesNothing();
    void aFullDeviceIsTold();
    void aRemovedFileIsSeenAtTheFlush();
    void aRemovedFileIsSeenWithoutNewLines();
    void aRemovedFolderIsSeenAtTheFlush();
    void aFileThatWasNeverInAFolderIsNotMissed();
    void aRenamedFileGoesOn();
    void aPipeTakesTheLines();
    void aFullPipeDoesNotBlockAndTearsNoLine();
    void aPipeThatNobodyReadsFailsInTheEnd();
    void linesThatFoundNoRoomAreTold();
    void twoNamesOfOneFileAreSeen();
    void oneDeviceMayTakeSeveralRecordings();

private:
    QString path() const { return folder->filePath("run.csv"); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestRecordFile::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void TestRecordFile::anOldFileIsReplaced()
{
    QFile old(path());
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("a longer file that was there before\n");
    old.close();

    RecordFile file(path());
    QVERIFY(file.isOpen());
    QVERIFY(!file.failure());
    file.lines() += "new\n";
    file.flush();
    QCOMPARE(bytesOf(path()), QByteArray("new\n"));
}

void TestRecordFile::linesWaitForTheFlush()
{
    RecordFile file(path());
    file.lines() += "1\n";
    QCOMPARE(bytesOf(path()), QByteArray());
    file.flush();
    QCOMPARE(bytesOf(path()), QByteArray("1\n"));
    file.lines() += "2\n3\n";
    file.flush();
    file.flush();
    QCOMPARE(bytesOf(path()), QByteArray("1\n2\n3\n"));
}

void TestRecordFile::theEndOfTheFileFlushes()
{
    {
        RecordFile file(path());
        file.lines() += line;
    }
    QCOMPARE(bytesOf(path()), QByteArray::fromStdString(line));
}

void TestRecordFile::aFileThatIsClosedHasNotFailed()
{
    RecordFile file(path());
    file.lines() += line;
    file.close();
    QVERIFY(!file.isOpen());
    QVERIFY(!file.failure());
    file.flush();
    QVERIFY(!file.failure());
    QCOMPARE(bytesOf(path()), QByteArray::fromStdString(line));
}

void TestRecordFile::programsThatAreStartedDoNotInheritIt()
{
    const RecordFile file(path());
    const QFileInfoList open = QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System);
    const auto found = std::find_if(open.begin(), open.end(), [&](const QFileInfo& descriptor) {
        return descriptor.symLinkTarget() == path();
    });
    QVERIFY(found != open.end());
    QVERIFY(::fcntl(found->fileName().toInt(), F_GETFD) & FD_CLOEXEC);
}

void TestRecordFile::whatCanNotBeOpenedHasAReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no folder") << "none/run.csv"
                               << "No such file or directory";
    QTest::newRow("a folder") << "."
                              << "Is a directory";
    QTest::newRow("a long name") << QString(300, 'n') << "File name too long";
    QTest::newRow("no name") << ""
                             << "Is a directory";
}

void TestRecordFile::whatCanNotBeOpenedHasAReason()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    const QString whole = folder->path() + '/' + name;
    RecordFile file(whole);
    QVERIFY(!file.isOpen());
    QVERIFY(file.failure());
    QCOMPARE(file.failure()->path, whole);
    QCOMPARE(file.failure()->reason, reason);
    file.flush();
    file.close();
    QCOMPARE(file.failure()->reason, reason);
}

void TestRecordFile::whoMayNotWriteIsTold()
{
    QFile old(path());
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("kept");
    old.close();
    QVERIFY(old.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    QVERIFY(QFile::setPermissions(folder->path(), QFile::ReadOwner | QFile::WriteOwner
                                                      | QFile::ExeOwner | QFile::ReadOther
                                                      | QFile::ExeOther));

    {
        // Root may write everywhere.
        const AnotherUser user;
        const RecordFile file(path());
        QVERIFY(!file.isOpen());
        QCOMPARE(file.failure()->reason, QStringLiteral("Permission denied"));
    }
    QCOMPARE(bytesOf(path()), QByteArray("kept"));
}

void TestRecordFile::aFullDiskKeepsWholeLines_data()
{
    QTest::addColumn<int>("room");
    QTest::addColumn<int>("linesLeft");
    QTest::newRow("in the middle of a later line") << 16 * 7 + 5 << 7;
    QTest::newRow("in the first line of the flush") << 16 * 4 + 1 << 4;
    QTest::newRow("before the last character") << 16 * 6 - 1 << 5;
    QTest::newRow("between two lines") << 16 * 6 << 6;
    QTest::newRow("before the flush") << 16 * 4 << 4;
    QTest::newRow("in the very first line") << 3 << 0;
}

void TestRecordFile::aFullDiskKeepsWholeLines()
{
    QFETCH(int, room);
    QFETCH(int, linesLeft);
    RecordFile file(path());
    {
        const FullDisk disk{rlim_t(room)};
        for (int flushes = 0; flushes < 2; ++flushes) {
            for (int i = 0; i < 4; ++i)
                file.lines() += line;
            file.flush();
        }
    }
    QVERIFY(file.failure());
    QCOMPARE(file.failure()->path, path());
    QCOMPARE(file.failure()->reason, QStringLiteral("File too large"));
    QCOMPARE(bytesOf(path()), QByteArray::fromStdString(line).repeated(linesLeft));
}

void TestRecordFile::aFailedFileTakesNothing()
{
    RecordFile file(path());
    {
        const FullDisk disk(20);
        file.lines() += line + line;
        file.flush();
    }
    QVERIFY(!file.isOpen());
    QVERIFY(file.lines().empty());
    // There is room again, but what comes now would have a gap before it.
    file.lines() += line;
    file.flush();
    file.close();
    QCOMPARE(bytesOf(path()), QByteArray::fromStdString(line));
}

void TestRecordFile::aFullDeviceIsTold()
{
    RecordFile file("/dev/full");
    QVERIFY(file.isOpen());
    file.lines() += line;
    file.flush();
    QVERIFY(file.failure());
    QCOMPARE(file.failure()->reason, QStringLiteral("No space left on device"));
}

void TestRecordFile::aRemovedFileIsSeenAtTheFlush()
{
    RecordFile file(path());
    file.lines() += line;
    file.flush();
    QVERIFY(QFile::remove(path()));
    file.lines() += line;
    QVERIFY(!file.failure());
    file.flush();
    QVERIFY(file.failure());
    QCOMPARE(file.failure()->reason, QStringLiteral("No such file or directory"));
    QVERIFY(!file.isOpen());
}

void TestRecordFile::aRemovedFileIsSeenWithoutNewLines()
{
    RecordFile file(path());
    QVERIFY(QFile::remove(path()));
    file.flush();
    QVERIFY(file.failure());
}

void TestRecordFile::aRemovedFolderIsSeenAtTheFlush()
{
    RecordFile file(path());
    QVERIFY(folder->remove());
    file.flush();
    QVERIFY(file.failure());
}

void TestRecordFile::aFileThatWasNeverInAFolderIsNotMissed()
{
    // It has no link from the beginning, as have all files on some file systems.
    const int descriptor =
        ::open(folder->path().toLocal8Bit().constData(), O_TMPFILE | O_RDWR, 0600);
    if (descriptor < 0)
        QSKIP("No file without a link here");
    const QString name = QStringLiteral("/proc/self/fd/%1").arg(descriptor);
    {
        RecordFile file(name);
        file.lines() += line;
        file.flush();
        QVERIFY(!file.failure());
    }
    QCOMPARE(bytesOf(name), QByteArray::fromStdString(line));
    ::close(descriptor);
}

void TestRecordFile::aRenamedFileGoesOn()
{
    RecordFile file(path());
    const QString later = folder->filePath("later.csv");
    QVERIFY(QFile::rename(path(), later));
    file.lines() += line;
    file.flush();
    QVERIFY(!file.failure());
    QCOMPARE(bytesOf(later), QByteArray::fromStdString(line));
}

void TestRecordFile::aPipeTakesTheLines()
{
    Pipe pipe(path().toLocal8Bit());
    QVERIFY(pipe.isOpen());
    RecordFile file(path());
    file.lines() += line;
    file.flush();
    QCOMPARE(pipe.read(), QByteArray::fromStdString(line));
}

void TestRecordFile::aFullPipeDoesNotBlockAndTearsNoLine()
{
    Pipe pipe(path().toLocal8Bit());
    QVERIFY(pipe.isOpen());
    // More than any pipe holds; the numbers show what is missing or comes twice.
    constexpr int lineCount = 20000;
    RecordFile file(path());
    QByteArray expected;
    for (int i = 0; i < lineCount; ++i) {
        const QByteArray numbered = "line " + QByteArray::number(i) + '\n';
        file.lines() += numbered.toStdString();
        expected += numbered;
    }
    QByteArray got;
    file.flush();
    QVERIFY(!file.failure());
    QVERIFY(!file.lines().empty());
    while (!file.lines().empty()) {
        const QByteArray part = pipe.read();
        QVERIFY(part.endsWith('\n'));
        got += part;
        file.flush();
    }
    got += pipe.read();
    QCOMPARE(got, expected);
    file.close();
    QVERIFY(!file.failure());
}

void TestRecordFile::aPipeThatNobodyReadsFailsInTheEnd()
{
    Pipe pipe(path().toLocal8Bit());
    QVERIFY(pipe.isOpen());
    RecordFile file(path());
    // The room in the pipe comes on top.
    file.lines().append(RecordFile::maxWaitingBytes / line.size() * line.size(), '\n');
    file.flush();
    QVERIFY(!file.failure());
    while (!file.failure() && file.lines().size() < 2 * RecordFile::maxWaitingBytes) {
        for (int i = 0; i < 1000; ++i)
            file.lines() += line;
        file.flush();
    }
    QVERIFY(file.failure());
    QCOMPARE(file.failure()->reason, QStringLiteral("Resource temporarily unavailable"));
    QVERIFY(pipe.read().endsWith('\n'));
}

void TestRecordFile::linesThatFoundNoRoomAreTold()
{
    Pipe pipe(path().toLocal8Bit());
    QVERIFY(pipe.isOpen());
    RecordFile file(path());
    for (int i = 0; i < 20000; ++i)
        file.lines() += line;
    file.close();
    QVERIFY(file.failure());
    QVERIFY(!file.isOpen());
    QVERIFY(pipe.read().endsWith('\n'));
}

void TestRecordFile::twoNamesOfOneFileAreSeen()
{
    const RecordFile one(path());
    QVERIFY(QFile::link(path(), folder->filePath("link.csv")));
    const RecordFile link(folder->filePath("link.csv"));
    const RecordFile other(folder->filePath("other.csv"));
    QVERIFY(link.isSameAs(one));
    QVERIFY(!other.isSameAs(one));
}

void TestRecordFile::oneDeviceMayTakeSeveralRecordings()
{
    const RecordFile one("/dev/null");
    const RecordFile other("/dev/null");
    QVERIFY(other.isOpen());
    QVERIFY(!other.isSameAs(one));
}

QTEST_GUILESS_MAIN(TestRecordFile)
#include "tst_recordfile.moc"
