#include "params/sourceradios.h"

#include <QRadioButton>

SourceRadios::SourceRadios(QRadioButton& softwareRadio, QRadioButton& externalRadio)
    : software(softwareRadio)
    , external(externalRadio)
{}

Source SourceRadios::selected() const
{
    return software.isChecked() ? Source::Software : Source::External;
}

void SourceRadios::select(Source source)
{
    software.setChecked(source == Source::Software);
    external.setChecked(source == Source::External);
}

Source SourceRadios::chosenBy(Source clicked) const
{
    if (clicked == Source::Software)
        return software.isChecked() ? Source::Software : Source::External;
    return external.isChecked() ? Source::External : Source::Software;
}

void SourceRadios::setEnabled(bool enabled)
{
    software.setEnabled(enabled);
    external.setEnabled(enabled);
}

void SourceRadios::setVisible(bool visible)
{
    software.setVisible(visible);
    external.setVisible(visible);
}
