#pragma once

#include <QString>

/// Why this process can not make a pseudo terminal and open both of its ends; empty if it can.
/// Within containers without a /dev/pts it can not. Tests that need one skip then.
QString pseudoTerminalProblem();
