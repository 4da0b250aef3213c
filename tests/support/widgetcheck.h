#pragma once

#include <QString>

/// Class names of the widgets that a test left behind. The screen's own widgets do not count: Qt
/// makes them for anyone who asks for a resolution in dots per inch, as Qwt does.
QString leftWidgets();
