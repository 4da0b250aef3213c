#include "recording/recordingname.h"

#include <QDateTime>

namespace recordingname {

namespace {

const QLatin1String endings[] = {QLatin1String(".csv"), QLatin1String(".txt"),
                                 QLatin1String(".xls")};
const QLatin1String usualEnding = endings[0];
constexpr QLatin1Char separator('/');

bool hasEnding(const QString& name)
{
    for (const QLatin1String& ending : endings) {
        if (name.endsWith(ending))
            return true;
    }
    return false;
}

} // namespace

QString folder(const QString& configPath)
{
    return configPath + separator + QLatin1String("Data");
}

QString proposal(const QDateTime& now)
{
    return QLatin1String("Lumetra_") + now.toString(QStringLiteral("yyyy-MM-ddTHH-mm-ss"))
           + usualEnding;
}

QString completed(const QString& name, const QString& folder)
{
    const QString withEnding = hasEnding(name) ? name : name + usualEnding;
    return withEnding.contains(separator) ? withEnding : folder + separator + withEnding;
}

} // namespace recordingname
