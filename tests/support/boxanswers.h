#pragma once

#include <QMessageBox>
#include <QStringList>
#include <QTimer>

/// Answers every message box that opens while it lives, and keeps what was said. One at a time.
class BoxAnswers final : public QObject
{
    Q_OBJECT

public:
    explicit BoxAnswers(QMessageBox::StandardButton answer = QMessageBox::Ok);

    int count() const { return seenTexts.size(); }
    const QStringList& titles() const { return seenTitles; }
    const QStringList& texts() const { return seenTexts; }

private:
    void answer();

    QMessageBox::StandardButton button;
    QTimer timer;
    QStringList seenTitles;
    QStringList seenTexts;
};
