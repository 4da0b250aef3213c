#pragma once

#include <QString>

class QDateTime;

/// Names of recording files.
namespace recordingname {

/// The folder of recordings in a configuration directory. Its separators are '/'.
QString folder(const QString& configPath);

/// The name that is proposed for a recording which starts now.
QString proposal(const QDateTime& now);

/// The file that a typed name means: one without a known ending gets ".csv", and one without a
/// folder lies in `folder`. Endings have to be written in small letters to be known.
QString completed(const QString& name, const QString& folder);

} // namespace recordingname
