#pragma once

#include "model/stage.h"

#include <QString>

#include <array>
#include <functional>

class Connection;

/// What the window knows of a system and the parameter dialog shows or needs.
struct SystemState
{
    QString label;
    /// Whether this was read from a controller that is connected now.
    bool isValid = false;
    /// By stage: whether its stabilisation is on.
    std::array<bool, 2> isStabilised{};
    /// By stage: whether it measures with the common detector of its group.
    std::array<bool, 2> isOnCommonPath{};
    int groupId = 0;
};

/// What the parameter dialog asks of the window, and tells it. Called on the GUI thread, while the
/// dialog lives, for registered connections.
struct ParamsSources
{
    std::function<SystemState(const Connection&)> stateOf;
    /// Notes which detector a stage measures with.
    std::function<void(const Connection&, Stage, bool isOnCommonPath)> noteCommonPath;
    /// The sampling rate of the tool bar, for a stream whose connection never accepted one.
    std::function<int()> samplingRateHz;
};
