#pragma once

#include <QComboBox>

/// A choice that the wheel changes only while it has the focus.
class CalmComboBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit CalmComboBox(QWidget* parent = nullptr);

protected:
    void wheelEvent(QWheelEvent* event) override;
};
