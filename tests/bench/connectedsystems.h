#pragma once

#include "benchwindow.h"
#include "emulator/emulatorhost.h"

#include <vector>

/// The window with connected systems, each with lateral-effect detectors shown as length, over
/// emulated controllers whose beam runs on a circle.
class ConnectedSystems final
{
public:
    explicit ConnectedSystems(int count);
    ~ConnectedSystems();
    ConnectedSystems(const ConnectedSystems&) = delete;
    ConnectedSystems& operator=(const ConnectedSystems&) = delete;

    bool areUp() const { return allUp; }
    /// Begins an acquisition. False if not all systems stream.
    bool start();
    /// Records every sample of every system to files in this folder. False if none is recorded.
    bool record(const QString& folder);
    /// From now on the first `count` controllers keep their links and say nothing, or all speak
    /// again for 0.
    void silence(int count);

    BenchWindow& onScreen() { return screen; }
    double samplesStored() const;

private:
    bool addSystem(int number);

    emulator::EmulatorHost host;
    std::vector<emulator::ControllerHandle> controllers;
    bool allUp = true;
    BenchWindow screen;
};
