#include "support/processes.h"

#include "support/support.h"

#include <unistd.h>

QList<pid_t> Support::Children()
{
    QList<pid_t> children;
    const QString id = QString::number(getpid());
    const QByteArray ids = Read_File(QStringLiteral("/proc/%1/task/%1/children").arg(id)).trimmed();
    for (const QByteArray& child : ids.split(' ')) {
        if (!child.isEmpty())
            children += child.toInt();
    }
    return children;
}

QByteArray Support::Process_Field(pid_t process, int index)
{
    const QByteArray fields = Read_File(QStringLiteral("/proc/%1/stat").arg(process));
    return fields.mid(fields.lastIndexOf(')') + 2).split(' ').value(index);
}
