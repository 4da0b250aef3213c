#pragma once

#include <QByteArray>

namespace emulator {

/// A command has no length field and its arguments may hold the terminator, so that only the
/// mnemonic tells how many argument bytes follow; -1 for an unknown mnemonic.
int argumentLength(const QByteArray& mnemonic);

/// True for a command whose second argument byte names an axis, x or y.
bool hasAxis(const QByteArray& mnemonic);

/// Number of bytes of the usual reply to a command, framing included; 2 for an unknown mnemonic.
/// For the starts of a stream it is the first packet.
int replyLength(const QByteArray& mnemonic);

} // namespace emulator
