// Shows the main window and exits without cleanup after its first paint.

#include "src/quillet.h"

#include <QApplication>
#include <QIcon>
#include <QStyleFactory>

#include <cstdlib>

int main(int argument_count, char** arguments)
{
    const QApplication application(argument_count, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/quillet.png")));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // the default from then on
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif

    TQuillet window(nullptr, Qt::WindowFlags());
    window.show();
    QApplication::processEvents();
    std::_Exit(0);
}
