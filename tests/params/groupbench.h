#pragma once

#include "faultbench.h"
#include "params/paramsdialog.h"
#include "support/emulatedlink.h"

#include <deque>
#include <vector>

/// The parameter dialog over several emulated controllers, without the window, and with the
/// controls of a group, which nothing shows in the application. The first controller is the current
/// one and the second its partner where a test says nothing else.
class GroupBench final
{
public:
    static constexpr std::size_t current = 0;
    static constexpr std::size_t partner = 1;
    /// Of the streams, by system.
    static constexpr int rateHz(std::size_t system) { return system == current ? 300 : 200; }

    explicit GroupBench(std::size_t systems = 2, const emulator::ControllerOptions& options = {});

    /// Brings all links up; the wire logs begin behind that.
    bool connect();
    /// Opens the dialog, after `connect` if the links are not up; the wire logs begin behind that.
    bool open(std::size_t system = current);
    bool startStream(std::size_t system);
    /// Starts the streams of all systems; the wire logs begin behind that.
    bool startStreams();
    /// Whether a system streams at the rate of `startStreams`, or by triggers.
    bool isStreaming(std::size_t system) const;

    /// Clicks a button and waits until the exchange that it began is over.
    bool click(const char* button) const;
    /// As `click`, with shorter waits, for replies that do not come.
    bool clickImpatiently(const char* button);
    bool isEnabled(const char* button) const;
    /// Whether all four buttons of the group can be clicked.
    bool areGroupButtonsEnabled() const;
    QString text(const char* label) const;
    /// What the box that is shown says of the failure; null if there is none.
    QString failure() const;
    void closeFailure() const;

    /// The commands that came to all controllers, in their order. Those of the current one stand
    /// behind "current ", those of its partner behind "partner ".
    QByteArrayList heard() const;

    emulator::ControllerHandle& controller(std::size_t system) { return links[system].controller; }

    std::deque<EmulatedLink> links;
    std::vector<SystemState> states;
    ParamsDialog dialog;
    int streamErrors = 0;
    /// How often the dialog told which detector a stage measures with.
    int notes = 0;

private:
    std::size_t placeOf(const Connection& connection) const;
    bool isExchangeOver() const;
};

QByteArray toCurrent(const QByteArray& command);
QByteArray toPartner(const QByteArray& command);

/// A failure of a command, and how often it happens.
struct Failure
{
    const char* name;
    emulator::Rule rule;
};
/// Refused, unanswered and answered short, each once and always. The command has no effect then.
std::vector<Failure> failuresOf(const QByteArray& command);
