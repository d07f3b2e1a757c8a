// Shows an empty QMainWindow and exits without cleanup after its first paint.

#include <QApplication>
#include <QMainWindow>
#include <QStyleFactory>

#include <cstdlib>

int main(int argument_count, char** arguments)
{
    const QApplication application(argument_count, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion")));

    QMainWindow window;
    window.resize(800, 600);
    window.show();
    QApplication::processEvents();
    std::_Exit(0);
}
