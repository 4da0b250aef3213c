#pragma once

#include <QPointer>
#include <QWidget>

class QSpinBox;

/// A labelled number in the tool bar. With a partner it never exceeds the partner's number. When
/// the partner's number rises again, the counter returns to the number that the user typed.
class Counter final : public QWidget
{
    Q_OBJECT

public:
    /// `prefix` and `suffix` stand before and behind the number; `partner` may be null.
    Counter(QWidget* parent, const QString& prefix, const QString& suffix, int min, int max,
            int step, Counter* partner);

    QSpinBox* spinBox;
    QPointer<Counter> partner;
    /// The lower bound given at construction.
    int minimum;
    /// What the user typed last. Code that sets the number must set this as well if the counter is
    /// to return to that number.
    int wishedValue = 0;

signals:
    void valueChanged(int value);

private:
    void addLabel(const QString& text);
    void follow(const Counter& other);
    void stayBelowPartner(int value);
    void returnToWish(int partnerValue);
};
