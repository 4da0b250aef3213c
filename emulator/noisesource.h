#pragma once

#include <QtGlobal>

#include <array>
#include <random>

namespace emulator {

/// A seed for the stream of random numbers with that number. Neighbouring seeds and numbers give
/// unrelated streams (the finaliser of the SplitMix64 generator).
quint64 derivedSeed(quint64 seed, quint64 stream);

/// Seeded random numbers that are the same on every platform: the generator is defined by the
/// C++ standard, the transforms are ours, since the standard's distributions are not.
class NoiseSource final
{
public:
    explicit NoiseSource(quint64 seed)
        : generator(seed)
    {}

    quint64 word() { return generator(); }
    /// Evenly spread over 0 (included) to 1 (not included).
    double uniform();
    /// Normally distributed, mean 0, variance 1 (polar method).
    double gaussian();
    /// Fills `drives` with numbers of mean 0 and variance 1, evenly spread. Good enough, and four
    /// times cheaper, where a filter averages over many of them.
    template <std::size_t N>
    void fillDrives(std::array<double, N>& drives)
    {
        static_assert(N % 4 == 0, "one word gives four drives");
        for (std::size_t i = 0; i < N; i += 4) {
            const quint64 bits = generator();
            for (std::size_t part = 0; part < 4; ++part)
                drives[i + part] = drive(static_cast<qint16>(bits >> (16 * part)));
        }
    }

private:
    static double drive(qint16 sixteenBits)
    {
        constexpr double sqrt3 = 1.73205080756887729353;
        constexpr double halfSpan = 32768.0;
        return (sixteenBits + 0.5) * (sqrt3 / halfSpan);
    }

    std::mt19937_64 generator;
    double spare = 0.0;
    bool hasSpare = false;
};

} // namespace emulator
