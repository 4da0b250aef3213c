#include "emulator/beampreset.h"

namespace emulator {

namespace {

BeamPreset quiet()
{
    BeamPreset preset;
    preset.driftWalk = 1.0;
    preset.driftDaily = 1.0;
    preset.airRms = 0.3;
    preset.mountsRms = 0.1;
    preset.acousticsRms = 0.02;
    preset.mainsAmplitude = 0.01;
    preset.whiteDensity = 0.002;
    preset.intensityRms = 0.001;
    return preset;
}

BeamPreset typical()
{
    BeamPreset preset;
    preset.driftWalk = 5.0;
    preset.driftDaily = 5.0;
    preset.airRms = 2.0;
    preset.mountsRms = 1.0;
    preset.acousticsRms = 0.2;
    preset.mainsAmplitude = 0.05;
    preset.whiteDensity = 0.008;
    preset.intensityRms = 0.003;
    preset.stepsPerHour = 1.0;
    return preset;
}

BeamPreset noisy()
{
    BeamPreset preset;
    preset.driftWalk = 30.0;
    preset.driftDaily = 20.0;
    preset.airRms = 10.0;
    preset.mountsRms = 5.0;
    preset.acousticsRms = 1.0;
    preset.mainsAmplitude = 0.3;
    preset.whiteDensity = 0.05;
    preset.intensityRms = 0.01;
    preset.stepsPerHour = 10.0;
    preset.blocksPerHour = 10.0;
    preset.dipsPerHour = 10.0;
    return preset;
}

} // namespace

const BeamPreset& beamPreset(Preset preset)
{
    static const BeamPreset presets[] = {BeamPreset(), quiet(), typical(), noisy()};
    return presets[static_cast<int>(preset)];
}

} // namespace emulator
