#include "recording/recordplan.h"

#include "recording/recordtext.h"

#include <QFile>

#include <algorithm>

QStringList RecordPlan::existingFiles() const
{
    QStringList existing;
    for (const PlannedFile& file : files) {
        if (QFile::exists(file.path))
            existing.append(file.path);
    }
    return existing;
}

RecordPlan planForAll(const QString& name, const RecordableSystems& displayed)
{
    QStringList labels;
    for (const RecordableSystem& system : displayed)
        labels.append(system.label);
    const QStringList paths = recordtext::fileNames(name, labels);

    RecordPlan plan;
    plan.everySystem = true;
    for (int i = 0; i < displayed.size(); ++i)
        plan.files.append({displayed.at(i).connection, paths.at(i)});
    return plan;
}

RecordPlan planForOne(const QString& name, const RecordableSystems& displayed,
                      const Connection* current)
{
    RecordPlan plan;
    if (displayed.isEmpty())
        return plan;
    const bool currentIsDisplayed =
        std::any_of(displayed.begin(), displayed.end(),
                    [&](const RecordableSystem& system) { return system.connection == current; });
    plan.files.append({currentIsDisplayed ? current : displayed.first().connection, name});
    return plan;
}

int RecordRates::divider() const
{
    return saveHz <= 0 ? 0 : std::max(samplingHz / saveHz, 1);
}
