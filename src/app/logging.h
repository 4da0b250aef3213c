#pragma once

#include <QDebug>
#include <QMessageLogger>

/// The logger that the whole application streams its messages into, such as
/// `logMessage().info() << "Starting"`. It carries no file, line or function, so that the log
/// does not depend on how the program was built. Any thread may call it.
QMessageLogger logMessage();
