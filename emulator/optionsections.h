#pragma once

#include "emulator/controlleroptions.h"

#include <QCommandLineOption>
#include <QString>
#include <QVector>

namespace emulator {

class OptionReader;

/// Options that belong together, under a heading.
struct OptionSection
{
    QString title;
    QList<QCommandLineOption> options;
};

/// What the program is to do.
OptionSection programSection();
/// What describes a controller: for all controllers, or behind the address of one.
QVector<OptionSection> controllerSections();

/// `base` with those options of `controllerSections` that are given.
ControllerOptions readControllerOptions(OptionReader& reader, const ControllerOptions& base);

} // namespace emulator
