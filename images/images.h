#pragma once

/// Makes the compiled-in pictures readable under ":/images/". A resource in a static library is
/// left out of the program unless somebody asks for it, so call this once before the first window.
/// `QIcon` finds the "@2x" pictures for finer screens by itself; a `QPixmap` made from a name does
/// not, so take a label's picture from `QIcon(name).pixmap(size)`.
void initImages();
