#pragma once

class QwtPlot;

/// Whether the canvas of the plot keeps a picture of itself.
bool keepsBackingStore(const QwtPlot& plot);
