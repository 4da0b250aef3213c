#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/optionsection.h"

#include <QVector>

namespace emulator {

class OptionReader;

/// The options that make a controller misbehave.
QVector<OptionSection> faultSections();

/// `base` with the faults that are given. Their rules stand before those of `base`, in the order of
/// the options; among them, rules that name only a command stand last, and those of one command
/// act together.
Faults readFaults(OptionReader& reader, const Faults& base);

} // namespace emulator
