#pragma once

#include "emulator/beampreset.h"
#include "emulator/detectorreading.h"
#include "emulator/disturbance.h"
#include "emulator/light.h"
#include "emulator/noisesource.h"
#include "emulator/stabilisationloop.h"
#include "emulator/stageoptions.h"

#include <QtGlobal>

#include <array>
#include <optional>

namespace emulator {

/// One stage of a controller: the beam on its detector in two axes, and the loop that holds it. A
/// stage of a group has the group's common detector as well. Voltages are millivolts, as on the
/// wire. Not thread safe.
class StageModel final
{
public:
    /// Indices of the axes.
    enum Axis { X = 0, Y = 1 };
    static constexpr int axes = 2;

    static constexpr int nominalPFactorMv = 1000;
    static constexpr int nominalSensitivityMv = 1000;
    /// Middle of the actuators' range of 0 to 10 V.
    static constexpr int actuatorMiddleMv = 5000;

    /// Detectors that a stage can be read from. A stage alone has only its own, which then takes
    /// the place of the common one.
    enum class View { Own, Common };

    /// `intensityMv` is the intensity signal of the undimmed, centred beam. A `group` above 0 has a
    /// common detector.
    StageModel(const BeamPreset& preset, const StageOptions& options, double intensityMv,
               quint64 seed, int group = 0);

    void advance(int steps);

    /// As after a power cut: off, nothing held, the actuators in their middle; settings are kept.
    void restart();

    void setOn(bool on);
    bool isOn() const { return on; }
    /// On, every actuator within its travel, and enough light.
    bool isActive() const;

    /// Moves the external inputs.
    void setInputs(const ExternalInputs& inputs);
    const ExternalInputs& inputs() const { return external; }
    /// Settings by software. 0 selects the external input.
    void setPFactor(int millivolts);
    int pFactor() const { return pFactorMv; }
    void setSensitivity(int millivolts);
    int sensitivity() const { return sensitivityMv; }
    /// Target of an axis; 0 selects the external input. It is a newer target than that of a hold,
    /// which ends.
    void setAdjustIn(Axis axis, int millivolts);
    int adjustIn(Axis axis) const { return adjustInMv[axis]; }
    /// Makes the present position the target of both axes and switches the stage on. The target
    /// stays when the stage is switched off, and counts again when it is switched on, until it is
    /// cleared, adjust-in is set or the power is cut.
    void setHold();
    /// Goes back to adjust-in.
    void clearHold();
    bool isHeld() const { return held; }
    /// A stage of a group that is multiplexed holds its beam on the common detector, any other one
    /// on its own. Targets keep their millivolts.
    void setMultiplexed(bool multiplexed) { onCommonPath = multiplexed; }
    bool isMultiplexed() const { return onCommonPath; }
    /// Drives an actuator to `millivolts` from its middle. A loop that is on continues from there.
    void driveActuator(Axis axis, int millivolts);

    /// Position signal, -5000 to 5000.
    qint16 positionMv(Axis axis, View view = View::Own) const;
    quint16 intensityMv(View view = View::Own) const;
    /// Actuator signal, 0 to 10000.
    qint16 actuatorMv(Axis axis) const;

    /// Position signal before the low pass that stands in front of the sampler, mV.
    double rawPositionMv(Axis axis) const { return own.signalMv(axis); }
    /// Where the beam really is, micrometres from the centre of its own detector.
    double beamMicrometres(Axis axis) const { return beam[axis]; }

private:
    struct AxisState
    {
        AxisState(const BeamPreset& preset, BeamAxis axis, quint64 seed);

        Disturbance disturbance;
        NoiseSource detectorNoise;
        StabilisationLoop loop;
        double heldMv = 0.0;
        double targetMv = 0.0;
    };

    AxisState& ofAxis(Axis axis) { return axisStates[axis]; }
    const AxisState& ofAxis(Axis axis) const { return axisStates[axis]; }
    const DetectorReading& seen(View view) const;
    /// What the loops work with.
    const DetectorReading& watched() const { return seen(onCommonPath ? View::Common : View::Own); }
    void updateGain();
    void updateTargets();
    void step();
    void stepLoops();

    PerAxis undisturbed;
    double whiteMicrometres;
    DetectorReading own;
    std::optional<DetectorReading> common;
    Light light;
    std::array<AxisState, axes> axisStates;
    bool on = false;
    bool held = false;
    bool onCommonPath;
    int pFactorMv = nominalPFactorMv;
    int sensitivityMv = 0;
    ExternalInputs external;
    std::array<int, axes> adjustInMv{};
    PerAxis beam{};
};

} // namespace emulator
