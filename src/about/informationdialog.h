#pragma once

#include <QDialog>

/// The box behind "About the Software". Its contents are not part of this version.
class InformationDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit InformationDialog(QWidget* parent);
};
