#include "emulator/portablemath.h"

#include <array>
#include <cmath>

namespace emulator::portable {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double ln2 = 0.693147180559945309417;
constexpr double sqrtHalf = 0.707106781186547524401;

// A straight line between two entries is off by at most step^2 / 8 times the greatest curvature,
// 0.97: 5e-7. From the end of the table to infinity the function rises by 2e-8.
constexpr int tableEntriesPerUnit = 512;
constexpr int tableUnits = 4;
using ErrorTable = std::array<double, tableEntriesPerUnit * tableUnits + 1>;

ErrorTable errorTable()
{
    ErrorTable table{};
    for (std::size_t i = 1; i < table.size(); ++i)
        table[i] = errorFunction(static_cast<double>(i) / tableEntriesPerUnit);
    return table;
}

} // namespace

double exponential(double x)
{
    // e^x = 2^n * e^r with |r| <= ln2 / 2, where 16 terms of the series reach the last digit.
    const double n = std::floor(x / ln2 + 0.5);
    const double r = x - n * ln2;
    double sum = 1.0;
    for (int term = 16; term >= 1; --term)
        sum = 1.0 + sum * r / term;
    return std::ldexp(sum, static_cast<int>(n));
}

double logarithm(double x)
{
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent);
    if (mantissa < sqrtHalf) {
        mantissa *= 2.0;
        --exponent;
    }
    const double s = (mantissa - 1.0) / (mantissa + 1.0);
    const double square = s * s;
    double sum = 0.0;
    for (int power = 21; power >= 1; power -= 2)
        sum = sum * square + 1.0 / power;
    return 2.0 * s * sum + exponent * ln2;
}

double sine(double radians)
{
    const double x = radians - 2.0 * pi * std::floor(radians / (2.0 * pi) + 0.5);
    const double square = x * x;
    double sum = 1.0;
    for (int power = 30; power >= 2; power -= 2)
        sum = 1.0 - sum * square / (power * (power + 1.0));
    return x * sum;
}

double cosine(double radians)
{
    return sine(radians + pi / 2.0);
}

double errorFunction(double x)
{
    const double magnitude = std::fabs(x);
    const double t = 1.0 / (1.0 + 0.3275911 * magnitude);
    const double polynomial =
        t
        * (0.254829592
           + t * (-0.284496736 + t * (1.421413741 + t * (-1.453152027 + t * 1.061405429))));
    const double value = 1.0 - polynomial * exponential(-magnitude * magnitude);
    return x < 0.0 ? -value : value;
}

double tabulatedErrorFunction(double x)
{
    static const ErrorTable table = errorTable();
    const double place = std::fabs(x) * tableEntriesPerUnit;
    double value = 1.0;
    if (place < tableEntriesPerUnit * tableUnits) {
        const auto entry = static_cast<std::size_t>(place);
        value =
            table[entry] + (place - static_cast<double>(entry)) * (table[entry + 1] - table[entry]);
    }
    return x < 0.0 ? -value : value;
}

} // namespace emulator::portable
