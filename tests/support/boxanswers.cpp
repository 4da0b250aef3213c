#include "support/boxanswers.h"

#include "support/userinput.h"

#include <QApplication>
#include <QPushButton>

BoxAnswers::BoxAnswers(QMessageBox::StandardButton wanted)
    : button(wanted)
{
    constexpr int lookMs = 5;
    connect(&timer, &QTimer::timeout, this, &BoxAnswers::answer);
    timer.start(lookMs);
}

void BoxAnswers::answer()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    seenTitles.append(box->windowTitle());
    seenTexts.append(box->text());
    if (!user::click(box->button(button)))
        box->reject();
}
