#pragma once

class QObject;
class QValidator;

/// Lets the user type only what a system's label may hold: letters, digits and underscore. The
/// parent owns it.
QValidator* makeLabelValidator(QObject& parent);
