#include "support/tool.h"

#include "support/support.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace Support {

namespace {

/// Returns the test's environment without variables that lead to the user's folders or to a
/// display. XDG_CACHE_HOME stays: fontconfig's cache must not appear in the home folder.
QProcessEnvironment Environment(const TToolOptions& options, const QString& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR",
                             "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("HOME"), home);
    if (!options.display.isEmpty())
        environment.insert(QStringLiteral("DISPLAY"), options.display);
    return environment;
}

/// Runs a program with the path of the tool in $tool.
TScriptResult Run_Script(const QString& program, const QStringList& arguments,
                         const QString& folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("tool"), Tool_Path());
    // script(1) runs its command in this shell.
    environment.insert(QStringLiteral("SHELL"), QStringLiteral("/bin/bash"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    if (!process.waitForFinished())
        return {-1, QByteArray(), "time limit"};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace

QString Tool_Path()
{
    return QStringLiteral(QUILLET_TOOL);
}

TToolResult Run_Tool(const QStringList& arguments, const TToolOptions& options)
{
    const QTemporaryDir own_home;
    const QString home = options.home.isEmpty() ? own_home.path() : options.home;
    const QString tool = Tool_Path();
    QProcess process;
    process.setProcessEnvironment(Environment(options, home));
    process.setWorkingDirectory(options.folder);
    if (options.file_size.isEmpty()) {
        process.start(tool, arguments);
    } else {
        const QString script =
            QStringLiteral("trap '' XFSZ; ulimit -f %1; exec \"$@\"").arg(options.file_size);
        process.start(QStringLiteral("bash"),
                      QStringList{QStringLiteral("-c"), script, tool, tool} + arguments);
    }
    TToolResult result;
    constexpr int time_limit = 60'000; // milliseconds
    if (process.waitForFinished(time_limit) && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    result.home = Entries(home);
    return result;
}

QByteArray TToolTest::Content(const QString& name) const
{
    return Read_File(Path(name));
}

void TToolTest::Write(const QString& name, const QByteArray& content) const
{
    Write_File(Path(name), content);
}

TScriptResult TToolTest::Shell(const QString& script) const
{
    return Run_Script(QStringLiteral("bash"), {QStringLiteral("-c"), script}, d_folder->path());
}

TScriptResult TToolTest::On_Terminal(const QString& script) const
{
    return Run_Script(QStringLiteral("script"),
                      {QStringLiteral("-qec"), script, QStringLiteral("/dev/null")},
                      d_folder->path());
}

void TToolTest::init()
{
    d_folder = std::make_unique<QTemporaryDir>();
    d_options = TToolOptions();
    d_options.folder = d_folder->path();
}

QStringList Text_Of_Pages(const QString& pdf)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {"-layout", pdf, "-"});
    process.waitForFinished();
    QStringList pages = QString::fromUtf8(process.readAllStandardOutput()).split('\f');
    pages.removeLast();
    return pages;
}

} // namespace Support
