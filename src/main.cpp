// Entry point of the desktop program: one window, one event loop.

#include "src/quillet.h"
#include "src/widgets/contraststyle.h"

#include <QApplication>
#include <QIcon>

#include <memory>

int main(int argument_count, char** arguments)
{
    QApplication application(argument_count, arguments);
    QApplication::setStyle(new TContrastStyle);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/quillet.png")));
    // Desktops match the window with the desktop entry of this name.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.quillet"));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // the default from then on
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif

    auto window = std::make_unique<TQuillet>(nullptr, Qt::WindowFlags());
    window->show();
    // Once the event loop runs, so that a message about a file appears above the window.
    QMetaObject::invokeMethod(
        window.get(), [&window] { window->Open_Arguments(QApplication::arguments().mid(1)); },
        Qt::QueuedConnection);
    const int exit_code = QApplication::exec();
    window.reset();
    return exit_code;
}
