#pragma once

#include <QByteArray>

#include <initializer_list>

namespace emulator {

/// A reply without payload: accepted, or refused.
QByteArray acceptance();
QByteArray refusal();

/// A good reply with these bytes, or with these values of 16 bits, high byte first.
QByteArray payload(const QByteArray& bytes);
QByteArray words(std::initializer_list<int> values);

/// Values of arguments, high byte first. The place has to exist.
int byteAt(const QByteArray& bytes, int index);
int unsignedWordAt(const QByteArray& bytes, int index);
int signedWordAt(const QByteArray& bytes, int index);

} // namespace emulator
