#pragma once

#include <QString>

#include <array>
#include <functional>

class Connection;

/// What the window knows of a system and the parameter dialog shows.
struct SystemState
{
    QString label;
    /// Whether a stage measures with the common detector of its group.
    std::array<bool, 2> isOnCommonPath{};
};

/// What the parameter dialog asks of the window. Called on the GUI thread, while the dialog lives.
struct ParamsSources
{
    std::function<SystemState(const Connection&)> stateOf;
    /// The sampling rate of the tool bar, for a stream whose connection never accepted one.
    std::function<int()> samplingRateHz;
};
