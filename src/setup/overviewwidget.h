#pragma once

#include "setup/graph.h"

#include <QColor>
#include <QColorDialog>
#include <QPalette>
#include <QString>
#include <QWidget>

#include <memory>

class Connection;
class QLabel;
class QPushButton;
struct ConnectionStatus;

namespace Ui {
class OverviewWidget;
}

/// One row of the system overview, or its header. Both are the same form with columns of the same
/// widths, of which each shows its part.
///
/// A `graph` is the number of a `Graph`; a `stage` is 1 or 2; `name` is the address of the row's
/// connection.
class OverviewWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit OverviewWidget(bool header, QWidget* parent = nullptr);
    ~OverviewWidget() override;

    /// The last control that Tab reaches in this row.
    QWidget& lastTabStop() const;

    /// Whose row it is, as the latest status told; null before the first one and in a header.
    Connection* connection() const { return owner; }

    /// Shows the status. Touches only what has changed, as it runs at every display tick.
    void updateRow(const ConnectionStatus& status);

signals:
    void display(QString name, bool show);
    /// Nothing emits it in this version.
    void displayCommonDetector(QString name, bool show);
    void newColor(QString name, QColor color, int graph);
    void updateStage(QString name, int stage, bool activate);
    void openParams(QString name);
    void multiplexingUpdate(QString name, bool status, int stage);
    void newGroup(QString name, int groupId);

public slots:
    void on_colorSelected(QColor color);
    void on_enable1_clicked();
    void on_enable2_clicked();

private slots:
    void on_showCheckBox_clicked();
    void on_showCheckBox2_clicked();
    void on_xColor_clicked();
    void on_yColor_clicked();
    void on_iColor_clicked();
    void on_xColor2_clicked();
    void on_yColor2_clicked();
    void on_iColor2_clicked();
    void on_parameterPushButton_clicked();
    void on_typeComboBox_currentIndexChanged(int index);
    void on_groupSpinBox_valueChanged(int arg1);
    void on_type2ComboBox_currentIndexChanged(int index);

private:
    void alignColumns();
    void hideUnusedControls();
    void showOnly(bool header);
    void updateLabel(const ConnectionStatus& status);
    void updateStabilised(bool& shown, bool now, QPushButton& button);
    void updateActive(bool& shown, bool now, QLabel& active);
    void updateColor(QColor& shown, const QColor& now, Graph graph);
    void showStabilised(QPushButton& button, bool on);
    void showActive(QLabel& active, bool on);
    void showColor(const QColor& color, Graph graph);
    void chooseColor(int target);
    void emitMultiplexing(int comboIndex, int stage);
    QColor& colorOf(Graph graph);
    QPushButton& colorButton(Graph graph);

    std::unique_ptr<Ui::OverviewWidget> ui;
    Connection* owner = nullptr;
    QString label;
    QString address;
    /// The colour button that was pressed last: 0 to 2 a graph, 3 to 5 that of a common detector.
    int colorTarget = 0;
    bool stabilised1 = false;
    bool stabilised2 = false;
    bool active1 = false;
    bool active2 = false;
    QColor colorX = Qt::white;
    QColor colorY = Qt::white;
    QColor colorI = Qt::white;
    bool displayed = false;
    QPalette paletteOn;
    QPalette paletteOff;
    QColorDialog colorDialog;
};
