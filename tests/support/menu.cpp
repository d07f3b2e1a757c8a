#include "support/menu.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <functional>

namespace Support {

namespace {

/// Opens the context menu of a widget with its key, and passes it to a function that closes it.
void Open_Menu(QWidget* widget, const std::function<void(QMenu*)>& use)
{
    QTimer::singleShot(0, widget, [&use] {
        if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
            use(menu);
    });
    const QPoint place = widget->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, place, widget->mapToGlobal(place));
    QApplication::sendEvent(widget, &event);
    // The menu stays the active window on the offscreen platform.
    widget->activateWindow();
    if (!QTest::qWaitForWindowActive(widget))
        qFatal("the window is not active after its menu");
}

} // namespace

QString Choose_From_Menu(QWidget* widget, const QString& text)
{
    QString fault = QStringLiteral("no menu opened");
    Open_Menu(widget, [&](QMenu* menu) {
        fault = QStringLiteral("no entry ") + text;
        for (int count = menu->actions().size(); count > 0; --count) {
            QTest::keyClick(menu, Qt::Key_Down);
            const QAction* const action = menu->activeAction();
            if (!action || action->text() != text)
                continue;
            if (action->isEnabled()) {
                fault.clear();
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
            fault = QStringLiteral("disabled: ") + text;
        }
        menu->close();
    });
    return fault;
}

QStringList Menu_Entries(QWidget* widget)
{
    QStringList entries;
    Open_Menu(widget, [&entries](QMenu* menu) {
        const QList<QAction*> actions = menu->actions();
        for (const QAction* const action : actions)
            entries += action->isSeparator() || action->isEnabled()
                           ? action->text()
                           : QLatin1Char('(') + action->text() + QLatin1Char(')');
        menu->close();
    });
    return entries;
}

} // namespace Support
