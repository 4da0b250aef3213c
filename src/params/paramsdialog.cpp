#include "params/paramsdialog.h"

#include "app/logging.h"
#include "link/connection.h"

#include <algorithm>

ParamsDialog::ParamsDialog(const Connections& connectionList,
                           const QList<ConnectionStatus>& statusList, QWidget* parent)
    : QDialog(parent)
    , connections(connectionList)
    , statuses(statusList)
{
    logMessage().debug() << "Constructing ParamsDialog";
    setWindowTitle(tr("Parameters"));
    logMessage().debug() << "Finished constructing ParamsDialog";
}

void ParamsDialog::appendDetectorPair(const ConnectionSettings& settings)
{
    pairs.append(DetectorPair(settings));
}

void ParamsDialog::removeDetectorPair(int index)
{
    if (index == currentIndex)
        close();
    pairs.removeAt(index);
}

void ParamsDialog::closeIfDisconnected()
{
    const auto index = static_cast<std::size_t>(currentIndex);
    if (index < connections.size() && !connections[index]->isConnected())
        close();
}

void ParamsDialog::openFor(const Connection* connection)
{
    for (int i = 0; i < statuses.size(); ++i) {
        if (connections[std::size_t(i)].get() == connection)
            currentIndex = i;
    }
}

void ParamsDialog::openDialog(QString address)
{
    const auto found = std::find_if(connections.begin(), connections.end(),
                                    [&](const auto& each) { return each->address() == address; });
    if (found != connections.end())
        openFor(found->get());
}
