#pragma once

#include <QToolBar>

/// The tool bar of the monitoring window, which fills it.
class Qor_ToolBar final : public QToolBar
{
    Q_OBJECT

public:
    using QToolBar::QToolBar;
};
