#include "figure.h"

#include <cstdio>

namespace figure {

void tell(const char* what, double value, int decimals, const char* unit)
{
    std::printf("%-44s %14.*f %s\n", what, decimals, value, unit);
}

void tell(const char* what, qint64 value, const char* unit)
{
    std::printf("%-44s %14lld %s\n", what, value, unit);
}

} // namespace figure
