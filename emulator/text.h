#pragma once

#include <QCoreApplication>

namespace emulator {

/// Translates the emulator's texts for users: `Text::tr("not a recording file")`. As a class it
/// tells lupdate the context of its texts, which a function that passes them on does not.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Emulator)
};

} // namespace emulator
