#include "setup/connectionstatus.h"
#include "support/scriptedconnection.h"
#include "window/livesystem.h"
#include "window/statusflags.h"

#include <QtTest>

Q_DECLARE_METATYPE(Stage)

namespace {

/// "1 2 active1 active2 valid", without what is not set.
QString shown(const ConnectionStatus& status)
{
    QStringList words;
    const auto add = [&words](bool on, const char* word) {
        if (on)
            words.append(QLatin1String(word));
    };
    add(status.stabilised1, "1");
    add(status.stabilised2, "2");
    add(status.active1, "active1");
    add(status.active2, "active2");
    add(status.multiplex1, "multiplex1");
    add(status.multiplex2, "multiplex2");
    add(status.statusValid, "valid");
    return words.join(QLatin1Char(' '));
}

ConnectionStatus allSet()
{
    ConnectionStatus status;
    status.stabilised1 = status.stabilised2 = true;
    status.active1 = status.active2 = true;
    status.statusValid = true;
    return status;
}

LiveSystem systemOn(std::unique_ptr<Connection> connection)
{
    LiveSystem system;
    system.connection = std::move(connection);
    return system;
}

} // namespace

class TestStatusFlags final : public QObject
{
    Q_OBJECT

private slots:
    void eachBitOfAReplyBelongsToItsFlag_data();
    void eachBitOfAReplyBelongsToItsFlag();
    void aReplyThatIsTooShortChangesNothing_data();
    void aReplyThatIsTooShortChangesNothing();
    void eachFlagOfASampleIsTaken_data();
    void eachFlagOfASampleIsTaken();
    void anAcceptedSwitchIsNoted_data();
    void anAcceptedSwitchIsNoted();
    void forgettingClearsTheFiveFlags();
    void anIdleSystemIsAskedAndItsReplyTakenByALaterPoll();
    void aStreamingSystemIsNotAsked();
    void aSystemThatIsDownForgetsItsFlags();
    void labelAndAddressFollowTheConnection();
};

void TestStatusFlags::eachBitOfAReplyBelongsToItsFlag_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<QString>("status");
    QTest::newRow("none") << 0x00 << "valid";
    QTest::newRow("bit 3") << 0x08 << "1 valid";
    QTest::newRow("bit 4") << 0x10 << "2 valid";
    QTest::newRow("bit 5") << 0x20 << "active1 valid";
    QTest::newRow("bit 6") << 0x40 << "active2 valid";
    QTest::newRow("all") << 0x78 << "1 2 active1 active2 valid";
    QTest::newRow("the other bits") << 0x87 << "valid";
}

void TestStatusFlags::eachBitOfAReplyBelongsToItsFlag()
{
    QFETCH(int, flags);
    ConnectionStatus status;
    statusflags::takeReply(status, QByteArray("\0;", 2).append(char(flags)).append(';'));
    QTEST(shown(status), "status");

    status = allSet();
    statusflags::takeReply(status, QByteArray("\0;", 2).append(char(flags)).append(';'));
    QTEST(shown(status), "status");
}

void TestStatusFlags::aReplyThatIsTooShortChangesNothing_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("a refusal") << QByteArray("\x01;", 2);
}

void TestStatusFlags::aReplyThatIsTooShortChangesNothing()
{
    QFETCH(QByteArray, reply);
    ConnectionStatus status;
    statusflags::takeReply(status, reply);
    QCOMPARE(shown(status), QString());
    status = allSet();
    statusflags::takeReply(status, reply);
    QCOMPARE(shown(status), shown(allSet()));
}

void TestStatusFlags::eachFlagOfASampleIsTaken_data()
{
    QTest::addColumn<QVector<int>>("set");
    QTest::addColumn<QString>("status");
    QTest::newRow("none") << QVector<int>{0, 0, 0, 0, 0, 0} << "valid";
    QTest::newRow("stabilised 1") << QVector<int>{1, 0, 0, 0, 0, 0} << "1 valid";
    QTest::newRow("stabilised 2") << QVector<int>{0, 1, 0, 0, 0, 0} << "2 valid";
    QTest::newRow("active 1") << QVector<int>{0, 0, 1, 0, 0, 0} << "active1 valid";
    QTest::newRow("active 2") << QVector<int>{0, 0, 0, 1, 0, 0} << "active2 valid";
    QTest::newRow("multiplex 1") << QVector<int>{0, 0, 0, 0, 1, 0} << "multiplex1 valid";
    QTest::newRow("multiplex 2") << QVector<int>{0, 0, 0, 0, 0, 1} << "multiplex2 valid";
}

void TestStatusFlags::eachFlagOfASampleIsTaken()
{
    QFETCH(QVector<int>, set);
    MeasureSample sample;
    sample.stabilised1 = quint8(set[0]);
    sample.stabilised2 = quint8(set[1]);
    sample.active1 = quint8(set[2]);
    sample.active2 = quint8(set[3]);
    sample.multiplex1 = quint8(set[4]);
    sample.multiplex2 = quint8(set[5]);
    ConnectionStatus status = allSet();
    status.multiplex1 = status.multiplex2 = true;
    statusflags::takeSample(status, sample);
    QTEST(shown(status), "status");
    status = ConnectionStatus();
    statusflags::takeSample(status, sample);
    QTEST(shown(status), "status");
}

void TestStatusFlags::anAcceptedSwitchIsNoted_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<Stage>("stage");
    QTest::addColumn<bool>("on");
    QTest::addColumn<QString>("status");
    QTest::newRow("1 on") << false << Stage::One << true << "1";
    QTest::newRow("2 on") << false << Stage::Two << true << "2";
    QTest::newRow("1 off") << true << Stage::One << false << "2 active2 valid";
    QTest::newRow("2 off") << true << Stage::Two << false << "1 active1 valid";
    QTest::newRow("1 on again leaves the light") << true << Stage::One << true << shown(allSet());
}

void TestStatusFlags::anAcceptedSwitchIsNoted()
{
    QFETCH(bool, before);
    QFETCH(Stage, stage);
    QFETCH(bool, on);
    ConnectionStatus status = before ? allSet() : ConnectionStatus();
    statusflags::noteSwitch(status, stage, on);
    QTEST(shown(status), "status");
}

void TestStatusFlags::forgettingClearsTheFiveFlags()
{
    ConnectionStatus status = allSet();
    status.multiplex1 = true;
    statusflags::forget(status);
    QCOMPARE(shown(status), QString("multiplex1"));
}

void TestStatusFlags::anIdleSystemIsAskedAndItsReplyTakenByALaterPoll()
{
    auto made = std::make_unique<ScriptedConnection>();
    ScriptedConnection& connection = *made;
    connection.controller().answer("GSF", replies::status(0x28));
    QVERIFY(connection.startAndWait());
    LiveSystem system = systemOn(std::move(made));

    statusflags::poll(system);
    QCOMPARE(shown(system.status), QString());
    QVERIFY(QTest::qWaitFor([&] {
        statusflags::poll(system);
        return system.status.statusValid;
    }));
    QCOMPARE(shown(system.status), QString("1 active1 valid"));
}

void TestStatusFlags::aStreamingSystemIsNotAsked()
{
    auto made = std::make_unique<ScriptedConnection>();
    ScriptedConnection& connection = *made;
    QVERIFY(connection.startAndWait());
    connection.startStream(command::streamArgument(100));
    QByteArray reply;
    QVERIFY(connection.fetchReply(reply));
    QVERIFY(connection.isStreaming());
    LiveSystem system = systemOn(std::move(made));
    system.status = allSet();

    statusflags::poll(system);
    // Whatever was posted is written before this stop.
    connection.stopStream();
    QCOMPARE(connection.controller().mnemonics(), QList<QByteArray>({"SLS", "CLS"}));
    QCOMPARE(shown(system.status), shown(allSet()));
}

void TestStatusFlags::aSystemThatIsDownForgetsItsFlags()
{
    LiveSystem system = systemOn(std::make_unique<ScriptedConnection>());
    system.status = allSet();
    statusflags::poll(system);
    QCOMPARE(shown(system.status), QString());
}

void TestStatusFlags::labelAndAddressFollowTheConnection()
{
    LiveSystem system = systemOn(std::make_unique<ScriptedConnection>(QStringLiteral("ttyUSB4")));
    system.connection->setLabel(QStringLiteral("north"));
    statusflags::poll(system);
    QCOMPARE(system.status.label, QStringLiteral("north"));
    QCOMPARE(system.status.address, QStringLiteral("ttyUSB4"));
}

QTEST_GUILESS_MAIN(TestStatusFlags)
#include "tst_statusflags.moc"
