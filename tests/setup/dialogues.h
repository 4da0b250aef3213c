#pragma once

#include "dialogbench.h"
#include "emulator/emulatorhost.h"

#include <QByteArrayList>

#include <vector>

/// What controllers got while systems came up, and when.
namespace dialogues {

constexpr int timeoutMs = DialogBench::shortTimeoutMs;
/// How long a stop is waited for that no stream answers, and one that nobody answers.
constexpr int idleStopMs = timeoutMs * 3 / 2;
constexpr int silenceMs = timeoutMs * 2;

/// The commands that a controller got, with the times at which they came.
struct Dialogue
{
    QByteArrayList commands;
    std::vector<qint64> timesNs;

    /// Whether a wait of `ms` lies between a command and the next one. The controller sees a
    /// command when it gets a processor, which can be late for the first of the two.
    bool hasPause(int behind, int ms) const
    {
        constexpr qint64 nsPerMs = 1000000;
        constexpr int lateMs = timeoutMs / 2;
        const auto first = std::size_t(behind);
        return timesNs.size() > first + 1
               && timesNs[first + 1] - timesNs[first] >= (ms - lateMs) * nsPerMs;
    }
};

inline Dialogue dialogueOf(const emulator::ControllerHandle& controller)
{
    Dialogue dialogue;
    const QVector<emulator::WireEvent> wire = controller.wire();
    for (const emulator::WireEvent& event : wire) {
        if (event.direction != emulator::WireEvent::FromHost)
            continue;
        dialogue.commands.append(event.bytes);
        dialogue.timesNs.push_back(event.timeNs);
    }
    return dialogue;
}

} // namespace dialogues
