#pragma once

#include "emulator/controlleroptions.h"
#include "emulator/optionsection.h"

#include <QVector>

namespace emulator {

class OptionReader;

/// The options that describe the beams, the detectors and what is connected to the stages.
QVector<OptionSection> beamSections();

/// Changes what is given, and leaves the rest of `options` alone.
void readBeamOptions(OptionReader& reader, ControllerOptions& options);

} // namespace emulator
