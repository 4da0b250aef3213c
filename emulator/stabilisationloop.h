#pragma once

namespace emulator {

/// The loop of one axis at the beam's own step: an integrator behind a low pass, with one step of
/// delay. Below its bandwidth it suppresses in proportion to the frequency; around one to two
/// times the bandwidth it amplifies by about 3.6 dB.
class StabilisationLoop final
{
public:
    /// Bandwidth at a P-factor of 1 V, Hz.
    static constexpr double bandwidthPerVoltHz = 200.0;
    /// Highest bandwidth that the actuators allow, Hz.
    static constexpr double greatestBandwidthHz = 400.0;
    /// Travel of the actuator to either side of its middle, micrometres of the beam.
    static constexpr double travelMicrometres = 80.0;

    void setBandwidth(double hz);
    /// Integrates the distance of the beam from its target, micrometres. The correction does not go
    /// beyond the end of the travel.
    void step(double errorMicrometres);
    /// Puts the actuator to a place and clears the state of the loop.
    void park(double micrometres);

    /// Shift of the beam by the actuator, micrometres.
    double correction() const { return position; }
    bool atEndOfTravel() const
    {
        return position >= travelMicrometres || position <= -travelMicrometres;
    }

private:
    double smoothing = 0.0;
    double gain = 0.0;
    double smoothed = 0.0;
    double position = 0.0;
};

} // namespace emulator
