#pragma once

#include "groupbench.h"
#include "support/bytes.h"

// What goes over the two wires when positions are applied, and what is told of failures, all of it
// written out.

inline const QString partnerSilent =
    QStringLiteral("The second subsystem didn't respond. Please retry.");
inline const QString valuesMissing =
    QStringLiteral("The values of the common detector were not available. Please retry.");

/// -1.000 V and 0.250 V of stage 1, -5.000 V and a value whose low byte ends other commands of
/// stage 2.
inline emulator::Rule tellPositions()
{
    return emulator::on("GCA").reply(bytes("003bfc1800faec78003b3b"));
}

inline QByteArrayList stops()
{
    return {toCurrent("CLS;"), toPartner("CLS;")};
}

inline QByteArrayList starts()
{
    return {toCurrent(bytes("534c530000012c3b")), toPartner(bytes("534c53000000c83b"))};
}

inline QByteArrayList multiplexCommands()
{
    return {toPartner("SMD\1;"), toPartner("SMD\2;")};
}

/// From the question for the positions on, told by `tellPositions`.
inline QByteArrayList overlayCommands()
{
    return {toCurrent("GCA;"), toPartner(bytes("5341490178fc183b")),
            toPartner(bytes("534149017900fa3b")), toPartner(bytes("5341490278ec783b")),
            toPartner(bytes("5341490279003b3b"))};
}
