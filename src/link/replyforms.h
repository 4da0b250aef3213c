#pragma once

#include <QByteArray>

// What a reply has to look like, in the forms in which callers ask for it. They differ on purpose:
// how much of a reply is looked at decides what a damaged one does.

namespace command {

/// More than one byte, 0x00 and ';'.
bool isAccepted(const QByteArray& reply);
/// As `isAccepted`, and at least this many bytes: what is too short for its value is no reply.
bool isAccepted(const QByteArray& reply, int leastBytes);
/// One byte at least, and the first one 0x00: what follows does not count.
bool isAcceptedByOne(const QByteArray& reply);
/// More than one byte, of which the first is 0x00; nobody looks at the others.
bool isAcceptedByTwo(const QByteArray& reply);
/// Whether a reply begins with the refusal byte 0x01.
bool isRefused(const QByteArray& reply);
/// More than this many bytes, whatever they are.
bool isLongerThan(const QByteArray& reply, int bytes);

} // namespace command
