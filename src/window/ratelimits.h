#pragma once

#include "link/baudrates.h"
#include "link/commandframe.h"

/// What the field of the sampling rate shows.
struct RateField
{
    int maximumHz = 0;
    int valueHz = 0;
    bool enabled = false;
};

/// Which sampling rates can be chosen. A slow line limits the rate; while all displayed systems
/// follow the pulses of their lasers, it is locked and the user's own rate is kept for later.
class RateLimits final
{
public:
    static constexpr int slowLineMaxHz = 430;
    static constexpr int fastLineMaxHz = command::maxSamplingRateHz;
    static constexpr int pulsedHz = 1000;
    /// A controller on a line of this baud rate can not send faster than `slowLineMaxHz`.
    static constexpr int slowBaudRate = baudrate::slow;

    static constexpr int maximumHz(bool anySlowLine)
    {
        return anySlowLine ? slowLineMaxHz : fastLineMaxHz;
    }

    /// What the field, which shows `present` now, has to show from now on.
    RateField next(const RateField& present, bool allPulsed, bool running);
    bool isLocked() const { return locked; }
    /// While the rate is locked: the maximum that the field gets back.
    void keepMaximum(int maxHz) { savedMaximumHz = maxHz; }

private:
    bool locked = false;
    int savedMaximumHz = slowLineMaxHz;
    int savedValueHz = 0;
};
