#pragma once

class QString;
class QWidget;

/// Opens a manual from the folder of the program in the desktop's reader. Says so in a box over
/// `window` if the file is missing or can not be opened.
void openUserManual(const QString& fileName, QWidget& window);
