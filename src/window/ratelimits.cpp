#include "window/ratelimits.h"

RateField RateLimits::next(const RateField& present, bool allPulsed, bool running)
{
    if (!locked) {
        savedValueHz = present.valueHz;
        savedMaximumHz = present.maximumHz;
    }
    if (allPulsed) {
        locked = true;
        return {pulsedHz, pulsedHz, false};
    }
    const bool wasLocked = locked;
    locked = false;
    if (!wasLocked)
        return {present.maximumHz, present.valueHz, !running};
    return {savedMaximumHz, savedValueHz, !running};
}
