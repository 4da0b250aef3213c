#include "link/porterrors.h"

#include <QLockFile>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// What the system answers when it is asked for the rights to a port; 0 grants them.
int refusal = 0;
int askedRights = 0;

QString explanation(const QString& portName)
{
    return porterrors::explainRefusal(portName, QSerialPort::PermissionError);
}

} // namespace

// In place of the library's.
extern "C" int faccessat(int, const char*, int rights, int) noexcept
{
    askedRights = rights;
    errno = refusal;
    return refusal == 0 ? 0 : -1;
}

class TestPortErrors final : public QObject
{
    Q_OBJECT

private slots:
    void init() { refusal = 0; }

    void onlyThreeErrorsAreNoLoss_data();
    void onlyThreeErrorsAreNoLoss();
    void otherErrorsNeedNoExplanation();
    void readingAndWritingIsAskedFor();
    void missingRightsAreTold_data();
    void missingRightsAreTold();
    void portThatIsGoneIsNotOneWithoutRights();
    void holderOfTheLockIsNamed();
};

void TestPortErrors::onlyThreeErrorsAreNoLoss_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isLoss");
    const auto metaEnum = QMetaEnum::fromType<QSerialPort::SerialPortError>();
    for (int i = 0; i < metaEnum.keyCount(); ++i) {
        const int error = metaEnum.value(i);
        QTest::newRow(metaEnum.key(i))
            << error
            << (error != QSerialPort::NoError && error != QSerialPort::TimeoutError
                && error != QSerialPort::UnsupportedOperationError);
    }
}

void TestPortErrors::onlyThreeErrorsAreNoLoss()
{
    QFETCH(int, error);
    QTEST(porterrors::isLoss(static_cast<QSerialPort::SerialPortError>(error)), "isLoss");
}

void TestPortErrors::otherErrorsNeedNoExplanation()
{
    refusal = EACCES;
    QCOMPARE(porterrors::explainRefusal("ttyUSB0", QSerialPort::DeviceNotFoundError), QString());
}

void TestPortErrors::readingAndWritingIsAskedFor()
{
    explanation("ttyUSB0");
    QCOMPARE(askedRights, R_OK | W_OK);
}

void TestPortErrors::missingRightsAreTold_data()
{
    QTest::addColumn<int>("reason");
    QTest::newRow("EACCES") << EACCES;
    QTest::newRow("EPERM") << EPERM;
}

void TestPortErrors::missingRightsAreTold()
{
    QFETCH(int, reason);
    refusal = reason;
    QVERIFY(explanation("ttyUSB0").startsWith("This user has no rights to use /dev/ttyUSB0."));
}

void TestPortErrors::portThatIsGoneIsNotOneWithoutRights()
{
    refusal = ENOENT;
    QVERIFY(!explanation("ttyUSB0").contains("no rights"));
}

// A lock file's name has no folders: '_' takes the place of '/' in the port's.
void TestPortErrors::holderOfTheLockIsNamed()
{
    const qint64 self = QCoreApplication::applicationPid();
    QLockFile lock(QStringLiteral("/tmp/LCK..lumetra_%1").arg(self));
    QVERIFY(lock.tryLock(0));

    QCOMPARE(explanation(QStringLiteral("lumetra/%1").arg(self)),
             QStringLiteral("/dev/lumetra/%1 is in use by tst_porterrors (process %1)").arg(self));
}

QTEST_GUILESS_MAIN(TestPortErrors)
#include "tst_porterrors.moc"
