#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/optionsection.h"

#include <QVector>

namespace emulator {

class OptionReader;

/// What the program is to do.
OptionSection programSection();
/// What describes a controller: for all controllers, or behind the address of one.
QVector<OptionSection> controllerSections();

/// `base` with those options of `controllerSections` that are given.
ControllerOptions readControllerOptions(OptionReader& reader, const ControllerOptions& base);

} // namespace emulator
