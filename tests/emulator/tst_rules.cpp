#include "emulator/controlleroptions.h"
#include "emulator/rulebook.h"
#include "emulator/ruletext.h"
#include "wiretools.h"

#include <QtTest>

using namespace emulator;
using namespace wiretools;

Q_DECLARE_METATYPE(emulator::Rule)
Q_DECLARE_METATYPE(emulator::Faults)

namespace {

const QByteArray setFirstPFactor = "SPF" + hex("01 05dc 3b");
const QByteArray setSecondPFactor = "SPF" + hex("02 05dc 3b");
const QByteArray setFirstAdjustInX = "SAI" + hex("01 78 0064 3b");
const QByteArray setFirstAdjustInY = "SAI" + hex("01 79 0064 3b");

/// What is done with each command: the deed's letter, or "." without a rule.
QString deedsOf(RuleBook& book, const QByteArrayList& frames)
{
    const QMap<Deed, QChar> letters = {{Deed::CarryOut, 'c'},  {Deed::Refuse, 'r'},
                                       {Deed::Ignore, 'i'},    {Deed::Close, 'k'},
                                       {Deed::HalfClose, 'h'}, {Deed::Reply, 'a'}};
    QString deeds;
    for (const QByteArray& frame : frames) {
        const std::optional<Rule> rule = book.takeRuleFor(frame);
        deeds += rule ? letters.value(rule->deed) : QChar('.');
    }
    return deeds;
}

QByteArrayList repeated(const QByteArray& frame, int times)
{
    QByteArrayList frames;
    while (frames.size() < times)
        frames.append(frame);
    return frames;
}

} // namespace

class TestRules final : public QObject
{
    Q_OBJECT

private slots:
    void ruleIsWrittenInOneLine();
    void ruleMeetsItsPrefixOnly_data();
    void ruleMeetsItsPrefixOnly();
    void aRuleSkipsAndActsAsOftenAsTold_data();
    void aRuleSkipsAndActsAsOftenAsTold();
    void rulesOfOnePrefixActInTheirOrder_data();
    void rulesOfOnePrefixActInTheirOrder();
    void aRuleThatWasTakenFromDoesNotCount();
    void commandThatIsGivenBackDoesNotCount();
    void settledCommandIsNotGivenBack();
    void unplayedRulesAreThoseThatNeverActed();
    void listsOfOneMnemonicActTogether_data();
    void listsOfOneMnemonicActTogether();
    void listEntryThatIsNoMnemonicIsSkipped();
    void ruleIsDescribedAsItsOption_data();
    void ruleIsDescribedAsItsOption();
    void textBecomesARule_data();
    void textBecomesARule();
    void textThatIsNoRuleIsExplained_data();
    void textThatIsNoRuleIsExplained();
};

void TestRules::ruleIsWrittenInOneLine()
{
    const Rule rule = on("SPF\1").after(2).times(3).late(40).cutTo(1).reply("ab;");

    QCOMPARE(rule.prefix, QByteArray("SPF\1"));
    QCOMPARE(rule.skip, 2);
    QCOMPARE(rule.times, 3);
    QCOMPARE(rule.lateMs, 40);
    QCOMPARE(rule.shortBytes, 1);
    QCOMPARE(rule.deed, Deed::Reply);
    QCOMPARE(rule.reply, QByteArray("ab;"));
}

void TestRules::ruleMeetsItsPrefixOnly_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<bool>("met");

    QTest::newRow("mnemonic") << QByteArray("SPF") << setFirstPFactor << true;
    QTest::newRow("other mnemonic") << QByteArray("GPF") << setFirstPFactor << false;
    QTest::newRow("stage") << QByteArray("SPF\1") << setFirstPFactor << true;
    QTest::newRow("other stage") << QByteArray("SPF\1") << setSecondPFactor << false;
    QTest::newRow("axis") << QByteArray("SAI\1y") << setFirstAdjustInY << true;
    QTest::newRow("other axis") << QByteArray("SAI\1y") << setFirstAdjustInX << false;
    QTest::newRow("value with a zero byte")
        << QByteArray("SAI\1x" + hex("00")) << setFirstAdjustInX << true;
    QTest::newRow("whole frame") << setFirstPFactor << setFirstPFactor << true;
    QTest::newRow("unknown command") << QByteArray("ABC") << QByteArray("ABCdef;") << true;
    QTest::newRow("longer than the frame") << QByteArray("GSF;;") << QByteArray("GSF;") << false;
}

void TestRules::ruleMeetsItsPrefixOnly()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QByteArray, frame);
    QFETCH(bool, met);
    RuleBook book({on(prefix).refuse()});

    QCOMPARE(book.takeRuleFor(frame).has_value(), met);
    QCOMPARE(book.unplayed().isEmpty(), met);
}

void TestRules::aRuleSkipsAndActsAsOftenAsTold_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QString>("deeds");

    QTest::newRow("always") << Rule(on("GSF").refuse()) << "rrrrr";
    QTest::newRow("once") << Rule(on("GSF").once().refuse()) << "r....";
    QTest::newRow("three times") << Rule(on("GSF").times(3).refuse()) << "rrr..";
    QTest::newRow("after two") << Rule(on("GSF").after(2).refuse()) << "..rrr";
    QTest::newRow("after two, twice") << Rule(on("GSF").after(2).times(2).refuse()) << "..rr.";
    QTest::newRow("after more than come") << Rule(on("GSF").after(5).refuse()) << ".....";
}

void TestRules::aRuleSkipsAndActsAsOftenAsTold()
{
    QFETCH(Rule, rule);
    QFETCH(QString, deeds);
    RuleBook book({rule});

    QCOMPARE(deedsOf(book, repeated("GSF;", deeds.size())), deeds);
}

void TestRules::rulesOfOnePrefixActInTheirOrder_data()
{
    QTest::addColumn<QList<Rule>>("rules");
    QTest::addColumn<QString>("deeds");

    QTest::newRow("the first alone")
        << QList<Rule>{on("GSF").refuse(), on("GSF").ignore()} << "rrrr";
    QTest::newRow("one after the other")
        << QList<Rule>{on("GSF").times(2).refuse(), on("GSF").once().close(),
                       on("GSF").once().halfClose()}
        << "rrkh..";
    QTest::newRow("the second fills the gap")
        << QList<Rule>{on("GSF").after(2).once().refuse(), on("GSF").ignore()} << "iiriii";
    QTest::newRow("both skip the same commands")
        << QList<Rule>{on("GSF").after(2).once().refuse(), on("GSF").after(2).once().ignore()}
        << "..ri..";
    QTest::newRow("some pass untouched")
        << QList<Rule>{on("GSF").times(3).carryOut(), on("GSF").reply("x")} << "cccaaa";
}

void TestRules::rulesOfOnePrefixActInTheirOrder()
{
    QFETCH(QList<Rule>, rules);
    QFETCH(QString, deeds);
    RuleBook book(rules);

    QCOMPARE(deedsOf(book, repeated("GSF;", deeds.size())), deeds);
}

void TestRules::aRuleThatWasTakenFromDoesNotCount()
{
    RuleBook book({on("SPF\1").times(2).refuse(), on("SPF").after(1).ignore()});

    QCOMPARE(deedsOf(book, {setFirstPFactor, setSecondPFactor, setFirstPFactor, setFirstPFactor}),
             QStringLiteral("r.ri"));
}

void TestRules::commandThatIsGivenBackDoesNotCount()
{
    RuleBook book({on("GSF").after(1).once().refuse(), on("GSF").once().ignore()});

    book.takeRuleFor("GSF;");
    book.giveBack();

    QCOMPARE(book.unplayed().size(), 2);
    QCOMPARE(deedsOf(book, repeated("GSF;", 3)), QStringLiteral("ir."));
}

void TestRules::settledCommandIsNotGivenBack()
{
    RuleBook book({on("GSF").times(2).refuse()});

    book.takeRuleFor("GSF;");
    book.settle();
    book.takeRuleFor("GSF;");
    book.giveBack();

    QCOMPARE(deedsOf(book, repeated("GSF;", 2)), QStringLiteral("r."));
}

void TestRules::unplayedRulesAreThoseThatNeverActed()
{
    RuleBook book({on("GSF").times(2).refuse(), on("SPF\1").refuse(), on("GAS").after(1).ignore()});
    book.add(on("GSF;").after(1).close());
    QCOMPARE(book.unplayed(), QStringList({"refuse GSF:times=2", "refuse SPF:01",
                                           "silent GAS:skip=1", "close-on GSF:3b:skip=1"}));

    deedsOf(book, {"GSF;", "GAS;", setSecondPFactor});

    QCOMPARE(book.unplayed(),
             QStringList({"refuse SPF:01", "silent GAS:skip=1", "close-on GSF:3b:skip=1"}));
    deedsOf(book, {"GSF;", "GAS;", setFirstPFactor, "GSF;", "GSF;"});
    QCOMPARE(book.unplayed(), QStringList());
}

void TestRules::listsOfOneMnemonicActTogether_data()
{
    QTest::addColumn<Faults>("faults");
    QTest::addColumn<QList<Rule>>("rules");

    const auto row = [](const char* name, const QList<Rule>& rules, auto fill) {
        Faults faults;
        fill(faults);
        QTest::newRow(name) << faults << rules;
    };
    row("nothing", {}, [](Faults&) {});
    row("each list", // in the order of the deeds
        {on("GSF").close(), on("GAS").halfClose(), on("SEA").ignore(), on("CEA").refuse(),
         on("GID").late(800), on("GPF").cutTo(3)},
        [](Faults& faults) {
            faults.refuse = {"CEA"};
            faults.silent = {"SEA"};
            faults.lateMs = {{"GID", 800}};
            faults.shortBytes = {{"GPF", 3}};
            faults.closeOn = {"GSF"};
            faults.halfCloseOn = {"GAS"};
        });
    row("refused, late and cut", {on("SEA").refuse().late(50).cutTo(1)}, [](Faults& faults) {
        faults.refuse = {"SEA"};
        faults.lateMs = {{"SEA", 50}};
        faults.shortBytes = {{"SEA", 1}};
    });
    row("closed before all else", {on("SEA").close().late(50)}, [](Faults& faults) {
        faults.refuse = {"SEA"};
        faults.silent = {"SEA"};
        faults.closeOn = {"SEA"};
        faults.halfCloseOn = {"SEA"};
        faults.lateMs = {{"SEA", 50}};
    });
    row("swallowed before it is refused", {on("SEA").ignore()}, [](Faults& faults) {
        faults.refuse = {"SEA", "SEA"};
        faults.silent = {"SEA"};
    });
}

void TestRules::listsOfOneMnemonicActTogether()
{
    QFETCH(Faults, faults);
    QFETCH(QList<Rule>, rules);

    QCOMPARE(rulesOfLists(faults), rules);
}

void TestRules::listEntryThatIsNoMnemonicIsSkipped()
{
    Faults faults;
    faults.refuse = {"SP", "GSF"};
    faults.lateMs = {{"", 5}};

    QTest::ignoreMessage(QtWarningMsg, "emulator: \"SP\" in a list of faults is no mnemonic");
    QTest::ignoreMessage(QtWarningMsg, "emulator: \"\" in a list of faults is no mnemonic");
    QCOMPARE(rulesOfLists(faults), QList<Rule>({on("GSF").refuse()}));
}

void TestRules::ruleIsDescribedAsItsOption_data()
{
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QString>("text");

    QTest::newRow("mnemonic") << Rule(on("SPF").refuse()) << "refuse SPF";
    QTest::newRow("stage") << Rule(on("SPF\1").refuse()) << "refuse SPF:01";
    QTest::newRow("axis") << Rule(on("SAI\1x").ignore()) << "silent SAI:01x";
    QTest::newRow("a value like an axis")
        << Rule(on("SAI\1y" + hex("7879")).close()) << "close-on SAI:01y7879";
    QTest::newRow("a value like an axis where there is none")
        << Rule(on("SPF\1x").refuse()) << "refuse SPF:0178";
    QTest::newRow("counts") << Rule(on("GSF").after(2).times(3).halfClose())
                            << "half-close-on GSF:skip=2:times=3";
    QTest::newRow("reply") << Rule(on("GSF").once().reply(hex("00 3b 01 3b")))
                           << "reply GSF:times=1=003b013b";
    QTest::newRow("late") << Rule(on("SPF\2").once().late(500)) << "late SPF:02:times=1=500";
    QTest::newRow("short") << Rule(on("GPF").cutTo(0)) << "short GPF=0";
    QTest::newRow("two options") << Rule(on("SEA").refuse().late(50)) << "refuse SEA, late SEA=50";
    QTest::newRow("three options") << Rule(on("SEA\1").once().reply("a").late(50).cutTo(1))
                                   << "reply SEA:01:times=1=61, short SEA:01:times=1=1, "
                                      "late SEA:01:times=1=50";
    QTest::newRow("let pass") << Rule(on("GSF").times(3).carryOut()) << "late GSF:times=3=0";
}

void TestRules::ruleIsDescribedAsItsOption()
{
    QFETCH(Rule, rule);
    QFETCH(QString, text);

    QCOMPARE(describe(rule), text);
}

void TestRules::textBecomesARule_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("value");
    QTest::addColumn<Rule>("rule");

    const auto row = [](const char* option, const char* value, const Rule& rule) {
        QTest::addRow("%s %s", option, value) << QString(option) << QString(value) << rule;
    };
    row("refuse", "SPF", on("SPF").refuse());
    row("refuse", "spf:01", on("SPF\1").refuse());
    row("silent", "SAI:01x", on("SAI\1x").ignore());
    row("silent", "SAI:03yFc18", on("SAI\3y" + hex("fc18")).ignore());
    row("close-on", "GSF:skip=2", on("GSF").after(2).close());
    row("half-close-on", "GSF:skip=0:times=1", on("GSF").once().halfClose());
    row("refuse", "SEA:02:times=4:skip=10", on("SEA\2").after(10).times(4).refuse());
    row("reply", "GSF=003b013b", on("GSF").reply(hex("00 3b 01 3b")));
    row("reply", "GSF:skip=1:times=2=00", on("GSF").after(1).times(2).reply(hex("00")));
    row("late", "SPF:02:times=1=500", on("SPF\2").once().late(500));
    row("late", "GSF=0", on("GSF").carryOut());
    row("short", "GPF:01=3", on("GPF\1").cutTo(3));
    row("short", "GPF=0", on("GPF").cutTo(0));
}

void TestRules::textBecomesARule()
{
    QFETCH(QString, option);
    QFETCH(QString, value);
    QFETCH(Rule, rule);

    const ParsedRule parsed = parseRule(option, value);

    QCOMPARE(parsed.error, QString());
    QVERIFY(parsed.rule.has_value());
    QVERIFY2(*parsed.rule == rule, qPrintable(describe(*parsed.rule)));
    // What is told of it can be read again.
    const QString told = describe(rule);
    const int blank = told.indexOf(' ');
    QVERIFY(parseRule(told.left(blank), told.mid(blank + 1)).rule == rule);
}

void TestRules::textThatIsNoRuleIsExplained_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("error");

    const auto row = [](const char* option, const char* value, const char* error) {
        QTest::addRow("%s %s", option, value)
            << QString(option) << QString(value) << QString(error);
    };
    row("forget", "SPF", "there is no rule \"forget\"");
    row("refuse", "", "there is no command \"\"");
    row("refuse", "SP", "there is no command \"SP\"");
    row("refuse", "ABC:01", "there is no command \"ABC\"");
    row("refuse", "SPF:", "\"\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SPF:1", "\"1\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SPF:0g", "\"0g\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SPF:+1", "\"+1\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SPF:0 ", "\"0 \" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SPF:01=5",
        "\"01=5\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SEA:0102", "\"0102\" is more than the arguments of SEA");
    row("refuse", "GSF:3b", "\"3b\" is more than the arguments of GSF");
    row("refuse", "GSF:times=0", "\"0\" is not a whole number from 1 to 1000000000");
    row("refuse", "GSF:skip=-1", "\"-1\" is not a whole number from 0 to 1000000000");
    row("refuse", "GSF:skip=x", "\"x\" is not a whole number from 0 to 1000000000");
    row("late", "GSF", "\"GSF\" lacks \"=\" and a number");
    row("late", "GSF=3600001", "\"3600001\" is not a whole number from 0 to 3600000");
    row("late", "GSF:times=1",
        "\"times\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("short", "GSF=-1", "\"-1\" is not a whole number from 0 to 1000000000");
    row("refuse", "SPF:01x", "\"01x\" names an axis, but SPF has none");
    row("refuse", "SAI:x", "\"x\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SAI:0178x",
        "\"0178x\" is neither argument bytes, as in 01x, nor skip=N nor times=N");
    row("refuse", "SAI:01:02", "\"SAI:01:02\" says the argument bytes more than once");
    row("refuse", "SAI:skip=1:01:skip=1", "\"SAI:skip=1:01:skip=1\" says skip= more than once");
    row("late", "GSF:times=1:times=2=5", "\"GSF:times=1:times=2\" says times= more than once");
    row("refuse", "GSF:skip=%2", "\"%2\" is not a whole number from 0 to 1000000000");
    row("reply", "GSF=00x", "\"00x\" is not the bytes of a reply, as in 003b013b");
    row("reply", "GSF", "\"GSF\" lacks \"=\" and the bytes of the reply");
    row("reply", "GSF=", "\"\" is not the bytes of a reply, as in 003b013b");
    row("reply", "GSF=003", "\"003\" is not the bytes of a reply, as in 003b013b");
}

void TestRules::textThatIsNoRuleIsExplained()
{
    QFETCH(QString, option);
    QFETCH(QString, value);
    QFETCH(QString, error);

    const ParsedRule parsed = parseRule(option, value);

    QVERIFY(!parsed.rule.has_value());
    QCOMPARE(parsed.error, error);
}

QTEST_GUILESS_MAIN(TestRules)
#include "tst_rules.moc"
