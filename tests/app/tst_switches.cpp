#include "app/switches.h"
#include "support/logcapture.h"

#include <QtTest>

using namespace switches;

namespace {

/// Names of the switches that are on.
QStringList setSwitches()
{
    QStringList names;
    if (serviceMode)
        names << QStringLiteral("service");
    if (sensitivityTuning)
        names << QStringLiteral("sensitivity");
    if (anySerialDevice)
        names << QStringLiteral("any device");
    if (autoSerialSearch)
        names << QStringLiteral("search");
    if (fileLogging)
        names << QStringLiteral("log");
    return names;
}

/// Notes what a switch was when its option's text was logged.
bool* watched = nullptr;
bool valueWhenLogged = false;

void noteWatched(QtMsgType, const QMessageLogContext&, const QString&)
{
    valueWhenLogged = *watched;
}

} // namespace

Q_DECLARE_METATYPE(bool*)

class TestSwitches final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void onlyTheSerialSearchIsOnAtFirst();
    void optionSetsItsSwitchAndSaysSo_data();
    void optionSetsItsSwitchAndSaysSo();
    void repeatedOptionChangesNothingMore();
    void optionsAddUp();
    void switchIsSetBeforeOrAfterItsText_data();
    void switchIsSetBeforeOrAfterItsText();
    void anythingElseIsLoggedAndSetsNothing_data();
    void anythingElseIsLoggedAndSetsNothing();
};

void TestSwitches::init()
{
    serviceMode = false;
    sensitivityTuning = false;
    anySerialDevice = false;
    autoSerialSearch = true;
    fileLogging = false;
}

void TestSwitches::onlyTheSerialSearchIsOnAtFirst()
{
    QCOMPARE(setSwitches(), QStringList{"search"});
}

void TestSwitches::optionSetsItsSwitchAndSaysSo_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<QStringList>("set");
    QTest::addColumn<QString>("text");
    QTest::newRow("-s") << QByteArray("-s") << QStringList{"service", "search"}
                        << "info: Activated service mode";
    QTest::newRow("-d") << QByteArray("-d") << QStringList{"sensitivity", "search"}
                        << "info: Activated settings for tuning the detector sensitivity";
    QTest::newRow("-e") << QByteArray("-e") << QStringList{"any device", "search"}
                        << "info: Activated support for serial devices other than FTDI";
    QTest::newRow("-a") << QByteArray("-a") << QStringList{}
                        << "info: Deactivated automatic search for serial devices";
    QTest::newRow("-l") << QByteArray("-l") << QStringList{"search", "log"}
                        << "info: Activated logging";
}

void TestSwitches::optionSetsItsSwitchAndSaysSo()
{
    QFETCH(const QByteArray, option);
    const LogCapture log;
    readArgument(option.constData());
    QTEST(setSwitches(), "set");
    QFETCH(const QString, text);
    QCOMPARE(log.lines(), QStringList{text});
}

void TestSwitches::repeatedOptionChangesNothingMore()
{
    const LogCapture log;
    readArgument("-a");
    readArgument("-a");
    QCOMPARE(setSwitches(), QStringList());
    QCOMPARE(log.lines().size(), 2);
}

void TestSwitches::optionsAddUp()
{
    const LogCapture log;
    for (const char* option : {"-l", "-a", "-e", "-d", "-s"})
        readArgument(option);
    QCOMPARE(setSwitches(), (QStringList{"service", "sensitivity", "any device", "log"}));
}

void TestSwitches::switchIsSetBeforeOrAfterItsText_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<bool*>("variable");
    QTest::addColumn<bool>("whenLogged");
    QTest::newRow("-s before") << QByteArray("-s") << &serviceMode << true;
    QTest::newRow("-d before") << QByteArray("-d") << &sensitivityTuning << true;
    QTest::newRow("-l before") << QByteArray("-l") << &fileLogging << true;
    QTest::newRow("-e after") << QByteArray("-e") << &anySerialDevice << false;
    // On until then, which is the old value here.
    QTest::newRow("-a after") << QByteArray("-a") << &autoSerialSearch << true;
}

void TestSwitches::switchIsSetBeforeOrAfterItsText()
{
    QFETCH(const QByteArray, option);
    QFETCH(bool*, variable);
    watched = variable;
    const QtMessageHandler previous = qInstallMessageHandler(noteWatched);
    readArgument(option.constData());
    qInstallMessageHandler(previous);
    QTEST(valueWhenLogged, "whenLogged");
}

void TestSwitches::anythingElseIsLoggedAndSetsNothing_data()
{
    QTest::addColumn<QByteArray>("argument");
    for (const char* argument : {"-s-l", "-sl", "--s", "-S", "s", "-", "", "-s ", "-style", "file"})
        QTest::addRow("\"%s\"", argument) << QByteArray(argument);
}

void TestSwitches::anythingElseIsLoggedAndSetsNothing()
{
    QFETCH(const QByteArray, argument);
    const LogCapture log;
    readArgument(argument.constData());
    QCOMPARE(setSwitches(), QStringList{"search"});
    QCOMPARE(log.lines(),
             QStringList{"info: Unrecognized command line argument " + QString(argument)});
}

QTEST_GUILESS_MAIN(TestSwitches)
#include "tst_switches.moc"
