#include "setup/connectionlist.h"

#include "model/connectionsettings.h"
#include "setup/connectionwidget.h"

#include <QListWidget>

#include <algorithm>
#include <memory>

ConnectionWidget& ConnectionList::add(const ConnectionSettings& record,
                                      const Connection& connection)
{
    auto* widget =
        new ConnectionWidget(record.id.text(), record.label.text(), record.name.text(), &list);
    auto* item = new QListWidgetItem(&list);
    item->setSizeHint(widget->sizeHint());
    list.setItemWidget(item, widget);
    widget->setAutoConnect(record.autoConnect);
    lines.append({widget, item, &connection});
    return *widget;
}

void ConnectionList::remove(const QPointer<const Connection>& connection)
{
    for (int i = lines.size() - 1; i >= 0; --i) {
        if (!lines.at(i).connection || lines.at(i).connection == connection)
            removeFromScreen(lines.takeAt(i));
    }
}

void ConnectionList::clear()
{
    while (!lines.isEmpty())
        removeFromScreen(lines.takeLast());
}

void ConnectionList::removeFromScreen(const Line& line)
{
    const std::unique_ptr<QListWidgetItem> item(line.item);
    list.removeItemWidget(item.get());
    // A button of this line can have asked for it, so the line is deleted later.
    line.widget->disconnect();
    line.widget->hide();
    line.widget->deleteLater();
}

ConnectionWidget* ConnectionList::lineOf(const Connection* connection) const
{
    const auto found = std::find_if(lines.cbegin(), lines.cend(), [connection](const Line& line) {
        return line.connection && line.connection == connection;
    });
    return found == lines.cend() ? nullptr : found->widget;
}

bool ConnectionList::hasAddress(const QString& address) const
{
    return std::any_of(lines.cbegin(), lines.cend(),
                       [&address](const Line& line) { return line.widget->address() == address; });
}

bool ConnectionList::hasNumber(const QString& number) const
{
    return std::any_of(lines.cbegin(), lines.cend(),
                       [&number](const Line& line) { return line.widget->number() == number; });
}

QString ConnectionList::lastNumber() const
{
    return lines.isEmpty() ? QString() : lines.last().widget->number();
}

QList<QPointer<const Connection>> ConnectionList::connections() const
{
    QList<QPointer<const Connection>> owners;
    for (const Line& line : lines)
        owners.append(line.connection);
    return owners;
}

QList<const Connection*> ConnectionList::connectionsAt(const QString& address) const
{
    QList<const Connection*> found;
    for (const Line& line : lines) {
        if (line.connection && line.widget->address() == address)
            found.append(line.connection);
    }
    return found;
}
