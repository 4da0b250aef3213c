#include "params/paramsdialog.h"

#include "app/logging.h"
#include "link/connection.h"

#include <algorithm>

ParamsDialog::ParamsDialog(QWidget* parent)
    : QDialog(parent)
{
    logMessage().debug() << "Constructing ParamsDialog";
    setWindowTitle(tr("Parameters"));
    logMessage().debug() << "Finished constructing ParamsDialog";
}

DetectorPair& ParamsDialog::addDetectors(const Connection& connection,
                                         const ConnectionSettings& settings)
{
    systems.push_back({&connection, DetectorPair(settings)});
    return systems.back().detectors;
}

void ParamsDialog::removeDetectors(const Connection* connection)
{
    if (connection == current) {
        current = nullptr;
        close();
    }
    systems.remove_if([&](const System& system) { return system.connection == connection; });
}

void ParamsDialog::closeIfDisconnected()
{
    if (current && !current->isConnected())
        close();
}

void ParamsDialog::openDialog(QString address)
{
    const auto found = std::find_if(systems.cbegin(), systems.cend(), [&](const System& system) {
        return system.connection->address() == address;
    });
    openFor(found == systems.cend() ? nullptr : found->connection);
}

void ParamsDialog::openFor(const Connection* connection)
{
    if (isVisible())
        close();
    if (connection)
        current = connection;
}
