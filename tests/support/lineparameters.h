#pragma once

/// What a pseudo terminal's master sees of the parameters of the line.
namespace lineparameters {

/// Neither echo nor line editing: bytes pass as they are.
void makeRaw(int descriptor);
/// Bits per second; -1 if it can not be told.
int baudRate(int descriptor);
bool hasHardwareFlowControl(int descriptor);

} // namespace lineparameters
