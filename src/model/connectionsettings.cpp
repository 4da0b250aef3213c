#include "model/connectionsettings.h"

bool operator==(const ConnectionSettings& a, const ConnectionSettings& b)
{
    return a.serial.text() == b.serial.text();
}

QString deviceKey(const QString& id)
{
    constexpr int keyEnd = 25;
    constexpr int keyLength = 11;
    return id.left(keyEnd).right(keyLength);
}
