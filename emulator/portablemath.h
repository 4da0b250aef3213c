#pragma once

/// Elementary functions from additions, multiplications, divisions and square roots alone. These
/// are rounded the same on every platform, whereas the last digit of the C library's own differs
/// from one library to the next; a seed then gives the same beam everywhere.
namespace emulator::portable {

double exponential(double x);
/// Natural logarithm; `x` is above 0.
double logarithm(double x);
double sine(double radians);
double cosine(double radians);
/// Error function, to 1.5e-7 (Abramowitz and Stegun, 7.1.26).
double errorFunction(double x);
/// The same to 1e-6, from a table that is made on the first call, several times faster.
double tabulatedErrorFunction(double x);

} // namespace emulator::portable
