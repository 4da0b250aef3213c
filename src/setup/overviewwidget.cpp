#include "setup/overviewwidget.h"

#include "controls/stagelook.h"
#include "setup/connectionstatus.h"
#include "ui_overviewwidget.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace {

/// The colour targets from here on belong to common detectors.
constexpr int commonTarget = 3;
constexpr int lightPx = 22;
constexpr int buttonPaddingPx = 16;
constexpr int colorButtonWidthPx = 22;
/// Headings are smaller than the controls, so that they do not make a column wider.
constexpr double headingScale = 0.85;

int widthFor(const QPushButton& button)
{
    return button.text().isEmpty()
               ? colorButtonWidthPx
               : button.fontMetrics().horizontalAdvance(button.text()) + buttonPaddingPx;
}

int widthFor(const QWidget& widget)
{
    const auto* button = qobject_cast<const QPushButton*>(&widget);
    return button ? widthFor(*button) : widget.sizeHint().width();
}

void setAllVisible(std::initializer_list<QWidget*> widgets, bool visible)
{
    for (QWidget* widget : widgets)
        widget->setVisible(visible);
}

} // namespace

OverviewWidget::OverviewWidget(bool header, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::OverviewWidget>())
    , paletteOn(stabilisationPalette(true))
    , paletteOff(stabilisationPalette(false))
    , colorDialog(this)
{
    ui->setupUi(this);
    colorDialog.setWindowTitle(tr("Please choose a color"));
    colorDialog.setWindowIcon(QIcon(QStringLiteral(":/images/Zevlogo1_freigestellt.gif")));
    connect(&colorDialog, &QColorDialog::colorSelected, this, &OverviewWidget::on_colorSelected);

    for (QPushButton* button : {ui->enable1, ui->enable2})
        showStabilised(*button, false);
    for (QLabel* stage : {ui->active1, ui->active2})
        showActive(*stage, false);
    alignColumns();
    hideUnusedControls();
    showOnly(header);
}

OverviewWidget::~OverviewWidget()
{
    colorDialog.close();
}

/// Header and rows contain the same controls, so each column gets the same width in both.
void OverviewWidget::alignColumns()
{
    const std::pair<QWidget*, QWidget*> columns[] = {
        {ui->label_2, ui->enable1},
        {ui->label_7, ui->enable2},
        {ui->label_3, ui->active1},
        {ui->label_8, ui->active2},
        {ui->xLabel, ui->xColor},
        {ui->yLabel, ui->yColor},
        {ui->iLabel, ui->iColor},
        {ui->configLabel, ui->parameterPushButton},
        {ui->displayLabel, ui->showCheckBox},
    };
    QFont headingFont = font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * headingScale);
    for (QLabel* heading : {ui->label_4, ui->label_5, ui->label_6})
        heading->setFont(headingFont);
    for (const auto& [head, control] : columns) {
        head->setFont(headingFont);
        const int width = std::max(widthFor(*head), widthFor(*control));
        head->setFixedWidth(width);
        control->setFixedWidth(width);
    }
    for (QPushButton* button : {ui->xColor, ui->yColor, ui->iColor})
        button->setFixedHeight(ui->parameterPushButton->sizeHint().height());
}

/// Multiplexing, groups and common detectors are not offered in this version.
void OverviewWidget::hideUnusedControls()
{
    setAllVisible({ui->typeComboBox, ui->type2ComboBox, ui->commonLabel, ui->xColor2, ui->yColor2,
                   ui->iColor2, ui->xLabel2, ui->yLabel2, ui->iLabel2, ui->showCheckBox2,
                   ui->groupSpinBox, ui->groupLabel, ui->label_10, ui->label_9, ui->label_12,
                   ui->line},
                  false);
}

void OverviewWidget::showOnly(bool header)
{
    setAllVisible({ui->label_6, ui->label_4, ui->label_5, ui->label_2, ui->label_3, ui->label_7,
                   ui->label_8, ui->xLabel, ui->yLabel, ui->iLabel, ui->configLabel,
                   ui->displayLabel},
                  header);
    setAllVisible({ui->label, ui->enable1, ui->enable2, ui->active1, ui->active2, ui->xColor,
                   ui->yColor, ui->iColor, ui->parameterPushButton, ui->showCheckBox},
                  !header);
}

QWidget& OverviewWidget::lastTabStop() const
{
    return *ui->showCheckBox;
}

void OverviewWidget::updateRow(const ConnectionStatus& status)
{
    owner = status.connection;
    updateLabel(status);
    updateStabilised(stabilised1, status.stabilised1, *ui->enable1);
    updateStabilised(stabilised2, status.stabilised2, *ui->enable2);
    updateActive(active1, status.active1, *ui->active1);
    updateActive(active2, status.active2, *ui->active2);
    updateColor(colorX, status.colorX, Graph::X);
    updateColor(colorY, status.colorY, Graph::Y);
    updateColor(colorI, status.colorI, Graph::Intensity);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ui->enable1, ui->enable2, ui->active1, ui->active2,
                                         ui->parameterPushButton, ui->showCheckBox})
        widget->setEnabled(status.statusValid);
    if (displayed != status.displayed) {
        displayed = status.displayed;
        ui->showCheckBox->setChecked(displayed);
    }
}

void OverviewWidget::updateLabel(const ConnectionStatus& status)
{
    if (label != status.label) {
        label = status.label;
        ui->label->setText(label);
    }
    if (address != status.address) {
        address = status.address;
        ui->label->setToolTip(address);
    }
}

void OverviewWidget::updateStabilised(bool& shown, bool now, QPushButton& button)
{
    if (shown == now)
        return;
    shown = now;
    showStabilised(button, now);
}

void OverviewWidget::updateActive(bool& shown, bool now, QLabel& active)
{
    if (shown == now)
        return;
    shown = now;
    showActive(active, now);
}

void OverviewWidget::updateColor(QColor& shown, const QColor& now, Graph graph)
{
    if (shown == now)
        return;
    shown = now;
    showColor(now, graph);
    emit newColor(address, now, int(graph));
}

void OverviewWidget::showStabilised(QPushButton& button, bool on)
{
    button.setPalette(on ? paletteOn : paletteOff);
    button.setText(on ? tr("ON") : tr("OFF"));
    button.setChecked(on);
}

void OverviewWidget::showActive(QLabel& active, bool on)
{
    active.setPixmap(stageLight(on, QSize(lightPx, lightPx)));
    const QString state = on ? tr("Active") : tr("Inactive");
    active.setToolTip(state);
    active.setAccessibleName(state);
}

void OverviewWidget::showColor(const QColor& color, Graph graph)
{
    colorButton(graph).setStyleSheet(QStringLiteral("background-color: %1").arg(color.name()));
}

QColor& OverviewWidget::colorOf(Graph graph)
{
    return graph == Graph::X ? colorX : graph == Graph::Y ? colorY : colorI;
}

QPushButton& OverviewWidget::colorButton(Graph graph)
{
    return graph == Graph::X ? *ui->xColor : graph == Graph::Y ? *ui->yColor : *ui->iColor;
}

void OverviewWidget::on_colorSelected(QColor color)
{
    if (!color.isValid() || colorTarget >= commonTarget)
        return;
    // Emitted for an equal colour, too: the user has chosen it.
    const auto graph = static_cast<Graph>(colorTarget);
    colorOf(graph) = color;
    showColor(color, graph);
    emit newColor(address, color, colorTarget);
}

void OverviewWidget::chooseColor(int target)
{
    colorTarget = target;
    if (target < commonTarget)
        colorDialog.setCurrentColor(colorOf(static_cast<Graph>(target)));
    colorDialog.open();
}

void OverviewWidget::on_xColor_clicked()
{
    chooseColor(int(Graph::X));
}

void OverviewWidget::on_yColor_clicked()
{
    chooseColor(int(Graph::Y));
}

void OverviewWidget::on_iColor_clicked()
{
    chooseColor(int(Graph::Intensity));
}

void OverviewWidget::on_xColor2_clicked()
{
    chooseColor(commonTarget + int(Graph::X));
}

void OverviewWidget::on_yColor2_clicked()
{
    chooseColor(commonTarget + int(Graph::Y));
}

void OverviewWidget::on_iColor2_clicked()
{
    chooseColor(commonTarget + int(Graph::Intensity));
}

void OverviewWidget::on_enable1_clicked()
{
    // The click leaves the button as it is: it shows what the controller reports.
    ui->enable1->setChecked(stabilised1);
    emit updateStage(address, 1, !stabilised1);
}

void OverviewWidget::on_enable2_clicked()
{
    ui->enable2->setChecked(stabilised2);
    emit updateStage(address, 2, !stabilised2);
}

void OverviewWidget::on_showCheckBox_clicked()
{
    displayed = ui->showCheckBox->isChecked();
    emit display(address, displayed);
}

void OverviewWidget::on_showCheckBox2_clicked() {}

void OverviewWidget::on_parameterPushButton_clicked()
{
    emit openParams(address);
}

void OverviewWidget::emitMultiplexing(int comboIndex, int stage)
{
    if (comboIndex == 0 || comboIndex == 1)
        emit multiplexingUpdate(address, comboIndex == 1, stage);
}

void OverviewWidget::on_typeComboBox_currentIndexChanged(int index)
{
    emitMultiplexing(index, 1);
}

void OverviewWidget::on_type2ComboBox_currentIndexChanged(int index)
{
    emitMultiplexing(index, 2);
}

void OverviewWidget::on_groupSpinBox_valueChanged(int arg1)
{
    emit newGroup(address, arg1);
}
