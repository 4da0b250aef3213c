// What an installation holds, and that the program in it comes up.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class TestInstallation final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { scratch.reset(); }

    void holdsItsFiles_data();
    void holdsItsFiles();
    void theCommandLeadsToTheProgramsFolder();
    void theProgramComesUp();

private:
    QString installed(const QString& path) const { return prefix + QLatin1Char('/') + path; }

    std::unique_ptr<QTemporaryDir> scratch;
    QString prefix;
};

void TestInstallation::initTestCase()
{
    scratch = std::make_unique<QTemporaryDir>();
    prefix = scratch->filePath("a place");
    QProcess cmake;
    cmake.setProcessChannelMode(QProcess::MergedChannels);
    cmake.start(CMAKE_PROGRAM,
                {"--install", BUILD_FOLDER, "--component", "application", "--prefix", prefix});
    QVERIFY(cmake.waitForFinished());
    QVERIFY2(cmake.exitCode() == 0, cmake.readAll().constData());
}

void TestInstallation::holdsItsFiles_data()
{
    QTest::addColumn<QString>("file");
    for (const char* file :
         {"lib/lumetra/lumetra", "lib/lumetra/licenses/QT_LICENSE.html",
          "lib/lumetra/licenses/QWT.html", "lib/udev/rules.d/70-lumetra-serial.rules"})
        QTest::newRow(file) << QString(file);
}

void TestInstallation::holdsItsFiles()
{
    QFETCH(QString, file);
    QVERIFY(QFileInfo(installed(file)).size() > 0);
}

void TestInstallation::theCommandLeadsToTheProgramsFolder()
{
    QCOMPARE(QFileInfo(installed("bin/lumetra")).canonicalFilePath(),
             QFileInfo(installed("lib/lumetra/lumetra")).canonicalFilePath());
    QVERIFY(!QFile::symLinkTarget(installed("bin/lumetra")).isEmpty());
}

void TestInstallation::theProgramComesUp()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", scratch->path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(installed("bin/lumetra"), {"-l", "-a"});
    const auto isUp = [this] {
        QFile log(scratch->filePath("Lumetra/log.txt"));
        return log.open(QIODevice::ReadOnly)
               && log.readAll().contains("Finished constructing main window");
    };
    QTRY_VERIFY_WITH_TIMEOUT(isUp(), 60000);
    // Its documents are those beside the program, wherever the link is.
    QCOMPARE(QFileInfo(QStringLiteral("/proc/%1/exe").arg(process.processId())).canonicalFilePath(),
             QFileInfo(installed("lib/lumetra/lumetra")).canonicalFilePath());
    process.terminate();
    QVERIFY(process.waitForFinished());
}

QTEST_GUILESS_MAIN(TestInstallation)
#include "tst_installation.moc"
