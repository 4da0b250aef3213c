#pragma once

#include <QStringList>
#include <QtGlobal>

#include <array>
#include <optional>

class Connection;

/// Values of the two axes of a stage, millivolts.
struct AxisValues
{
    int xMv = 0;
    int yMv = 0;
};

/// What a controller tells of one stage. A value that could not be read is 0, as is one that comes
/// from an external input.
struct StageParameters
{
    AxisValues adjustIn;
    int pFactorMv = 0;
    int sensitivityMv = 0;
};

/// What a controller tells of its parameters.
struct ParameterReading
{
    /// The status byte; nothing if it could not be read.
    std::optional<quint8> statusFlags;
    /// Where the beams are; nothing if that could not be read.
    std::optional<std::array<AxisValues, 2>> positions;
    std::array<StageParameters, 2> stages;
    /// Whether the controller said anything at all.
    bool isAnswered = false;
    /// What could not be read, such as "GPF 1", in the order in which it was asked for.
    QStringList unread;
};

/// Asks a controller, whose stream has to be stopped, for everything: `GSF`, `S1S`, `GAI` of four
/// axes, `GPF` of two stages, and above firmware 30 `GDS` of two stages. Blocks for the exchanges.
ParameterReading readParameters(Connection& connection);
