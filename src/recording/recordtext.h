#pragma once

#include "model/measuresample.h"

#include <QStringList>

#include <string>

class DetectorPair;
class QDateTime;

/// What stands in a recording, to the byte, and the names of the files. UTF-8, a tab between two
/// fields, a line feed at the end of each line, a decimal point in every locale.
namespace recordtext {

/// Characters of the longest field; the time column alone can be longer.
constexpr std::size_t maxFieldLength = 9;

/// The names of the files of several systems, in the order of their labels: `name` with "_" and
/// the label before the extension. What comes first of two systems with the same label has the
/// plain name; the next one's ends in "_2" before the extension, then "_3". A '/' in a label
/// becomes '_', so that no label leads into another folder.
QStringList fileNames(const QString& name, const QStringList& labels);

/// The date, the names of the columns with the units of both stages, and an empty line.
void appendHeader(std::string& text, const QDateTime& start, const DetectorPair& detectors);

/// One line of data. Positions are in the units of the detectors, all else is volts.
void appendLine(std::string& text, quint64 ms, const MeasureSample& sample,
                const DetectorPair& detectors);

/// A number with the given decimals, as printf forms it: "-0.00" and "-nan" have their sign. What
/// does not fit a field has fewer decimals, and is "inf" or "-inf" if it does not fit without any.
void appendNumber(std::string& text, double value, int decimals);

} // namespace recordtext
