#pragma once

#include "emulator/placement.h"

#include <QString>

#include <optional>

namespace emulator {

// What stands behind --tcp and --pty: a place, and behind it, separated by commas, options that
// hold for the controller there only and win over `common`. Empty on failure, with the reason in
// `error`.

/// Reads "ADDRESS:PORT[,OPTION...]". An IPv6 address stands in brackets.
std::optional<Placement> readTcpPlacement(const QString& text, const ControllerOptions& common,
                                          QString& error);
/// Reads "LINK[,OPTION...]".
std::optional<Placement> readPtyPlacement(const QString& text, const ControllerOptions& common,
                                          QString& error);

} // namespace emulator
