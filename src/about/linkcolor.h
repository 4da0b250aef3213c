#pragma once

class QColor;
class QPalette;

/// How well two colours can be told apart, as the guidelines for accessible web pages define it:
/// from 1 for the same colour to 21 for black and white.
double contrastRatio(const QColor& one, const QColor& other);

/// The colour for links on a window: that of the palette if it can be read there, else the same
/// mixed with as much of the colour of the text as it takes. A dark palette often has no colour of
/// its own for links, and then the dark blue of a bright one.
QColor readableLinkColor(const QPalette& palette);
