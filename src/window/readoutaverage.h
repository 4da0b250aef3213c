#pragma once

#include <vector>

/// Mean over the latest values of a readout, so that its last digits can be read.
class ReadoutAverage
{
public:
    static constexpr std::size_t usualLength = 41;

    void clear() { values.clear(); }
    /// Adds a value and keeps the latest ones, at most `length` of them.
    void add(double value, std::size_t length = usualLength);
    /// 0 without a value.
    double mean() const;

private:
    std::vector<double> values;
};
