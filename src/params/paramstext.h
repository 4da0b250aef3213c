#pragma once

#include <QCoreApplication>

/// Translates the texts of the parameter dialog in those of its rooms that are no `QObject`.
struct ParamsText
{
    Q_DECLARE_TR_FUNCTIONS(ParamsDialog)
};
