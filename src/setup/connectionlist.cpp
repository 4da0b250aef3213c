#include "setup/connectionlist.h"

#include "link/connection.h"
#include "setup/connectionwidget.h"

#include <QListWidget>

#include <algorithm>
#include <memory>

namespace {

template <typename Predicate>
int indexOf(const QList<ConnectionWidget*>& widgets, Predicate matches)
{
    const auto found = std::find_if(widgets.cbegin(), widgets.cend(), matches);
    return found == widgets.cend() ? -1 : int(std::distance(widgets.cbegin(), found));
}

} // namespace

ConnectionWidget& ConnectionList::add(const QString& number, const QString& label,
                                      const QString& address, const Connection& connection)
{
    widgets.append(new ConnectionWidget(number, label, address, &list));
    items.append(new QListWidgetItem(&list));
    owners.append(&connection);
    registryAddresses.append(connection.address());
    items.last()->setSizeHint(widgets.last()->sizeHint());
    list.setItemWidget(items.last(), widgets.last());
    return *widgets.last();
}

void ConnectionList::removeAt(int index)
{
    ConnectionWidget* const widget = widgets.takeAt(index);
    const std::unique_ptr<QListWidgetItem> item(items.takeAt(index));
    owners.removeAt(index);
    registryAddresses.removeAt(index);
    list.removeItemWidget(item.get());
    // The line's own button can be what asks for this.
    widget->disconnect();
    widget->hide();
    widget->deleteLater();
}

int ConnectionList::indexOfAddress(const QString& address) const
{
    return indexOf(widgets,
                   [&](const ConnectionWidget* widget) { return widget->address() == address; });
}

int ConnectionList::indexOfNumber(const QString& number) const
{
    return indexOf(widgets,
                   [&](const ConnectionWidget* widget) { return widget->number() == number; });
}

bool ConnectionList::markConnected(const QString& address, bool isConnected) const
{
    bool found = false;
    for (ConnectionWidget* widget : widgets) {
        if (widget->address() != address)
            continue;
        widget->setConnected(isConnected);
        found = true;
    }
    return found;
}

bool ConnectionList::markConnected(const QString& address, const QString& number,
                                   bool isConnected) const
{
    bool found = false;
    for (ConnectionWidget* widget : widgets) {
        if (widget->address() != address || widget->number() != number)
            continue;
        widget->setConnected(isConnected);
        found = true;
    }
    return found;
}
