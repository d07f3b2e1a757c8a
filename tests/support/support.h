#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>

/// What several tests need: pictures to work with, images compared, programs that must abort.
namespace Support {

/// A picture that no other seed gives: a coloured gradient with some shapes.
QImage Picture(int width, int height, int seed = 0);

/// An image as PNG bytes, as QImage::save encodes them at default quality.
QByteArray Png(const QImage& image);

/// Empty when both images have the same size and pixels; otherwise tells the sizes, or the first
/// pixel that differs with both its colours. Formats are not compared.
QString Difference(const QImage& actual, const QImage& expected);

/// Empty when both are equal; otherwise the place where they part and what follows there.
QString Byte_Difference(const QByteArray& actual, const QByteArray& expected);

/// What became of a function that was run in a child process.
struct TChildResult
{
    bool exited = false; ///< ended by itself, with exit_code
    int exit_code = -1;
    int signal = 0;          ///< ended by this signal
    bool timed_out = false;  ///< killed after the time limit
    QByteArray error_output; ///< what it printed on standard error
};

/// Runs a function in a forked child and waits for it. The child's exit code is the function's
/// result.
/// @param seconds  time limit.
TChildResult Run_In_Child(const std::function<int()>& function, int seconds = 20);

/// Gives up root's right to read and write whatever the permissions of a file say, for the rest of
/// the process; for children of Run_In_Child. Without effect for other users.
void Obey_File_Permissions();

/// Empty when the function is stopped by an assertion with exactly this condition text in a source
/// whose path, relative to the project's root, begins with source; otherwise what happened instead.
QString Assertion_Failure(const std::function<void()>& function, const QString& source,
                          const QString& condition, const QString& in_function = QString());

/// Writes a file as it is given.
void Write_File(const QString& path, const QByteArray& content);

/// The content of a file; empty when it cannot be read.
QByteArray Read_File(const QString& path);

/// Names of everything in a folder, hidden files too, in order.
QStringList Entries(const QString& folder);

/// Permission bits of a file, as octal digits.
QString Mode(const QString& path);

/// Lets no file of this process grow beyond a size, in bytes, for the rest of its life: writes come
/// short, as on a full disk. For children of Run_In_Child.
void Limit_File_Size(qint64 bytes);

/// A whole project file without pages; files with other label sizes differ.
QByteArray Empty_Project(int label_size = 32);

/// Makes a file look as if it had last been written some seconds ago.
void Make_Old(const QString& path, int seconds);

} // namespace Support
