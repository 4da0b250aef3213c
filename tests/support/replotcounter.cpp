#include "support/replotcounter.h"

ReplotCounter::ReplotCounter(QwtPlot& plot)
{
    // Each replot tells the scales to the items that are interested in them.
    setItemInterest(QwtPlotItem::ScaleInterest);
    attach(&plot);
    count = 0;
}
