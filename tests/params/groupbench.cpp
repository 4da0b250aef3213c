#include "groupbench.h"

#include "support/userinput.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include <algorithm>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;
using emulator::WireEvent;

namespace {

constexpr int toolBarRateHz = 100;
constexpr char namesOfSystems[][9] = {"current ", "partner ", "third "};

template <typename Widget>
Widget& find(const ParamsDialog& dialog, const char* name)
{
    auto* child = dialog.findChild<Widget*>(QLatin1String(name));
    if (!child)
        qFatal("There is no %s", name);
    return *child;
}

} // namespace

GroupBench::GroupBench(std::size_t systems, const ControllerOptions& options)
    : states(systems)
    , dialog({[this](const Connection& connection) { return states[placeOf(connection)]; },
              [this](const Connection& connection, Stage stage, bool isOnCommonPath) {
                  ++notes;
                  states[placeOf(connection)].isOnCommonPath[indexOf(stage)] = isOnCommonPath;
              },
              [] { return toolBarRateHz; }},
             nullptr)
{
    for (SystemState& state : states) {
        state.isValid = true;
        dialog.addDetectors(links.emplace_back(options).client, {});
    }
    QObject::connect(&dialog, &ParamsDialog::errorStream, &dialog, [this] { ++streamErrors; });
}

std::size_t GroupBench::placeOf(const Connection& connection) const
{
    const auto found = std::find_if(links.begin(), links.end(), [&](const EmulatedLink& link) {
        return &link.client == &connection;
    });
    if (found == links.end())
        qFatal("The dialog asks for a connection that is not registered");
    return std::size_t(std::distance(links.begin(), found));
}

/// Waits for the buttons that are enabled without an exchange.
bool GroupBench::isExchangeOver() const
{
    return QTest::qWaitFor([this] { return isEnabled("pushButtonRefresh"); });
}

bool GroupBench::connect()
{
    return std::all_of(links.begin(), links.end(), [](EmulatedLink& link) {
        return link.client.isConnected() || link.connectAndIdentify();
    });
}

bool GroupBench::open(std::size_t system)
{
    if (!connect())
        return false;
    dialog.openFor(&links[system].client);
    for (const char* name : {"frame_2", "multiLine", "lockSubsystemButton"})
        find<QWidget>(dialog, name).show();
    QApplication::setActiveWindow(&dialog);
    const bool isOpen = QTest::qWaitForWindowExposed(&dialog) && isExchangeOver();
    for (EmulatedLink& link : links)
        link.controller.clearWire();
    return isOpen;
}

bool GroupBench::startStream(std::size_t system)
{
    const bool runs = links[system].startStream(rateHz(system));
    links[system].controller.clearWire();
    return runs;
}

bool GroupBench::startStreams()
{
    for (std::size_t i = 0; i < links.size(); ++i) {
        if (!startStream(i))
            return false;
    }
    return true;
}

bool GroupBench::isStreaming(std::size_t system) const
{
    const EmulatedLink& link = links[system];
    if (!link.client.isStreaming() || !link.controller.isStreaming())
        return false;
    return link.client.triggerMode() || link.controller.streamRate() == rateHz(system);
}

bool GroupBench::click(const char* button) const
{
    return user::click(&find<QPushButton>(dialog, button)) && isExchangeOver();
}

bool GroupBench::clickImpatiently(const char* button)
{
    const auto setTimeouts = [this](int timeoutMs) {
        for (EmulatedLink& link : links)
            link.client.setTimeoutMs(timeoutMs);
    };
    setTimeouts(FaultBench::faultyTimeoutMs);
    const bool isClicked = click(button);
    setTimeouts(EmulatedLink::shortTimeoutMs);
    return isClicked;
}

bool GroupBench::isEnabled(const char* button) const
{
    return find<QPushButton>(dialog, button).isEnabled();
}

bool GroupBench::areGroupButtonsEnabled() const
{
    constexpr std::array buttons{"alignPushButton", "lockSubsystemButton", "stabPushButton",
                                 "stab2PushButton"};
    return std::all_of(buttons.begin(), buttons.end(),
                       [this](const char* button) { return isEnabled(button); });
}

QString GroupBench::text(const char* label) const
{
    return find<QLabel>(dialog, label).text();
}

QString GroupBench::failure() const
{
    const auto& box = find<QMessageBox>(dialog, "errorBox");
    return box.isVisible() ? box.informativeText() : QString();
}

void GroupBench::closeFailure() const
{
    find<QMessageBox>(dialog, "errorBox").close();
}

QByteArrayList GroupBench::heard() const
{
    struct Heard
    {
        qint64 timeNs;
        QByteArray command;
    };
    std::vector<Heard> all;
    for (std::size_t i = 0; i < links.size(); ++i) {
        const QVector<WireEvent> events = links[i].controller.wire();
        for (const WireEvent& event : events) {
            if (event.direction == WireEvent::FromHost)
                all.push_back({event.timeNs, namesOfSystems[i] + event.bytes});
        }
    }
    std::sort(all.begin(), all.end(),
              [](const Heard& one, const Heard& other) { return one.timeNs < other.timeNs; });
    QByteArrayList commands;
    for (const Heard& one : all)
        commands.append(one.command);
    return commands;
}

QByteArray toCurrent(const QByteArray& command)
{
    return namesOfSystems[GroupBench::current] + command;
}

QByteArray toPartner(const QByteArray& command)
{
    return namesOfSystems[GroupBench::partner] + command;
}

std::vector<Failure> failuresOf(const QByteArray& command)
{
    const QByteArray tooShort(1, '\0');
    return {{"refused once", on(command).refuse().once()},
            {"refused", on(command).refuse()},
            {"unanswered once", on(command).ignore().once()},
            {"unanswered", on(command).ignore()},
            {"answered short once", on(command).reply(tooShort).once()},
            {"answered short", on(command).reply(tooShort)}};
}
