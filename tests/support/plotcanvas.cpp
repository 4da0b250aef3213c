#include "support/plotcanvas.h"

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>

bool keepsBackingStore(const QwtPlot& plot)
{
    return qobject_cast<const QwtPlotCanvas*>(plot.canvas())
        ->testPaintAttribute(QwtPlotCanvas::BackingStore);
}
