#include "support/support.h"

#include "src/format/projectfile.h"
#include "src/model/pageitem.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMetaType>
#include <QPainter>
#include <QThreadPool>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

QImage Picture(int width, int height, int seed)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y,
                           qRgb((x * 3 + seed * 31) % 256, (y * 5 + seed * 17) % 256,
                                (x + y + seed * 7) % 256));
    }
    QPainter painter(&image);
    painter.fillRect(width / 4, height / 4, width / 3, height / 5,
                     QColor::fromHsv(seed * 37 % 360, 200, 220));
    return image;
}

QByteArray Encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QByteArray Png(const QImage& image)
{
    return Encoded(image, "PNG");
}

std::vector<TDataItem> Labels_At(const QVector<QPointF>& positions)
{
    std::vector<TDataItem> labels;
    for (const QPointF& position : positions)
        labels.push_back({static_cast<int>(labels.size()) + 1, 0, QString(), 0, position, false});
    return labels;
}

QString Difference(const QImage& actual, const QImage& expected)
{
    if (actual.size() != expected.size())
        return QStringLiteral("size %1 x %2 instead of %3 x %4")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height());
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb found = actual.pixel(x, y);
            const QRgb wanted = expected.pixel(x, y);
            if (found != wanted)
                return QStringLiteral("pixel (%1, %2) is %3 instead of %4")
                    .arg(x)
                    .arg(y)
                    .arg(found, 8, 16, QLatin1Char('0'))
                    .arg(wanted, 8, 16, QLatin1Char('0'));
        }
    }
    return QString();
}

QString Byte_Difference(const QByteArray& actual, const QByteArray& expected)
{
    if (actual == expected)
        return QString();
    const auto mismatch =
        std::mismatch(actual.cbegin(), actual.cend(), expected.cbegin(), expected.cend());
    const int offset = static_cast<int>(mismatch.first - actual.cbegin());
    constexpr int shown = 48;
    return QStringLiteral("byte %1 of %2 instead of %3: %4 instead of %5")
        .arg(offset)
        .arg(actual.size())
        .arg(expected.size())
        .arg(QString::fromLatin1(actual.mid(offset, shown)),
             QString::fromLatin1(expected.mid(offset, shown)));
}

namespace {

/// Reads a descriptor to its end. Returns false if nothing arrives for the given time.
bool Read_All(int descriptor, int seconds, QByteArray* output)
{
    char block[4096];
    pollfd ready{descriptor, POLLIN, 0};
    for (;;) {
        const int answer = poll(&ready, 1, seconds * 1000);
        if (answer == 0)
            return false;
        const ssize_t count = read(descriptor, block, sizeof(block));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return true;
        output->append(block, static_cast<int>(count));
    }
}

} // namespace

TChildResult Run_In_Child(const std::function<int()>& function, int seconds)
{
    TChildResult result;
    int ends[2];
    if (pipe(ends) != 0)
        return result;
    // Qt processes large images in a thread pool. A forked child would wait forever for the pool's
    // threads, which exist in the parent only, so end them first.
    QThreadPool::globalInstance()->waitForDone();
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        // QtTest's handlers would print a report when a signal kills the child.
        std::signal(SIGABRT, SIG_DFL);
        std::signal(SIGSEGV, SIG_DFL);
        _exit(function());
    }
    close(ends[1]);
    if (!Read_All(ends[0], seconds, &result.error_output)) {
        result.timed_out = true;
        kill(child, SIGKILL);
    }
    close(ends[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    result.exited = WIFEXITED(status);
    if (result.exited)
        result.exit_code = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    return result;
}

void Obey_File_Permissions()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
    if (syscall(SYS_capset, &header, sets) != 0)
        qFatal("cannot drop capabilities");
}

QString Assertion_Failure(const std::function<void()>& function, const QString& source,
                          const QString& condition, const QString& in_function)
{
    const TChildResult result = Run_In_Child([&function] {
        function();
        return 0;
    });
    const QString output = QString::fromUtf8(result.error_output);
    if (result.signal != SIGABRT)
        return QStringLiteral("not aborted: exit code %1, signal %2, output: %3")
            .arg(result.exit_code)
            .arg(result.signal)
            .arg(output);
    if (!output.contains(QStringLiteral("Assertion `%1' failed").arg(condition)))
        return QStringLiteral("other assertion: ") + output;
    if (!output.contains(QStringLiteral(": ") + source) && !output.startsWith(source))
        return QStringLiteral("other source: ") + output;
    if (!output.contains(in_function))
        return QStringLiteral("other function: ") + output;
    return QString();
}

void Write_File(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray Read_File(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool Is_Meta_Type(const char* name)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::fromName(name).isValid();
#else
    return QMetaType::type(name) != QMetaType::UnknownType;
#endif
}

QByteArray Timeless_Pdf(const QString& path)
{
    QByteArray content = Read_File(path);
    const int begin = content.indexOf("/CreationDate");
    return content.remove(begin, content.indexOf('\n', begin) - begin);
}

QStringList Entries(const QString& folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QString Mode(const QString& path)
{
    struct stat state = {};
    return stat(QFile::encodeName(path).constData(), &state) == 0
               ? QString::number(state.st_mode & 07777, 8)
               : QStringLiteral("no such file");
}

void Limit_File_Size(qint64 bytes)
{
    const rlimit limit{static_cast<rlim_t>(bytes), static_cast<rlim_t>(bytes)};
    std::signal(SIGXFSZ, SIG_IGN);
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot limit the size of files");
}

QByteArray Empty_Project(int label_size)
{
    TProjectWriter writer;
    writer.Write_Integer(label_size);
    writer.Write_Text(QStringLiteral("#f79741"));
    writer.Write_Text(QString());
    writer.Write_Text(QString());
    writer.Write_Integer(0);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writer.Write_To(&buffer);
    return buffer.data();
}

void Make_Old(const QString& path, int seconds)
{
    QFile file(path);
    const QDateTime time = QDateTime::currentDateTime().addSecs(-seconds);
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot set the time of %s", qPrintable(path));
}

} // namespace Support
