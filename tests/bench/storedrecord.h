#pragma once

#include "model/connectionsettings.h"

/// Where an emulated controller is, and who it is.
struct ControllerPlace
{
    QString address;
    int port = 0;
    /// The identification text.
    QString id;
};

/// The setup file's record of system `number`, from 0, which connects by itself. Its detectors are
/// lateral-effect ones that show lengths.
ConnectionSettings storedRecord(int number, const ControllerPlace& place);
