// Systems of a setup file that come up side by side: what each controller sees is what it would see
// alone, and what stands on the screen stands in the order of the file.

#include "dialogbench.h"
#include "emulator/emulatorhost.h"
#include "flowtools.h"
#include "records.h"

#include <QtTest>

#include <vector>

using emulator::ControllerHandle;
using emulator::ControllerOptions;
using emulator::EmulatorHost;
using emulator::WireEvent;
using flowtools::buttonOf;
using flowtools::framesOfAConnect;
using flowtools::stored;
using records::file;

namespace {

constexpr int timeoutMs = DialogBench::shortTimeoutMs;
/// A stop that no stream answers is waited for so long, and one that nobody answers.
constexpr int idleStopMs = timeoutMs * 3 / 2;
constexpr int silenceMs = timeoutMs * 2;

/// The commands that a controller got, with the times at which they came.
struct Dialogue
{
    QByteArrayList commands;
    std::vector<qint64> timesNs;

    /// Whether at least so long lies between a command and the next one.
    bool hasPause(int behind, int ms) const
    {
        constexpr qint64 nsPerMs = 1000000;
        const auto first = std::size_t(behind);
        return timesNs.size() > first + 1 && timesNs[first + 1] - timesNs[first] >= ms * nsPerMs;
    }
};

Dialogue dialogueOf(const ControllerHandle& controller)
{
    Dialogue dialogue;
    const QVector<WireEvent> wire = controller.wire();
    for (const WireEvent& event : wire) {
        if (event.direction != WireEvent::FromHost)
            continue;
        dialogue.commands.append(event.bytes);
        dialogue.timesNs.push_back(event.timeNs);
    }
    return dialogue;
}

ControllerOptions withFaults(const emulator::Faults& faults)
{
    ControllerOptions options;
    options.faults = faults;
    return options;
}

ControllerOptions silent()
{
    emulator::Faults faults;
    faults.silent = {"CLS", "GID"};
    return withFaults(faults);
}

ControllerOptions refusing()
{
    emulator::Faults faults;
    faults.refuse = {"GID"};
    return withFaults(faults);
}

ControllerOptions ofAnotherMaker()
{
    ControllerOptions options;
    options.maker = "Abc";
    return options;
}

} // namespace

class TestSideBySide final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void eachControllerSeesTheSameBytesWithTheSameWaits();
    void linesRecordsAndConnectionsStandInTheOrderOfTheFile();

private:
    ControllerHandle add(const ControllerOptions& options = {});
    /// Loads all controllers that were added, in their order, as "s0", "s1" and so on.
    void loadAll();
    QStringList registered() const;
    QStringList linesShown() const;
    QStringList saved() const;

    std::unique_ptr<EmulatorHost> host;
    std::unique_ptr<DialogBench> bench;
    std::vector<ControllerHandle> controllers;
    QList<ConnectionSettings> list;
};

void TestSideBySide::init()
{
    host = std::make_unique<EmulatorHost>();
    bench = std::make_unique<DialogBench>();
    controllers.clear();
    list.clear();
}

void TestSideBySide::cleanup()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    bench.reset();
    host.reset();
    QVERIFY(widgettest::noWidgetIsLeft());
}

ControllerHandle TestSideBySide::add(const ControllerOptions& options)
{
    const int number = int(controllers.size());
    controllers.push_back(host->addTcp(options, QStringLiteral("127.0.0.%1").arg(number + 1)));
    list.append(stored(controllers.back(), QStringLiteral("s%1").arg(number)));
    return controllers.back();
}

void TestSideBySide::loadAll()
{
    bench->put(bench->defaultFile(), file(list));
    bench->dialog.loadConnection(QString());
}

/// Labels of the connections, in the order of the registry.
QStringList TestSideBySide::registered() const
{
    QStringList labels;
    for (const auto& connection : bench->registry.connections)
        labels.append(connection->label());
    return labels;
}

QStringList TestSideBySide::linesShown() const
{
    QStringList labels;
    for (const ConnectionWidget* line : bench->tcpLines())
        labels.append(widgettest::named<QLineEdit>(*line, "lineEdit").text());
    return labels;
}

/// Labels of the records, in their order.
QStringList TestSideBySide::saved() const
{
    bench->child<QPushButton>("saveConnectionButton").click();
    return records::labelsIn(bench->contentOf(bench->defaultFile()));
}

void TestSideBySide::eachControllerSeesTheSameBytesWithTheSameWaits()
{
    const ControllerHandle first = add();
    const ControllerHandle mute = add(silent());
    const ControllerHandle unwilling = add(refusing());
    const ControllerHandle foreign = add(ofAnotherMaker());
    add().stopListening();
    const ControllerHandle last = add();
    loadAll();

    for (const ControllerHandle& good : {first, last}) {
        const Dialogue dialogue = dialogueOf(good);
        QCOMPARE(dialogue.commands,
                 framesOfAConnect(good.address() == first.address() ? "s0" : "s5"));
        QVERIFY(dialogue.hasPause(0, idleStopMs));
        QVERIFY(dialogue.hasPause(1, idleStopMs));
    }
    const QByteArrayList withoutLabel{"CLS;", "CLS;", "GID;"};
    QCOMPARE(dialogueOf(mute).commands, withoutLabel);
    QVERIFY(dialogueOf(mute).hasPause(0, silenceMs));
    QVERIFY(dialogueOf(mute).hasPause(1, silenceMs));
    for (const ControllerHandle& answering : {unwilling, foreign}) {
        QCOMPARE(dialogueOf(answering).commands, withoutLabel);
        QVERIFY(dialogueOf(answering).hasPause(0, idleStopMs));
        QVERIFY(dialogueOf(answering).hasPause(1, idleStopMs));
    }
    QCOMPARE(
        bench->registry.statesWhenNew,
        QList<LinkState>({LinkState::Connected, LinkState::Disconnected, LinkState::Disconnected,
                          LinkState::Disconnected, LinkState::Disconnected, LinkState::Connected}));
    QCOMPARE(bench->registry.runningWhenNew, QList<bool>({true, false, false, false, false, true}));
}

void TestSideBySide::linesRecordsAndConnectionsStandInTheOrderOfTheFile()
{
    emulator::Faults late;
    late.lateMs = {{"GID", timeoutMs / 2}};
    add(silent());
    add(withFaults(late));
    add().stopListening();
    add();
    list[3].autoConnect = false;
    add(refusing());
    add();
    loadAll();
    const QStringList labels{"s0", "s1", "s2", "s3", "s4", "s5"};
    QCOMPARE(registered(), labels);
    QCOMPARE(linesShown(), labels);
    QCOMPARE(saved(), labels);
    QStringList buttons;
    for (const ConnectionWidget* line : bench->tcpLines())
        buttons.append(buttonOf(*line));
    QCOMPARE(buttons, QStringList({"Reconnect", "Disconnect", "Reconnect", "Reconnect", "Reconnect",
                                   "Disconnect"}));
}

QTEST_MAIN(TestSideBySide)
#include "tst_sidebyside.moc"
