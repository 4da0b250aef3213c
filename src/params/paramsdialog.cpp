#include "params/paramsdialog.h"

#include "app/logging.h"
#include "link/connection.h"

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

void ParamsDialog::openDialog(QString address)
{
    for (int i = 0; i < statuses.size(); ++i) {
        if (statuses[i].address == address) {
            currentIndex = i;
            return;
        }
    }
}
