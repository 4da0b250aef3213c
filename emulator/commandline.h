#pragma once

#include "emulator/controlleroptions.h"

#include <QHostAddress>
#include <QString>
#include <QStringList>
#include <QVector>

namespace emulator {

/// Where one controller is to be reached.
struct TcpPlace
{
    QHostAddress address;
    quint16 port = 0;
};

/// What the command was asked to do.
struct CommandLine
{
    enum class Wish { Run, ShowHelp, ShowVersion, ShowError };

    Wish wish = Wish::Run;
    /// The help text, or the error message.
    QString text;
    QVector<TcpPlace> places;
    /// Paths of the links to pseudo terminals, one controller each.
    QStringList links;
    /// Common to all controllers; each adds its number to the seed, those behind TCP first.
    ControllerOptions options;
    bool quiet = false;
};

/// Reads the arguments, the program's name first. Loads the recording that is to be replayed.
CommandLine readCommandLine(const QStringList& arguments);

} // namespace emulator
