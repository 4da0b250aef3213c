#include "service/valuerows.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int valuesMv[] = {5000, 2500, 100};
constexpr int adjustInMv = -1000;

/// Where the form leaves room.
constexpr int formRow = 26;
/// A label and up to three buttons, in the form and here.
constexpr int labelColumn = 0;
constexpr int firstButtonColumn = 1;
constexpr int columns = 4;

/// What the widest item of these columns needs, of those that stand in one column alone.
int widthOf(const QGridLayout& layout, int firstColumn, int endColumn)
{
    int width = 0;
    for (int index = 0; index < layout.count(); ++index) {
        int row = 0;
        int column = 0;
        int rowSpan = 0;
        int columnSpan = 0;
        layout.getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
        if (columnSpan == 1 && column >= firstColumn && column < endColumn)
            width = qMax(width, layout.itemAt(index)->sizeHint().width());
    }
    return width;
}

/// Gives the columns of both layouts the same widths, and one width to all columns of buttons.
void align(QGridLayout& one, QGridLayout& other)
{
    const auto widest = [&](int first, int end) {
        return qMax(widthOf(one, first, end), widthOf(other, first, end));
    };
    const int labelWidth = widest(labelColumn, firstButtonColumn);
    const int buttonWidth = widest(firstButtonColumn, columns);
    for (QGridLayout* layout : {&one, &other}) {
        layout->setColumnMinimumWidth(labelColumn, labelWidth);
        for (int column = firstButtonColumn; column < columns; ++column)
            layout->setColumnMinimumWidth(column, buttonWidth);
    }
}

} // namespace

ValueRows::ValueRows(QWidget& owner, QGridLayout& form)
    : dialog(owner)
    , grid(new QGridLayout)
{
    form.addLayout(grid, formRow, labelColumn, 1, columns);
    grid->setHorizontalSpacing(form.horizontalSpacing());
    grid->setVerticalSpacing(form.verticalSpacing());
    int row = 0;
    for (const Stage stage : bothStages)
        addValueRow(++row, stage, tr("p factor"), QStringLiteral("pFactor"),
                    &ValueRows::pFactorWanted);
    for (const Stage stage : bothStages)
        addValueRow(++row, stage, tr("sensitivity"), QStringLiteral("sensitivity"),
                    &ValueRows::sensitivityWanted);
    for (const Stage stage : bothStages)
        addAdjustInRow(++row, stage);
    align(form, *grid);
}

void ValueRows::addValueRow(int row, Stage stage, const QString& label, const QString& name,
                            Wanted wanted)
{
    addLabel(row, tr("Set %1 stage %2").arg(label).arg(numberOf(stage)));
    int column = firstButtonColumn;
    for (const int valueMv : valuesMv) {
        const QPushButton& button =
            addButton(row, column++, QStringLiteral("%1mV").arg(valueMv),
                      QStringLiteral("%1%2_%3").arg(name).arg(numberOf(stage)).arg(valueMv));
        connect(&button, &QPushButton::clicked, this,
                [this, wanted, stage, valueMv] { (this->*wanted)(stage, valueMv); });
    }
}

void ValueRows::addAdjustInRow(int row, Stage stage)
{
    if (stage == Stage::One)
        addLabel(row, tr("Set Adjust in to -1V "));
    int column = firstButtonColumn;
    for (const BeamAxis axis : {BeamAxis::X, BeamAxis::Y}) {
        const QString place =
            QString::number(numberOf(stage)) + QChar(static_cast<char>(axis)).toUpper();
        const QPushButton& button =
            addButton(row, column++, place, QStringLiteral("adjustIn") + place);
        connect(&button, &QPushButton::clicked, this,
                [this, stage, axis] { emit adjustInWanted(stage, axis, adjustInMv); });
    }
}

void ValueRows::addLabel(int row, const QString& text)
{
    constexpr int points = 11;
    auto* label = new QLabel(text, &dialog);
    label->setFont(QFont(QStringLiteral("Sans Serif"), points));
    grid->addWidget(label, row, labelColumn);
}

QPushButton& ValueRows::addButton(int row, int column, const QString& text, const QString& name)
{
    auto* button = new QPushButton(text, &dialog);
    button->setObjectName(name);
    button->setAutoDefault(false);
    grid->addWidget(button, row, column);
    made.push_back(button);
    return *button;
}
