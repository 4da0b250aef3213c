#include "plots/counter.h"

#include "controls/calmwheel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>

Counter::Counter(QWidget* parent, const QString& prefix, const QString& suffix, int min, int max,
                 int step, Counter* partnerCounter)
    : QWidget(parent)
    , spinBox(new CalmWheel<QSpinBox>(this))
    , partner(partnerCounter)
    , minimum(min)
{
    auto* row = new QHBoxLayout(this);
    if (!prefix.isEmpty())
        addLabel(prefix + QLatin1Char(' '));
    spinBox->setAlignment(Qt::AlignRight);
    spinBox->setRange(min, max);
    spinBox->setSingleStep(step);
    spinBox->setGroupSeparatorShown(true);
    spinBox->setAccessibleName(prefix);
    row->addWidget(spinBox);
    setFocusProxy(spinBox);
    connect(spinBox, qOverload<int>(&QSpinBox::valueChanged), this, &Counter::valueChanged);
    if (partnerCounter)
        follow(*partnerCounter);
    if (!suffix.isEmpty())
        addLabel(QLatin1Char(' ') + suffix);
}

void Counter::addLabel(const QString& text)
{
    auto* label = new QLabel(text, this);
    label->setBuddy(spinBox);
    layout()->addWidget(label);
}

void Counter::follow(const Counter& other)
{
    connect(spinBox, qOverload<int>(&QSpinBox::valueChanged), this, &Counter::stayBelowPartner);
    connect(other.spinBox, qOverload<int>(&QSpinBox::valueChanged), this, &Counter::returnToWish);
}

void Counter::stayBelowPartner(int value)
{
    const Counter* limit = partner;
    if (limit && spinBox->value() > limit->spinBox->value())
        spinBox->setValue(limit->spinBox->value());
    if (spinBox->hasFocus())
        wishedValue = value;
}

void Counter::returnToWish(int partnerValue)
{
    // Setting the number stores it as the user's wish while the box has the focus, but this change
    // comes from the partner.
    const int wish = wishedValue;
    if (partnerValue <= wish)
        spinBox->setValue(partnerValue);
    else if (spinBox->value() != wish)
        spinBox->setValue(wish);
    wishedValue = wish;
}
