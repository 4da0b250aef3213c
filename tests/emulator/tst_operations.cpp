#include "emulator/operation.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::Operation)
Q_DECLARE_METATYPE(emulator::RefusalCode)

namespace {

constexpr ValueRule noValue = {};
constexpr int least = -200;
constexpr int greatest = 1000;

Operation operation(StageRule stages, AxisRule axis = AxisRule::None, ValueRule value = noValue)
{
    return {"ABC", 4, 2, nullptr, stages, axis, value};
}

Operation stageAxisAndValue()
{
    return operation(StageRule::OneOrBoth, AxisRule::XOrY, {2, least, greatest});
}

RefusalCode reasonOf(const Operation& operation, const QByteArray& arguments)
{
    const auto read = readRequest(operation, arguments);
    const auto* reason = std::get_if<RefusalCode>(&read);
    return reason ? *reason : RefusalCode::None;
}

} // namespace

class TestOperations final : public QObject
{
    Q_OBJECT

private slots:
    void stagesAreNamedAsTheRuleAllows_data();
    void stagesAreNamedAsTheRuleAllows();
    void stageAxisAndValueAreRead();
    void argumentsWithoutRulesAreLeftAlone();
    void firstErrorIsTheReason_data();
    void firstErrorIsTheReason();
};

void TestOperations::stagesAreNamedAsTheRuleAllows_data()
{
    QTest::addColumn<Operation>("rules");
    QTest::addColumn<QByteArray>("stageByte");
    QTest::addColumn<bool>("allowed");
    QTest::addColumn<bool>("namesFirst");
    QTest::addColumn<bool>("namesSecond");

    const Operation one = operation(StageRule::One);
    const Operation any = operation(StageRule::OneOrBoth);
    QTest::newRow("one: 0") << one << hex("00") << false << false << false;
    QTest::newRow("one: 1") << one << hex("01") << true << true << false;
    QTest::newRow("one: 2") << one << hex("02") << true << false << true;
    QTest::newRow("one: 3") << one << hex("03") << false << false << false;
    QTest::newRow("any: 0") << any << hex("00") << false << false << false;
    QTest::newRow("any: 1") << any << hex("01") << true << true << false;
    QTest::newRow("any: 2") << any << hex("02") << true << false << true;
    QTest::newRow("any: 3") << any << hex("03") << true << true << true;
    QTest::newRow("any: 4") << any << hex("04") << false << false << false;
    QTest::newRow("any: 255") << any << hex("ff") << false << false << false;
}

void TestOperations::stagesAreNamedAsTheRuleAllows()
{
    QFETCH(Operation, rules);
    QFETCH(QByteArray, stageByte);
    QFETCH(bool, allowed);
    QFETCH(bool, namesFirst);
    QFETCH(bool, namesSecond);

    const auto read = readRequest(rules, stageByte);

    if (!allowed) {
        QCOMPARE(std::get<RefusalCode>(read), RefusalCode::NoSuchStage);
        return;
    }
    const Request request = std::get<Request>(read);
    QCOMPARE(request.names(0), namesFirst);
    QCOMPARE(request.names(1), namesSecond);
    QCOMPARE(request.stage, std::size_t(namesFirst ? 0 : 1));
}

void TestOperations::stageAxisAndValueAreRead()
{
    const auto read = readRequest(stageAxisAndValue(), hex("02 79 ff38"));

    const Request request = std::get<Request>(read);
    QCOMPARE(request.stage, std::size_t(1));
    QCOMPARE(request.axis, StageModel::Y);
    QCOMPARE(request.value, -200);
    QCOMPARE(request.arguments, hex("02 79 ff38"));
    QCOMPARE(std::get<Request>(readRequest(stageAxisAndValue(), hex("02 78 03e8"))).axis,
             StageModel::X);
}

void TestOperations::argumentsWithoutRulesAreLeftAlone()
{
    const auto read = readRequest(operation(StageRule::None), hex("09 7a ffff"));

    const Request request = std::get<Request>(read);
    QCOMPARE(request.arguments, hex("09 7a ffff"));
    QCOMPARE(request.value, 0);
    QVERIFY(std::holds_alternative<Request>(readRequest(operation(StageRule::None), {})));
}

void TestOperations::firstErrorIsTheReason_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<RefusalCode>("reason");

    QTest::newRow("none") << hex("03 78 0000") << RefusalCode::None;
    QTest::newRow("least") << hex("03 78 ff38") << RefusalCode::None;
    QTest::newRow("greatest") << hex("03 78 03e8") << RefusalCode::None;
    QTest::newRow("all") << hex("04 7a 03e9") << RefusalCode::NoSuchStage;
    QTest::newRow("axis and value") << hex("03 7a 03e9") << RefusalCode::NoSuchAxis;
    QTest::newRow("capital letter") << hex("03 58 0000") << RefusalCode::NoSuchAxis;
    QTest::newRow("too great") << hex("03 78 03e9") << RefusalCode::ValueOutOfRange;
    QTest::newRow("too small") << hex("03 78 ff37") << RefusalCode::ValueOutOfRange;
}

void TestOperations::firstErrorIsTheReason()
{
    QFETCH(QByteArray, arguments);
    QFETCH(RefusalCode, reason);

    QCOMPARE(reasonOf(stageAxisAndValue(), arguments), reason);
}

QTEST_GUILESS_MAIN(TestOperations)
#include "tst_operations.moc"
