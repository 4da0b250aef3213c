#include "support/replotcounter.h"

#include "plots/incrementalplot.h"

ReplotCounter::ReplotCounter(IncrementalPlot& plot)
{
    attach(&plot);
    QObject::connect(&plot, &IncrementalPlot::replotted, &context, [this] { ++count; });
}
