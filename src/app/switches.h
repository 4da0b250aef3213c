#pragma once

#include <QDir>

/// Process-wide switches. They are written on the main thread before the application object
/// exists and only read afterwards, so they need no lock.
namespace switches {

/// Where the setup file, the log and the recordings live.
extern QDir configDir;
/// Shows the menu "Service" (`-s`).
extern bool serviceMode;
/// Offers the detector sensitivity in the parameter dialog (`-d`).
extern bool sensitivityTuning;
/// Searches serial adapters of every manufacturer (`-e`).
extern bool anySerialDevice;
/// Searches the serial ports without being asked (`-a` clears it).
extern bool autoSerialSearch;
/// Appends messages to the log file (`-l`).
extern bool fileLogging;

/// Reads one command line argument into the switches and logs what it did. An argument that is
/// none of the five options is logged and otherwise ignored.
void readArgument(const char* argument);

} // namespace switches
