#pragma once

namespace emulator {

/// How much the surroundings disturb the emulated beam.
enum class Preset {
    Still, ///< Nothing moves and nothing makes noise: what is read is where the beam stands.
    Quiet,
    Typical,
    Noisy
};

/// Design values of the disturbances of one axis. Angles are microradians of the beam; with the
/// lever arm of 1 m one of them moves the beam by one micrometre on the detector.
struct BeamPreset
{
    /// Standard deviation of the random walk after one hour.
    double driftWalk = 0.0;
    /// Amplitude of the daily sine.
    double driftDaily = 0.0;
    /// Root mean square of the air's motion between 0.1 and 50 Hz.
    double airRms = 0.0;
    /// Root mean square of all lines of mounts and table together.
    double mountsRms = 0.0;
    /// Root mean square of all acoustic lines together.
    double acousticsRms = 0.0;
    /// Amplitude of each of the two mains lines.
    double mainsAmplitude = 0.0;
    /// White noise of the detector, micrometres per square root of hertz.
    double whiteDensity = 0.0;
    /// Root mean square of the intensity, as a fraction of it.
    double intensityRms = 0.0;
    /// Steps of the pointing of 2 to 10 microradians.
    double stepsPerHour = 0.0;
    /// How often the beam is blocked, each time for 0.1 to 5 s.
    double blocksPerHour = 0.0;
    /// How often the intensity falls by 30 %, each time for 0.1 to 5 s.
    double dipsPerHour = 0.0;
};

const BeamPreset& beamPreset(Preset preset);

} // namespace emulator
