#pragma once

#include "emulator/optionsection.h"

#include <QVector>

namespace emulator {

/// Every section with its title, its note and its options, in lines of at most 79 characters.
QString helpText(const QVector<OptionSection>& sections);

/// `text` in lines of at most 79 characters that begin with `indent` blanks. A word that is too
/// long for a line has one of its own.
QString wrapped(const QString& text, int indent = 0);

} // namespace emulator
