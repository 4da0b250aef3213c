#include "spectrum.h"

#include <cmath>

namespace {

constexpr double pi = 3.14159265358979323846;
using Values = std::vector<std::complex<double>>;

void transform(Values& values)
{
    const std::size_t count = values.size();
    for (std::size_t i = 1, j = 0; i < count; ++i) {
        std::size_t bit = count >> 1;
        for (; (j & bit) != 0; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(values[i], values[j]);
    }
    for (std::size_t half = 1; half < count; half *= 2) {
        const std::complex<double> turn = std::polar(1.0, -pi / static_cast<double>(half));
        for (std::size_t start = 0; start < count; start += 2 * half) {
            std::complex<double> factor = 1.0;
            for (std::size_t i = start; i < start + half; ++i) {
                const std::complex<double> odd = factor * values[i + half];
                values[i + half] = values[i] - odd;
                values[i] += odd;
                factor *= turn;
            }
        }
    }
}

} // namespace

Spectrum::Spectrum(const std::function<double()>& next, double samplesPerSecond, std::size_t length,
                   int segments)
    : binHz(samplesPerSecond / static_cast<double>(length))
    , power(length / 2, 0.0)
{
    // Mean square of the raised cosine, so that windows leave a sum of squares as it was.
    constexpr double windowPower = 3.0 / 8.0;
    const double scale =
        2.0 / (windowPower * segments * static_cast<double>(length) * static_cast<double>(length));
    Values values(length);
    for (int segment = 0; segment < segments; ++segment) {
        for (std::size_t i = 0; i < length; ++i) {
            const double phase = 2.0 * pi * static_cast<double>(i) / static_cast<double>(length);
            values[i] = next() * 0.5 * (1.0 - std::cos(phase));
        }
        transform(values);
        for (std::size_t i = 0; i < power.size(); ++i)
            power[i] += std::norm(values[i]) * scale;
    }
}

double Spectrum::rms(double lowHz, double highHz) const
{
    double sum = 0.0;
    for (std::size_t i = bin(lowHz); i <= bin(highHz) && i < power.size(); ++i)
        sum += power[i];
    return std::sqrt(sum);
}

double Spectrum::slope(double lowHz, double highHz) const
{
    constexpr int steps = 24;
    const double step = std::log(highHz / lowHz) / steps;
    double sumX = 0.0;
    double sumY = 0.0;
    double sumXx = 0.0;
    double sumXy = 0.0;
    for (int i = 0; i < steps; ++i) {
        const double low = lowHz * std::exp(step * i);
        const double high = low * std::exp(step);
        const auto bins = static_cast<double>(bin(high) - bin(low) + 1);
        const double x = std::log(0.5 * (low + high));
        const double y = 2.0 * std::log(rms(low, high)) - std::log(bins);
        sumX += x;
        sumY += y;
        sumXx += x * x;
        sumXy += x * y;
    }
    return (steps * sumXy - sumX * sumY) / (steps * sumXx - sumX * sumX);
}
