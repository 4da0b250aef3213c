#pragma once

#include <QByteArray>

/// The bytes of pairs of hexadecimal digits.
inline QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}
