#pragma once

#include <QString>

// The start of a program that takes pictures of the application.

/// What the application does before it has a `QApplication`: pictures show it as it is.
void startAsTheApplication();

/// The folder for the pictures, which is the only argument of the program. Shows the help, with the
/// description in it, and ends the process if it is not given.
QString pictureFolder(const QString& description);
