#include "emulator/noisesource.h"

#include "emulator/portablemath.h"

#include <cmath>

namespace emulator {

quint64 derivedSeed(quint64 seed, quint64 stream)
{
    quint64 mixed = seed + (stream + 1) * Q_UINT64_C(0x9E3779B97F4A7C15);
    mixed = (mixed ^ (mixed >> 30)) * Q_UINT64_C(0xBF58476D1CE4E5B9);
    mixed = (mixed ^ (mixed >> 27)) * Q_UINT64_C(0x94D049BB133111EB);
    return mixed ^ (mixed >> 31);
}

double NoiseSource::uniform()
{
    constexpr int unusedBits = 11;
    constexpr double step = 1.0 / 9007199254740992.0; // 2^-53
    return static_cast<double>(generator() >> unusedBits) * step;
}

double NoiseSource::gaussian()
{
    if (hasSpare) {
        hasSpare = false;
        return spare;
    }
    double a = 0.0;
    double b = 0.0;
    double square = 0.0;
    do {
        a = 2.0 * uniform() - 1.0;
        b = 2.0 * uniform() - 1.0;
        square = a * a + b * b;
    } while (square >= 1.0 || square <= 0.0);
    const double factor = std::sqrt(-2.0 * portable::logarithm(square) / square);
    spare = b * factor;
    hasSpare = true;
    return a * factor;
}

} // namespace emulator
