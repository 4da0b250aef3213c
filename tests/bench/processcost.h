#pragma once

#include <QtGlobal>

/// What this process has used of the machine so far.
namespace processcost {

/// Time for which the calling thread had a processor.
double threadCpuS();
/// The same of all threads of the process, those that have ended included.
double processCpuS();
/// Memory of the process that lies in the machine's own at the moment; 0 where nothing tells.
qint64 residentBytes();

} // namespace processcost
