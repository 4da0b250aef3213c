#include "model/detectorpair.h"
#include "recording/recordtext.h"
#include "recordings.h"

#include <QDateTime>
#include <QtTest>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale>

namespace {

constexpr int smallestMv = std::numeric_limits<qint16>::min();
constexpr int largestMv = std::numeric_limits<quint16>::max();
const QDateTime start(QDate(2026, 3, 1), QTime(12, 34, 56, 789));

QByteArray numberOf(double value, int decimals)
{
    std::string text;
    recordtext::appendNumber(text, value, decimals);
    return QByteArray::fromStdString(text);
}

QByteArray lineOf(quint64 ms, const MeasureSample& sample, const DetectorPair& detectors)
{
    std::string text;
    recordtext::appendLine(text, ms, sample, detectors);
    return QByteArray::fromStdString(text);
}

QByteArray headerOf(const DetectorPair& detectors)
{
    std::string text;
    recordtext::appendHeader(text, start, detectors);
    return QByteArray::fromStdString(text);
}

QByteArray printed(double value, int decimals)
{
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

DetectorPair pairOf(int type1, int calculation1, int type2, int calculation2,
                    double diameterUm = Detector::defaultBeamDiameterUm)
{
    return DetectorPair(type1, calculation1, type2, calculation2, 0, diameterUm, diameterUm);
}

struct DecimalComma : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// Programs and people of a country with a decimal comma, while this lives.
class CommaLocale final
{
public:
    CommaLocale()
        : before(std::locale::global(std::locale(std::locale(), new DecimalComma)))
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    }
    ~CommaLocale()
    {
        std::locale::global(before);
        QLocale::setDefault(QLocale::c());
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    std::locale before;
};

} // namespace

class TestRecordText final : public QObject
{
    Q_OBJECT

private slots:
    void voltsAreAsMadeByHand();
    void lengthsAreAsMadeByHand();
    void aDecimalCommaOfTheCountryChangesNothing();
    void headerNamesTheUnitsOfBothStages_data();
    void headerNamesTheUnitsOfBothStages();
    void micrometresAreUtf8();
    void dateIsThatOfTheClockOnTheWall();
    void everyMillivoltIsAsPrintfGivesIt_data();
    void everyMillivoltIsAsPrintfGivesIt();
    void everyPositionIsAsPrintfGivesIt_data();
    void everyPositionIsAsPrintfGivesIt();
    void numbersNearTheMiddleAreRoundedAsPrintfDoes_data();
    void numbersNearTheMiddleAreRoundedAsPrintfDoes();
    void numberKeepsWithinItsField_data();
    void numberKeepsWithinItsField();
    void everyColumnHasItsOwnValue();
    void valuesFollowTheDetectorWhateverThePlotsShow();
    void aHugeBeamLosesDecimals();
    void theTimeColumnHoldsEveryTime();
    void linesAreAppended();
    void fileNameHoldsTheLabel_data();
    void fileNameHoldsTheLabel();
};

void TestRecordText::voltsAreAsMadeByHand()
{
    const DetectorPair detectors;
    QByteArray text = headerOf(detectors);
    text += lineOf(0, sampleAt(0, 0, -1, 4000, 1234, -1234, 3500, 5000, 4999, 0, 10000), detectors);
    text += lineOf(10, sampleAt(0, 32767, -32768, 65535, -32768, 32767, 0, 32767, -32768, -4, -5),
                   detectors);
    text += lineOf(20, sampleAt(0, 5, -5, 4005, 1000, -1000, 5, 15, 25, 4995, 5005), detectors);
    text +=
        lineOf(20, sampleAt(0, 250, -250, 4015, 1, -2, 3505, 5015, 5025, 5035, 5045), detectors);
    QCOMPARE(text, madeByHand("volts.csv"));
}

void TestRecordText::lengthsAreAsMadeByHand()
{
    const DetectorPair detectors = pairOf(QuadrantDetector, 1, PsdDetector, 1);
    QByteArray text = headerOf(detectors);
    text += lineOf(0, sampleAt(0, 2000, -2000, 4000, 1200, -1, 3500, 5000, 5000, 5000, 5000),
                   detectors);
    text += lineOf(10, sampleAt(0, 0, 5, 0, -1200, 0, 0, 4990, 5010, 0, 10000), detectors);
    text += lineOf(20, sampleAt(0, 4000, -4000, 4000, 32767, -32768, 3500, 5000, 5000, -4, 4),
                   detectors);
    QCOMPARE(text, madeByHand("lengths.csv"));
}

void TestRecordText::aDecimalCommaOfTheCountryChangesNothing()
{
    const CommaLocale comma;
    QCOMPARE(QLocale().toString(1234.5), QStringLiteral("1.234,5"));
    voltsAreAsMadeByHand();
    lengthsAreAsMadeByHand();
}

void TestRecordText::headerNamesTheUnitsOfBothStages_data()
{
    QTest::addColumn<int>("type1");
    QTest::addColumn<int>("calculation1");
    QTest::addColumn<int>("type2");
    QTest::addColumn<int>("calculation2");
    QTest::addColumn<QString>("unit1");
    QTest::addColumn<QString>("unit2");
    QTest::newRow("none chosen") << 0 << 0 << 0 << 0 << "V"
                                 << "V";
    QTest::newRow("none chosen, as length") << 0 << 1 << 0 << 1 << "V"
                                            << "V";
    QTest::newRow("mm and V") << 2 << 1 << 2 << 0 << "mm"
                              << "V";
    QTest::newRow("V and µm") << 1 << 0 << 1 << 1 << "V"
                              << "µm";
    QTest::newRow("µm and mm") << 3 << 1 << 4 << 1 << "µm"
                               << "mm";
    QTest::newRow("mm and V of others") << 5 << 1 << 3 << 0 << "mm"
                                        << "V";
}

void TestRecordText::headerNamesTheUnitsOfBothStages()
{
    QFETCH(int, type1);
    QFETCH(int, calculation1);
    QFETCH(int, type2);
    QFETCH(int, calculation2);
    QFETCH(QString, unit1);
    QFETCH(QString, unit2);
    const QString expected = QStringLiteral("Start: 2026-03-01T12:34:56\n"
                                            "ms\tX1(%1)\tY1(%1)\tI1(V)\tX2(%2)\tY2(%2)\tI2(V)\t"
                                            "RX1(V)\tRY1(V)\tRX2(V)\tRY2(V)\n\n")
                                 .arg(unit1, unit2);
    QCOMPARE(headerOf(pairOf(type1, calculation1, type2, calculation2)), expected.toUtf8());
}

void TestRecordText::micrometresAreUtf8()
{
    QVERIFY(headerOf(pairOf(QuadrantDetector, 1, SelectDetector, 0)).contains("X1(\xC2\xB5m)"));
}

void TestRecordText::dateIsThatOfTheClockOnTheWall()
{
    std::string text;
    recordtext::appendHeader(text, start.toUTC(), DetectorPair());
    QVERIFY(QByteArray::fromStdString(text).startsWith("Start: 2026-03-01T12:34:56\n"));
}

void TestRecordText::everyMillivoltIsAsPrintfGivesIt_data()
{
    QTest::addColumn<int>("decimals");
    for (int decimals = 2; decimals <= 4; ++decimals)
        QTest::addRow("%d decimals", decimals) << decimals;
}

void TestRecordText::everyMillivoltIsAsPrintfGivesIt()
{
    QFETCH(int, decimals);
    for (int mv = smallestMv; mv <= largestMv; ++mv)
        QCOMPARE(numberOf(mv * 0.001, decimals), printed(mv * 0.001, decimals));
}

void TestRecordText::everyPositionIsAsPrintfGivesIt_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("calculation");
    for (const DetectorKind& kind : detectorKinds()) {
        QTest::addRow("%s in volts", kind.name) << int(kind.type) << 0;
        QTest::addRow("%s in length", kind.name) << int(kind.type) << 1;
    }
}

void TestRecordText::everyPositionIsAsPrintfGivesIt()
{
    QFETCH(int, type);
    QFETCH(int, calculation);
    constexpr double diameterUm = 83.7;
    constexpr quint16 intensityMv = 20011;
    const DetectorPair detectors = pairOf(type, calculation, type, calculation, diameterUm);
    const Detector& detector = *detectors[0];
    const int decimals = calculation == 0 || type == SelectDetector ? 3 : isPsdType(type) ? 4 : 2;
    const auto expected = [&](int mv) {
        const double volts = mv * 0.001;
        return printed(calculation == 0 ? volts
                                        : detector.calculatePosition(volts, intensityMv * 0.001),
                       decimals);
    };
    constexpr int largestSigned = std::numeric_limits<qint16>::max();
    for (int mv = smallestMv; mv <= largestSigned; ++mv) {
        // Each stage and axis has a value of its own.
        const auto x = qint16(mv);
        const auto y = qint16(-1 - mv);
        const QList<QByteArray> fields =
            lineOf(0, sampleAt(0, x, y, intensityMv, y, x, intensityMv, 0, 0, 0, 0), detectors)
                .split('\t');
        QCOMPARE(fields.at(1), expected(x));
        QCOMPARE(fields.at(2), expected(y));
        QCOMPARE(fields.at(4), expected(y));
        QCOMPARE(fields.at(5), expected(x));
    }
}

void TestRecordText::numbersNearTheMiddleAreRoundedAsPrintfDoes_data()
{
    QTest::addColumn<int>("decimals");
    for (int decimals = 0; decimals <= 5; ++decimals)
        QTest::addRow("%d decimals", decimals) << decimals;
}

void TestRecordText::numbersNearTheMiddleAreRoundedAsPrintfDoes()
{
    QFETCH(int, decimals);
    const double power = std::pow(10.0, decimals);
    // Up to the largest number that fits a field with its sign and all decimals.
    for (double middle = 0.5; middle < 1e7; middle = std::floor(middle * 1.01) + 1.5) {
        const double value = middle / power;
        for (const double off : {0.0, 1e-15, 1e-12, 9e-7, 1.1e-6, 1e-3}) {
            for (const double near : {value, value * (1 + off), value * (1 - off)}) {
                const QByteArray expected = printed(near, decimals);
                if (expected.size() < int(recordtext::maxFieldLength)) {
                    QCOMPARE(numberOf(near, decimals), expected);
                    QCOMPARE(numberOf(-near, decimals), '-' + expected);
                }
            }
        }
    }
}

void TestRecordText::numberKeepsWithinItsField_data()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("zero") << 0.0 << 2 << QByteArray("0.00");
    QTest::newRow("zero below") << -0.0 << 2 << QByteArray("-0.00");
    QTest::newRow("rounded to zero") << -0.004 << 2 << QByteArray("-0.00");
    QTest::newRow("rounded to the even binary") << 0.125 << 2 << QByteArray("0.12");
    QTest::newRow("nine characters") << 99999.999 << 3 << QByteArray("99999.999");
    QTest::newRow("rounded up to ten") << 99999.9996 << 3 << QByteArray("100000.00");
    QTest::newRow("ten characters") << 123456.789 << 3 << QByteArray("123456.79");
    QTest::newRow("ten with the sign") << -12345.678 << 3 << QByteArray("-12345.68");
    QTest::newRow("one decimal left") << 1234567.25 << 3 << QByteArray("1234567.2");
    QTest::newRow("no decimal left") << 12345678.9 << 3 << QByteArray("12345679");
    QTest::newRow("nine digits") << 999999999.4 << 3 << QByteArray("999999999");
    QTest::newRow("rounded up to ten digits") << 999999999.6 << 3 << QByteArray("inf");
    QTest::newRow("eight digits below") << -99999999.4 << 4 << QByteArray("-99999999");
    QTest::newRow("nine digits below") << -123456789.0 << 4 << QByteArray("-inf");
    QTest::newRow("longer than any room") << 1e300 << 2 << QByteArray("inf");
    QTest::newRow("longer than any room below") << -1e300 << 2 << QByteArray("-inf");
    QTest::newRow("largest") << std::numeric_limits<double>::max() << 4 << QByteArray("inf");
    QTest::newRow("smallest") << std::numeric_limits<double>::denorm_min() << 4
                              << QByteArray("0.0000");
    QTest::newRow("infinite") << infinity << 2 << QByteArray("inf");
    QTest::newRow("infinite below") << -infinity << 2 << QByteArray("-inf");
    QTest::newRow("not a number") << std::copysign(nan, 1.0) << 2 << QByteArray("nan");
    QTest::newRow("not a number below") << std::copysign(nan, -1.0) << 2 << QByteArray("-nan");
}

void TestRecordText::numberKeepsWithinItsField()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QFETCH(QByteArray, text);
    QCOMPARE(numberOf(value, decimals), text);
}

void TestRecordText::everyColumnHasItsOwnValue()
{
    QCOMPARE(lineOf(7, sampleAt(99, 1001, 1002, 1110, 1003, 1004, 1120, 1130, 1140, 1150, 1160),
                    DetectorPair()),
             QByteArray("7\t1.001\t1.002\t1.11\t1.003\t1.004\t1.12\t1.13\t1.14\t1.15\t1.16\n"));
}

void TestRecordText::valuesFollowTheDetectorWhateverThePlotsShow()
{
    // A 4QD and a PSD share no unit, so that plots of both would show volts.
    const QList<QByteArray> fields =
        lineOf(0, sampleAt(0, 2000, 0, 4000, 1200, 0, 4000, 0, 0, 0, 0),
               pairOf(QuadrantDetector, 1, PsdDetector, 1))
            .split('\t');
    QCOMPARE(fields.at(1), QByteArray("8.43"));
    QCOMPARE(fields.at(4), QByteArray("1.0000"));
}

void TestRecordText::aHugeBeamLosesDecimals()
{
    constexpr double diameterUm = 6.5e6;
    const DetectorPair detectors = pairOf(WidDetector, 1, WidDetector, 1, diameterUm);
    const QList<QByteArray> fields =
        lineOf(0, sampleAt(0, 1234, -1234, 0, 32767, -32768, 0, 0, 0, 0, 0), detectors).split('\t');
    QCOMPARE(fields.at(1), QByteArray("1234000.0"));
    QCOMPARE(fields.at(2), QByteArray("-1234000"));
    QCOMPARE(fields.at(4), QByteArray("32767000"));
    QCOMPARE(fields.at(5), QByteArray("-32768000"));
}

void TestRecordText::theTimeColumnHoldsEveryTime()
{
    QVERIFY(lineOf(std::numeric_limits<quint64>::max(), {}, DetectorPair())
                .startsWith("18446744073709551615\t"));
}

void TestRecordText::linesAreAppended()
{
    std::string text = "before\n";
    recordtext::appendLine(text, 1, {}, DetectorPair());
    recordtext::appendLine(text, 2, {}, DetectorPair());
    const QByteArray rest = "\t0.000\t0.000\t0.00\t0.000\t0.000\t0.00\t0.00\t0.00\t0.00\t0.00\n";
    QCOMPARE(QByteArray::fromStdString(text), QByteArray("before\n1" + rest + "2" + rest));
}

void TestRecordText::fileNameHoldsTheLabel_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("labels");
    QTest::addColumn<QStringList>("files");
    QTest::newRow("two systems") << "/data/run.csv" << QStringList{"A", "B"}
                                 << QStringList{"/data/run_A.csv", "/data/run_B.csv"};
    QTest::newRow("one system") << "run.txt" << QStringList{"A"} << QStringList{"run_A.txt"};
    QTest::newRow("the same label")
        << "run.csv" << QStringList{"A", "B", "A", "A"}
        << QStringList{"run_A.csv", "run_B.csv", "run_A_2.csv", "run_A_3.csv"};
    QTest::newRow("a label like the second of another")
        << "run.csv" << QStringList{"A_2", "A", "A"}
        << QStringList{"run_A_2.csv", "run_A.csv", "run_A_3.csv"};
    QTest::newRow("the second's name behind it")
        << "run.csv" << QStringList{"A", "A", "A_2"}
        << QStringList{"run_A.csv", "run_A_2.csv", "run_A_2_2.csv"};
    QTest::newRow("folders in a label") << "run.csv" << QStringList{"../a/b", ".._a_b"}
                                        << QStringList{"run_.._a_b.csv", "run_.._a_b_2.csv"};
    QTest::newRow("no label") << "run.csv" << QStringList{"", ""}
                              << QStringList{"run_.csv", "run__2.csv"};
    QTest::newRow("a dot in a label")
        << "run.csv" << QStringList{"a.b"} << QStringList{"run_a.b.csv"};
    QTest::newRow("the first dot counts")
        << "run.1.csv" << QStringList{"A"} << QStringList{"run_A.1.csv"};
    QTest::newRow("also that of a folder") << "/home/me/.config/Data/run.csv" << QStringList{"A"}
                                           << QStringList{"/home/me/_A.config/Data/run.csv"};
    QTest::newRow("no extension") << "run" << QStringList{"A"} << QStringList{"run_A"};
    QTest::newRow("percent signs") << "%1.csv" << QStringList{"%2"} << QStringList{"%1_%2.csv"};
}

void TestRecordText::fileNameHoldsTheLabel()
{
    QFETCH(QString, name);
    QFETCH(QStringList, labels);
    QFETCH(QStringList, files);
    QCOMPARE(recordtext::fileNames(name, labels), files);
}

QTEST_GUILESS_MAIN(TestRecordText)
#include "tst_recordtext.moc"
