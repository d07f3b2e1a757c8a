// Recovers abandoned work as the program does when it starts.
//
// Usage: recoverall
//
// Prints "ready", then reads paths of settings folders from the standard input, one a line, and
// prints "done" after each.

#include "src/safety/safetynet.h"

#include <QFile>
#include <QGuiApplication>

#include <iostream>
#include <string>

int main(int argument_count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argument_count, arguments);
    std::cout << "ready" << std::endl;
    std::string folder;
    while (std::getline(std::cin, folder)) {
        TSafetyNet net(QFile::decodeName(folder.c_str()), nullptr);
        net.Convert_Abandoned_Logs(nullptr);
        std::cout << "done" << std::endl;
    }
    return 0;
}
