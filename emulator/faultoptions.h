#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/optionsection.h"

#include <QVector>

namespace emulator {

class OptionReader;

/// The options that make a controller misbehave.
QVector<OptionSection> faultSections();

/// `base` with the faults that are given. Their rules stand before those of `base`.
Faults readFaults(OptionReader& reader, const Faults& base);

} // namespace emulator
