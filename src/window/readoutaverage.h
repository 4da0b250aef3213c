#pragma once

#include <vector>

/// Mean over the latest values of a readout, so that its last digits can be read.
class ReadoutAverage
{
public:
    static constexpr std::size_t length = 41;

    void clear() { values.clear(); }
    /// Adds a value and returns the mean over the latest 41.
    double add(double value);

private:
    std::vector<double> values;
};
