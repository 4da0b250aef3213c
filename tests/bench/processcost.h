#pragma once

#include <QtGlobal>

/// What this process has used of the machine so far.
namespace processcost {

/// Time for which the calling thread had a processor.
double threadCpuS();
/// The same of all threads of the process, those that have ended included.
double processCpuS();
/// Time since the process was started, in steps of 10 ms; 0 where nothing tells.
double ageS();
/// Memory of the process that lies in the machine's own at the moment; 0 where nothing tells.
qint64 residentBytes();

} // namespace processcost
