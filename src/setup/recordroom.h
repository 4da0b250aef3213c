#pragma once

#include "model/connectionsettings.h"

/// Whether a record has room for the identification, which may hold any bytes.
inline bool canBeStored(const QString& id)
{
    return decltype(ConnectionSettings::id)::fits(id)
           && decltype(ConnectionSettings::serial)::fits(deviceKey(id));
}
