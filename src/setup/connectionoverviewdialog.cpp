#include "setup/connectionoverviewdialog.h"

#include "setup/listwidget.h"
#include "setup/overviewwidget.h"
#include "ui_connectionoverviewdialog.h"

namespace {

constexpr int headerRows = 1;
constexpr int initialWidthPx = 580;

} // namespace

ConnectionOverviewDialog::ConnectionOverviewDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::ConnectionOverviewDialog>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    appendRow(true);
    connect(ui->listWidget, &ListWidget::indexChanged, this,
            &ConnectionOverviewDialog::changeOrder);
    ui->listWidget->setMinimumWidth(ui->listWidget->sizeHintForColumn(0));
    keepListWhole();
    resize(initialWidthPx, height());
}

ConnectionOverviewDialog::~ConnectionOverviewDialog()
{
    // A row can emit signals while it is deleted: it is cut off while all members exist.
    while (!rows.isEmpty())
        removeLastRow();
    disconnect(ui->listWidget, nullptr, this, nullptr);
}

/// With a large font the list needs more than the form's smallest width.
void ConnectionOverviewDialog::keepListWhole()
{
    const int frame = 2 * ui->listWidget->frameWidth();
    setMinimumWidth(qMax(minimumWidth(), layout()->minimumSize().width() + frame));
}

int ConnectionOverviewDialog::connectionRows() const
{
    return rows.size() - headerRows;
}

void ConnectionOverviewDialog::appendRow(bool header)
{
    rows.append(new OverviewWidget(header, ui->listWidget));
    items.append(new QListWidgetItem(ui->listWidget));
    // Rows are dropped between others, never onto one, and the header stays where it is.
    items.last()->setFlags(header
                               ? Qt::ItemIsEnabled
                               : Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
    items.last()->setSizeHint(rows.last()->sizeHint());
    ui->listWidget->setItemWidget(items.last(), rows.last());
}

void ConnectionOverviewDialog::addConnectionRow()
{
    appendRow(false);
    relaySignals(*rows.last());
    relayByConnection(*rows.last());
    connectionOrder.append(connectionOrder.size());
    // Tab moves from top to bottom, and the rows stand above the button.
    setTabOrder(&rows.last()->lastTabStop(), ui->closePushButton);
}

void ConnectionOverviewDialog::relaySignals(const OverviewWidget& row)
{
    using Dialog = ConnectionOverviewDialog;
    connect(&row, &OverviewWidget::display, this, &Dialog::displayConnection);
    connect(&row, &OverviewWidget::displayCommonDetector, this, &Dialog::displayCommonDetector);
    connect(&row, &OverviewWidget::newColor, this, &Dialog::changeColor);
    connect(&row, &OverviewWidget::updateStage, this, &Dialog::changeStage);
    connect(&row, &OverviewWidget::openParams, this, &Dialog::openParamDialog);
    connect(&row, &OverviewWidget::multiplexingUpdate, this, &Dialog::multiplexDetectors);
    connect(&row, &OverviewWidget::newGroup, this, &Dialog::newGroupId);
}

/// A row knows its connection from its latest status.
void ConnectionOverviewDialog::relayByConnection(const OverviewWidget& row)
{
    connect(&row, &OverviewWidget::display, this, [this, &row](const QString&, bool show) {
        emit systemDisplayed(row.connection(), show);
    });
    connect(&row, &OverviewWidget::newColor, this,
            [this, &row](const QString&, const QColor& color, int graph) {
                emit systemColored(row.connection(), color, Graph(graph));
            });
    connect(&row, &OverviewWidget::updateStage, this,
            [this, &row](const QString&, int stage, bool active) {
                emit systemStageChanged(row.connection(), Stage(stage), active);
            });
    connect(&row, &OverviewWidget::openParams, this,
            [this, &row] { emit systemParametersWanted(row.connection()); });
}

void ConnectionOverviewDialog::removeLastRow()
{
    const std::unique_ptr<OverviewWidget> row(rows.takeLast());
    const std::unique_ptr<QListWidgetItem> item(items.takeLast());
    disconnect(row.get(), nullptr, this, nullptr);
    ui->listWidget->removeItemWidget(item.get());
}

void ConnectionOverviewDialog::update(const QVector<ConnectionStatus>& statuses)
{
    while (connectionRows() < statuses.size())
        addConnectionRow();
    while (connectionRows() > statuses.size()) {
        removeLastRow();
        // The entry of the last place goes, whichever connection it names.
        connectionOrder.removeLast();
    }
    for (int i = 0; i < statuses.size(); ++i) {
        const bool isKnown = i < shownStatuses.size() && shownStatuses.at(i) == statuses.at(i);
        if (isVisible() || !isKnown)
            updateRow(i, statuses.at(i));
    }
    shownStatuses = statuses;
}

void ConnectionOverviewDialog::updateRow(int connection, const ConnectionStatus& status)
{
    OverviewWidget& row = *rows.at(connection + headerRows);
    row.updateRow(status);
    QListWidgetItem& item = *items.at(connection + headerRows);
    if (item.sizeHint() != row.sizeHint())
        item.setSizeHint(row.sizeHint());
}

/// A box that the user has ticked last may not stand for what came of it.
void ConnectionOverviewDialog::hideEvent(QHideEvent* event)
{
    shownStatuses.clear();
    QDialog::hideEvent(event);
}

QList<int> ConnectionOverviewDialog::shownOrder() const
{
    QList<int> shown;
    for (int place = headerRows; place < ui->listWidget->count(); ++place)
        shown.append(items.indexOf(ui->listWidget->item(place)) - headerRows);
    return shown;
}

void ConnectionOverviewDialog::changeOrder(int oldIndex, int newIndex)
{
    if (oldIndex < 0 || oldIndex >= connectionOrder.size())
        return;
    const int connection = connectionOrder.takeAt(oldIndex);
    connectionOrder.insert(qBound(0, newIndex, connectionOrder.size()), connection);
}

void ConnectionOverviewDialog::on_closePushButton_clicked()
{
    close();
}
