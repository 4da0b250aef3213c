#include "setup/labelvalidator.h"

#include <QRegExpValidator>

QValidator* makeLabelValidator(QObject& parent)
{
    return new QRegExpValidator(QRegExp(QStringLiteral("[A-Za-z0-9_]+")), &parent);
}
