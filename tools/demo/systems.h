#pragma once

#include "model/connectionsettings.h"

#include <QString>

/// The systems that are shown to newcomers; the first three are on pictures, too.
namespace demosystems {

constexpr int pictured = 3;
constexpr int count = 4;

/// The label of system `number`, from 0.
QString label(int number);

/// The stored record of system `number`, which connects by itself. `id` is the controller's
/// identification text.
ConnectionSettings record(int number, ConnectionType type, const QString& address,
                          int portOrBaudRate, const QString& id);

} // namespace demosystems
