// What is on the screen while the stored systems come up, before the window is there.

#include "support/widgetcheck.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QApplication>
#include <QLabel>
#include <QtTest>

namespace {

/// Notes each text that the notice has painted.
class NoticeReader final : public QObject
{
public:
    NoticeReader() { QApplication::instance()->installEventFilter(this); }

    QStringList texts;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* label = qobject_cast<const QLabel*>(object);
        const bool isNotice = label && label->objectName() == QLatin1String("waitNotice");
        if (isNotice && event->type() == QEvent::Paint && !texts.endsWith(label->text()))
            texts.append(label->text());
        return false;
    }
};

} // namespace

class TestArrival final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QCOMPARE(leftWidgets(), QString()); }

    void theSystemThatIsBeingConnectedIsNamed();
    void withoutStoredSystemsNothingIsSaid();
};

void TestArrival::theSystemThatIsBeingConnectedIsNamed()
{
    WindowFixture fixture(2);
    QVERIFY(fixture.writeSetupFile({fixture.record(0), fixture.record(1)}));
    const NoticeReader reader;
    QVERIFY(fixture.open());
    const auto notice = [&fixture](const char* label, int number) {
        return QStringLiteral("Connecting to %1 (%2) …")
            .arg(QLatin1String(label), fixture.controller(number).address());
    };
    QCOMPARE(reader.texts, QStringList({notice("System_1", 0), notice("System_2", 1)}));
    for (const QWidget* widget : QApplication::topLevelWidgets())
        QVERIFY(widget->objectName() != QLatin1String("waitNotice") || !widget->isVisible());
}

void TestArrival::withoutStoredSystemsNothingIsSaid()
{
    WindowFixture fixture;
    const NoticeReader reader;
    QVERIFY(fixture.open());
    QCOMPARE(reader.texts, QStringList());
}

QTEST_MAIN(TestArrival)
#include "tst_arrival.moc"
