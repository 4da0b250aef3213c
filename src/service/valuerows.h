#pragma once

#include "model/beamaxis.h"
#include "model/stage.h"

#include <QObject>

#include <vector>

class QGridLayout;
class QPushButton;
class QWidget;

/// The rows of the service dialog whose buttons set a fixed value each: P-factor and sensitivity of
/// both stages, and the adjust-in of each axis. They say what is wanted; the dialog does it.
class ValueRows final : public QObject
{
    Q_OBJECT

public:
    /// Adds the rows to the layout of the dialog's form, which leaves room for them, in columns
    /// that are aligned with those of the form.
    ValueRows(QWidget& dialog, QGridLayout& form);

    /// In the order in which one reads them.
    const std::vector<QPushButton*>& buttons() const { return made; }

signals:
    void pFactorWanted(Stage stage, int valueMv);
    void sensitivityWanted(Stage stage, int valueMv);
    void adjustInWanted(Stage stage, BeamAxis axis, int valueMv);

private:
    using Wanted = void (ValueRows::*)(Stage stage, int valueMv);

    void addValueRow(int row, Stage stage, const QString& label, const QString& name,
                     Wanted wanted);
    void addAdjustInRow(int row, Stage stage);
    void addLabel(int row, const QString& text);
    QPushButton& addButton(int row, int column, const QString& text, const QString& name);

    QWidget& dialog;
    /// Belongs to the layout of the form.
    QGridLayout* grid;
    std::vector<QPushButton*> made;
};
