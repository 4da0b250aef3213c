// The licence documents beside the executable, and that the links of the box lead to them.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The texts in a page, as a browser shows them.
QStringList shownTexts(const QString& page)
{
    QStringList texts;
    static const QRegularExpression text("<pre>\n(.*?)</pre>",
                                         QRegularExpression::DotMatchesEverythingOption);
    auto found = text.globalMatch(page);
    while (found.hasNext())
        texts.append(found.next()
                         .captured(1)
                         .replace("&lt;", "<")
                         .replace("&gt;", ">")
                         .replace("&amp;", "&"));
    return texts;
}

} // namespace

class TestLicences final : public QObject
{
    Q_OBJECT

private slots:
    void pagesShowTheTextsOfTheDistributionToTheLetter_data();
    void pagesShowTheTextsOfTheDistributionToTheLetter();
    void linksLeadToTheDocumentsBesideTheExecutable_data();
    void linksLeadToTheDocumentsBesideTheExecutable();
};

void TestLicences::pagesShowTheTextsOfTheDistributionToTheLetter_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("licences");
    QTest::newRow("Qt") << "QT_LICENSE.html" << QStringList{"LGPL-3", "GPL-3"};
    QTest::newRow("Qwt") << "QWT.html" << QStringList{"LGPL-2.1"};
}

void TestLicences::pagesShowTheTextsOfTheDistributionToTheLetter()
{
    QFETCH(QString, page);
    QFETCH(QStringList, licences);
    const QString html = QString::fromUtf8(contents(QDir(LICENCE_FOLDER).filePath(page)));
    static const QRegularExpression headline("<h2>(.*)</h2>");
    QStringList files;
    auto found = headline.globalMatch(html);
    while (found.hasNext())
        files.append(found.next().captured(1));
    const QStringList texts = shownTexts(html);
    QCOMPARE(texts.size(), files.size());
    for (int i = 0; i < files.size(); ++i) {
        const QString original = QString::fromUtf8(contents(files.at(i)));
        QVERIFY(!original.isEmpty());
        // A browser leaves out the line break behind the tag.
        QCOMPARE(texts.at(i), original);
    }
    for (const QString& licence : licences)
        QVERIFY(files.contains("/usr/share/common-licenses/" + licence));
    QVERIFY(files.first().endsWith("/copyright"));
}

void TestLicences::linksLeadToTheDocumentsBesideTheExecutable_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("a usual path") << "lumetra";
    QTest::newRow("a path with blanks") << "Laser  laboratory/Lumetra 2";
    QTest::newRow("a path with other letters") << QString::fromUtf8("Geräte/レーザー");
}

void TestLicences::linksLeadToTheDocumentsBesideTheExecutable()
{
    QFETCH(QString, folder);
    const QTemporaryDir scratch;
    const QDir place(scratch.filePath(folder));
    QVERIFY(place.mkpath("licenses"));
    QVERIFY(QFile::copy(LICENCE_READER, place.filePath("licence-reader")));
    for (const char* page : {"QT_LICENSE.html", "QWT.html"})
        QVERIFY(QFile::copy(QDir(LICENCE_FOLDER).filePath(page),
                            place.filePath("licenses/") + QLatin1String(page)));
    QProcess reader;
    reader.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    reader.start(place.filePath("licence-reader"), QStringList());
    QVERIFY(reader.waitForFinished());
    QCOMPARE(QString::fromLocal8Bit(reader.readAllStandardOutput()),
             QString("Licence of Qt\nLicence of Qwt\n"));
}

QTEST_GUILESS_MAIN(TestLicences)
#include "tst_licences.moc"
