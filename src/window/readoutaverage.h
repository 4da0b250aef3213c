#pragma once

#include <vector>

/// Mean over the latest values of a readout, so that its last digits can be read.
class ReadoutAverage
{
public:
    static constexpr std::size_t usualLength = 41;

    void clear() { values.clear(); }
    /// Adds a value and returns the mean over the latest ones, at most `length` of them.
    double add(double value, std::size_t length = usualLength);

private:
    std::vector<double> values;
};
