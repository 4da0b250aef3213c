#pragma once

#include "emulator/placement.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace emulator {

/// What the command was asked to do.
struct CommandLine
{
    enum class Wish { Run, ShowHelp, ShowVersion, ShowError };

    Wish wish = Wish::Run;
    /// The help text, or the error message.
    QString text;
    /// The controllers, those behind TCP first. Each that has no seed of its own adds its number to
    /// the common one.
    QVector<Placement> placements;
    bool quiet = false;
};

/// Reads the arguments, the program's name first. Loads the recordings that are to be replayed.
CommandLine readCommandLine(const QStringList& arguments);

} // namespace emulator
