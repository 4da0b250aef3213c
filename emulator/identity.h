#pragma once

#include "emulator/controlleroptions.h"

#include <QByteArray>

namespace emulator {

/// The device key stands at these characters of the ID text.
constexpr int keyPosition = 14;
constexpr int keyLength = 11;
constexpr int idLength = 47;

/// A key of letters and digits from a seed and a number that is unique in the process.
QByteArray derivedKey(quint64 seed, quint64 number);

/// The 47 characters that a controller answers to GID. `key` is cut or padded to its length, and
/// so is the maker.
QByteArray idText(const ControllerOptions& options, const QByteArray& key);

} // namespace emulator
