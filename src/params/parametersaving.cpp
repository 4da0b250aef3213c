#include "params/parametersaving.h"

#include "app/logging.h"
#include "link/ask.h"
#include "link/connection.h"
#include "link/identification.h"
#include "model/connectionsettings.h"
#include "model/detectorpair.h"
#include "setup/recordroom.h"
#include "setup/settings.h"

namespace {

/// Whether a record, and the name of its device in the file, can be made of an identification.
bool fitsRecord(const QString& id)
{
    return canBeStored(id) && !deviceKey(id).isEmpty();
}

} // namespace

bool saveDetectors(Connection& connection, const DetectorPair& detectors, Settings& settings)
{
    const ControllerIdentity identity = readIdentity(ask(connection, &Connection::getControllerId));
    if (!identity.isController || !fitsRecord(identity.id)) {
        logMessage().warning() << "Detectors not saved: the controller did not say who it is";
        return false;
    }
    ConnectionSettings record;
    record.id.set(identity.id);
    detectors.copyTo(record);
    // What was read for another save is not written into a file that can not be read now.
    if (!settings.read({}))
        settings.setList({});
    settings.updateOrAdd(record);
    settings.writeDetectors({});
    return true;
}
