#include "plots/durationtext.h"

#include <QtTest>

class TestDurationText final : public QObject
{
    Q_OBJECT

private slots:
    void textMeansSeconds_data();
    void textMeansSeconds();
    void secondsHaveATextOfNineCharacters_data();
    void secondsHaveATextOfNineCharacters();
    void everyTextThatIsShownMeansItsSeconds();
};

void TestDurationText::textMeansSeconds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("seconds");
    QTest::newRow("a minute") << "000:01:00" << 60;
    QTest::newRow("each section counts") << "001:02:03" << 3723;
    QTest::newRow("minutes and seconds up to 99") << "000:99:99" << 6039;
    QTest::newRow("the longest") << "999:99:99" << 3602439;
    QTest::newRow("without leading zeros") << "51:6:1" << 183961;
    QTest::newRow("digits that were deleted") << ":1:" << 60;
    QTest::newRow("all digits deleted") << "::" << 0;
    QTest::newRow("nothing") << "" << 0;
    QTest::newRow("no number counts 0") << "ab:01:0x9" << 60;
    QTest::newRow("sections behind the third do not count") << "000:00:01:05" << 1;
    QTest::newRow("beyond the range") << "1000000:00:00" << 2147483647;
    QTest::newRow("far below it") << "-1000000:00:00" << -2147483647 - 1;
}

void TestDurationText::textMeansSeconds()
{
    QFETCH(QString, text);
    QTEST(durationtext::toSeconds(text), "seconds");
}

void TestDurationText::secondsHaveATextOfNineCharacters_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << "000:00:00";
    QTest::newRow("ten") << 10 << "000:00:10";
    QTest::newRow("the last of a minute") << 59 << "000:00:59";
    QTest::newRow("a minute") << 60 << "000:01:00";
    QTest::newRow("the last of an hour") << 3599 << "000:59:59";
    QTest::newRow("one of each") << 3661 << "001:01:01";
    QTest::newRow("ten hours") << 36000 << "010:00:00";
    QTest::newRow("a hundred hours") << 360000 << "100:00:00";
    QTest::newRow("the last with minutes below 60") << 3599999 << "999:59:59";
    QTest::newRow("the first with minutes above 59") << 3600000 << "999:60:00";
    QTest::newRow("the last with seconds below 60") << 3602399 << "999:99:59";
    QTest::newRow("the first with seconds above 59") << 3602400 << "999:99:60";
    QTest::newRow("the longest") << durationtext::longestSeconds << "999:99:99";
    QTest::newRow("longer than the longest") << 3602440 << "999:99:99";
    QTest::newRow("negative") << -1 << "000:00:00";
}

void TestDurationText::secondsHaveATextOfNineCharacters()
{
    QFETCH(int, seconds);
    QTEST(durationtext::fromSeconds(seconds), "text");
}

void TestDurationText::everyTextThatIsShownMeansItsSeconds()
{
    constexpr int step = 7;
    for (int seconds = 0; seconds <= durationtext::longestSeconds; seconds += step)
        QCOMPARE(durationtext::toSeconds(durationtext::fromSeconds(seconds)), seconds);
}

QTEST_GUILESS_MAIN(TestDurationText)
#include "tst_durationtext.moc"
