#pragma once

#include <QSerialPort>
#include <QString>

namespace porterrors {

/// Whether the error means that the port is gone. After a time-out, for example, it is still
/// usable.
bool isLoss(QSerialPort::SerialPortError error);

/// Says in words who or what keeps us from opening a port, and what helps. Empty if it was not a
/// matter of permission. To be asked right after the open failed, on any thread.
QString explainRefusal(const QString& portName, QSerialPort::SerialPortError error);

} // namespace porterrors
