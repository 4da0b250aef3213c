// What the connection dialog shows while the end of a link blocks.

#include "dialogbench.h"
#include "records.h"

#include <QtTest>

using records::file;
using records::quietSerial;
using records::quietTcp;
using widgettest::click;
using widgettest::named;

namespace {

/// Notes which texts of a label reach the screen.
class PaintedTexts final : public QObject
{
public:
    explicit PaintedTexts(QLabel& watched)
        : label(watched)
    {
        label.installEventFilter(this);
    }

    QStringList texts;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            texts.append(label.text());
        return false;
    }

private:
    QLabel& label;
};

} // namespace

class TestBusyNote final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void disconnectingIsShownWhileItBlocks();
    void deletingIsShownWhileItBlocks();
    void theNoteIsInTheTabOfTheSystem();
    void afterADeletionTheOldMessageIsBack();
    void aMessageThatComesDuringADeletionStays();
    void aLostLinkIsNoWaiting();

private:
    /// What is to be seen while the registry works.
    struct Seen
    {
        QStringList painted;
        bool isWaitPointer = false;
    };
    std::function<void()> look(const PaintedTexts& paint, Seen& seen) const;

    const QString busyText = QStringLiteral("Disconnecting ...");
    std::unique_ptr<DialogBench> bench;
};

void TestBusyNote::init()
{
    bench = std::make_unique<DialogBench>();
    bench->put(bench->defaultFile(), file({quietTcp("AB000000001", "127.0.0.77", "a"),
                                           quietSerial("CD000000002", "ttyUSB0", "b")}));
    bench->dialog.loadConnection(QString());
    bench->tcpLines().first()->setConnected(true);
    bench->showWide();
}

void TestBusyNote::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

std::function<void()> TestBusyNote::look(const PaintedTexts& paint, Seen& seen) const
{
    return [&paint, &seen] {
        seen.painted = paint.texts;
        seen.isWaitPointer = showsWaitPointer();
    };
}

void TestBusyNote::disconnectingIsShownWhileItBlocks()
{
    const PaintedTexts paint(bench->child<QLabel>("infoLabel2"));
    Seen seen;
    bench->registry.whenDisconnecting = look(paint, seen);
    QVERIFY(click(named<QPushButton>(*bench->tcpLines().first(), "Button")));
    QCOMPARE(seen.painted.value(seen.painted.size() - 1), busyText);
    QVERIFY(seen.isWaitPointer);
    QCOMPARE(bench->tcpInfo(), QString());
}

void TestBusyNote::deletingIsShownWhileItBlocks()
{
    const PaintedTexts paint(bench->child<QLabel>("infoLabel2"));
    Seen seen;
    bench->registry.whenClosing = look(paint, seen);
    QVERIFY(click(named<QPushButton>(*bench->tcpLines().first(), "deleteButton")));
    QCOMPARE(seen.painted.value(seen.painted.size() - 1), busyText);
    QVERIFY(seen.isWaitPointer);
}

void TestBusyNote::theNoteIsInTheTabOfTheSystem()
{
    QString serialText;
    QString tcpText;
    bench->registry.whenClosing = [&] {
        serialText = bench->serialInfo();
        tcpText = bench->tcpInfo();
    };
    bench->dialog.deleteConnectionSlot("ttyUSB0");
    QCOMPARE(serialText, busyText);
    QVERIFY(tcpText != busyText);
}

void TestBusyNote::afterADeletionTheOldMessageIsBack()
{
    auto& info = bench->child<QLabel>("infoLabel2");
    const QString before = info.text();
    QVERIFY(info.isHidden());
    bench->registry.closes = false;
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    QCOMPARE(info.text(), before);
    QVERIFY(info.isHidden());

    bench->registry.closes = true;
    info.setText("Connected");
    info.show();
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    QCOMPARE(info.text(), QStringLiteral("Connected"));
    QVERIFY(info.isVisible());
}

void TestBusyNote::aMessageThatComesDuringADeletionStays()
{
    bench->registry.whenClosing = [this] {
        bench->child<QLabel>("infoLabel2").setText("Could not disconnect.");
    };
    bench->dialog.deleteConnectionSlot("127.0.0.77");
    QCOMPARE(bench->tcpInfo(), QStringLiteral("Could not disconnect."));
}

void TestBusyNote::aLostLinkIsNoWaiting()
{
    const PaintedTexts paint(bench->child<QLabel>("infoLabel2"));
    Seen seen;
    bench->registry.whenDisconnecting = look(paint, seen);
    bench->dialog.onLinkLost(bench->registry.connections.front().get());
    QVERIFY(!seen.painted.contains(busyText));
}

QTEST_MAIN(TestBusyNote)
#include "tst_busynote.moc"
