#pragma once

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QStringList>

/// Notes what the notice of the window says on the screen, and whether the pointer waits then.
class NoticeReader final : public QObject
{
public:
    NoticeReader() { QApplication::instance()->installEventFilter(this); }

    /// Each text that was painted.
    QStringList texts;
    bool pointerWaited = true;

    /// Whether a notice is on the screen now.
    static bool isShown()
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
            return isNotice(window) && window->isVisible();
        });
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* label = qobject_cast<const QLabel*>(object);
        if (!label || !isNotice(label) || event->type() != QEvent::Paint)
            return false;
        if (!texts.endsWith(label->text()))
            texts.append(label->text());
        const QCursor* pointer = QGuiApplication::overrideCursor();
        pointerWaited = pointerWaited && pointer && pointer->shape() == Qt::WaitCursor;
        return false;
    }

private:
    static bool isNotice(const QWidget* widget)
    {
        return widget->objectName() == QLatin1String("waitNotice");
    }
};
