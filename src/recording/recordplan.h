#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class Connection;
class DetectorPair;

/// A displayed system, as far as a recording needs to know it.
struct RecordableSystem
{
    /// Says which system it is, and is only compared.
    const Connection* connection = nullptr;
    QString label;
    /// Never null.
    const DetectorPair* detectors = nullptr;
};

/// In the order of display.
using RecordableSystems = QVector<RecordableSystem>;

struct PlannedFile
{
    const Connection* connection = nullptr;
    QString path;
};

/// Which systems a recording is of and where their lines go. No file was touched yet.
struct RecordPlan
{
    /// Whether each displayed system has a file, or one of them.
    bool everySystem = false;
    QVector<PlannedFile> files;

    /// Those that would be overwritten.
    QStringList existingFiles() const;
};

/// A file for each system; its label is in the name.
RecordPlan planForAll(const QString& name, const RecordableSystems& displayed);

/// One file of this name, for the system `current`, or the first one if that is not displayed.
/// Without a displayed system there is no file.
RecordPlan planForOne(const QString& name, const RecordableSystems& displayed,
                      const Connection* current);

struct RecordRates
{
    int samplingHz = 0;
    int saveHz = 0;

    /// Every how many samples one is saved: rounded down, so that rather more are saved than asked
    /// for. 1 for a save rate above the sampling rate. 0 for a save rate of 0, which saves the
    /// first sample only.
    int divider() const;
};
