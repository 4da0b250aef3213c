#pragma once

#include <QCommandLineOption>
#include <QList>
#include <QString>

namespace emulator {

/// Options that belong together.
struct OptionSection
{
    /// The heading above them in the help.
    QString title;
    /// What is to be known about all of them. May be empty.
    QString note;
    QList<QCommandLineOption> options;
};

} // namespace emulator
