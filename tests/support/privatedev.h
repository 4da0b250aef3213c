#pragma once

#include <QString>

/// Lets the process put names into /dev. A user who may not write there gets a /dev of his own,
/// with pseudo terminals of its own, in a namespace that ends with the process. First thing in
/// `main`: it needs a process of a single thread.
void prepareDevFolder();

/// Why ports can not be made here; empty if they can.
QString devFolderProblem();
