#pragma once

#include <complex>
#include <cstddef>
#include <functional>
#include <vector>

/// Power spectrum of a signal, estimated over overlapping windows.
class Spectrum final
{
public:
    /// Takes `segments` times `length` samples (a power of two) from `next`, which come
    /// `samplesPerSecond` times a second.
    Spectrum(const std::function<double()>& next, double samplesPerSecond, std::size_t length,
             int segments);

    /// Root mean square of what lies between two frequencies.
    double rms(double lowHz, double highHz) const;
    /// Exponent of the power law that fits best between two frequencies, each octave counting
    /// the same.
    double slope(double lowHz, double highHz) const;

private:
    std::size_t bin(double hz) const { return static_cast<std::size_t>(hz / binHz + 0.5); }

    double binHz;
    /// Mean square per bin.
    std::vector<double> power;
};
