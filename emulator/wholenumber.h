#pragma once

#include <QString>

namespace emulator {

/// The most commands, packets or bytes that an option can speak of.
constexpr int greatestCount = 1000000000;

/// Reads a whole number. If the text is none, or none in the range, it is undefined, and `error`
/// says so in words for the user; otherwise `error` stays as it is.
int wholeNumber(const QString& text, int least, int greatest, QString& error);

} // namespace emulator
