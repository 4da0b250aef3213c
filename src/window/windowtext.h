#pragma once

#include <QCoreApplication>

/// Translates the texts of the main window in those of its rooms that are no `QObject`:
/// `WindowText::tr("Start")`.
struct WindowText
{
    Q_DECLARE_TR_FUNCTIONS(MainWindow)
};
