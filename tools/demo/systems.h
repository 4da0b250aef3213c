#pragma once

#include "model/connectionsettings.h"

#include <QString>

/// The three systems that are shown to newcomers and on pictures.
namespace demosystems {

constexpr int count = 3;

/// The label of system `number`, from 0.
QString label(int number);

/// The stored record of system `number`, which connects by itself. `id` is the controller's
/// identification text.
ConnectionSettings record(int number, const QString& address, int port, const QString& id);

} // namespace demosystems
