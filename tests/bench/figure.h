#pragma once

#include <QtGlobal>

/// The lines that the programs of this folder print: what, how much and its unit, in columns that
/// `performancetable.py` reads.
namespace figure {

void tell(const char* what, double value, int decimals, const char* unit);
void tell(const char* what, qint64 value, const char* unit);

} // namespace figure
