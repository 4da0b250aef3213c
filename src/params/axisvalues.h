#pragma once

/// Values of the two axes of a stage, millivolts.
struct AxisValues
{
    int xMv = 0;
    int yMv = 0;
};

inline bool operator==(const AxisValues& one, const AxisValues& other)
{
    return one.xMv == other.xMv && one.yMv == other.yMv;
}
