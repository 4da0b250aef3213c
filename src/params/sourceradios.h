#pragma once

class QRadioButton;

/// Where a controller takes a value from.
enum class Source { Software, External };

/// Two radio buttons, "software" and "external", of which one is checked. They do not exclude each
/// other by themselves, so a click can take away the tick of the checked one; that chooses the
/// other.
class SourceRadios final
{
public:
    SourceRadios(QRadioButton& softwareRadio, QRadioButton& externalRadio);

    Source selected() const;
    void select(Source source);
    /// What the user has chosen by a click, which the button shows already.
    Source chosenBy(Source clicked) const;
    void setEnabled(bool enabled);
    void setVisible(bool visible);

private:
    QRadioButton& software;
    QRadioButton& external;
};
