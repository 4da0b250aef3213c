#pragma once

#include "emulator/packet.h"

#include <QVector>

class WindowFixture;

/// Feeds a running acquisition so that a test knows which samples a tick takes: between `send` and
/// the tick that follows nothing takes events, and nothing else sends.
class SampleFeed final
{
public:
    explicit SampleFeed(const WindowFixture& window)
        : fixture(window)
    {}

    /// Starts the acquisition by a click and clears when it runs, so that plots, statistics and
    /// time begin behind the packets that answered the starts.
    bool start() const;
    /// Sends samples of a controller and waits until its connection holds them.
    bool send(const QVector<emulator::PacketValues>& samples, int number = 0, quint8 flagsA = 0,
              quint8 flagsB = 0) const;
    /// `send` and one tick.
    bool show(const QVector<emulator::PacketValues>& samples, int number = 0) const;
    /// Clears as the tool bar does, at a later millisecond than anything before.
    void clear() const;

private:
    const WindowFixture& fixture;
};

/// Samples whose x of stage 1 counts in millivolts from `first`, and whose other positions differ
/// from it by hundreds.
QVector<emulator::PacketValues> countedSamples(int count, int first = 1);

/// Waits until the wall clock shows another millisecond.
void waitForNextMs();

/// Waits until the text of the statistics is due, even if it has just been built.
void waitForNextText();
