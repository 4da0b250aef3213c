#pragma once

class Connection;
class DetectorPair;
class Settings;

/// Stores the detectors of a controller, whose stream has to be stopped, in the default setup file,
/// under the identity that the controller tells now. Blocks for the exchange. False, with a warning
/// in the log and nothing stored, if it does not tell one that a record can hold. What goes wrong
/// with the file is in the log of `settings` only.
bool saveDetectors(Connection& connection, const DetectorPair& detectors, Settings& settings);
