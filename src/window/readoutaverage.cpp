#include "window/readoutaverage.h"

#include <numeric>

void ReadoutAverage::add(double value, std::size_t length)
{
    if (values.size() >= length)
        values.erase(values.begin());
    values.push_back(value);
}

double ReadoutAverage::mean() const
{
    if (values.empty())
        return 0.0;
    return std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}
