#pragma once

#include <QByteArray>
#include <QImage>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <vector>

struct TDataItem;

/// Helpers for all tests: images, child processes, assertions and files.
namespace Support {

/// A coloured gradient with some shapes. Every seed gives a different picture.
QImage Picture(int width, int height, int seed = 0);

/// An image as the bytes of a file, as QImage::save encodes them at default quality.
/// @param format  its name in Qt, for example "BMP".
QByteArray Encoded(const QImage& image, const char* format);

/// An image as PNG bytes, as QImage::save encodes them at default quality.
QByteArray Png(const QImage& image);

/// Labels at these centres, with ids that count from 1.
std::vector<TDataItem> Labels_At(const QVector<QPointF>& positions);

/// Both sizes when they differ, or the first pixel that differs with both colours; empty for equal
/// images. Ignores the formats.
QString Difference(const QImage& actual, const QImage& expected);

/// The offset of the first difference and the bytes there; empty when they are equal.
QString Byte_Difference(const QByteArray& actual, const QByteArray& expected);

/// The result of a function that ran in a child process.
struct TChildResult
{
    bool exited = false; ///< exited with exit_code
    int exit_code = -1;
    int signal = 0;          ///< the signal that ended it
    bool timed_out = false;  ///< killed after the time limit
    QByteArray error_output; ///< its standard error
};

/// Runs a function in a forked child and waits for it. The child's exit code is the function's
/// result.
/// @param seconds  time limit.
TChildResult Run_In_Child(const std::function<int()>& function, int seconds = 20);

/// Drops root's right to ignore file permissions for the rest of the process. Call it in a child of
/// Run_In_Child. Does nothing for other users.
void Obey_File_Permissions();

/// Runs a function that has to fail an assertion with exactly this condition text, in a source
/// whose path relative to the project's root begins with `source`.
/// @return  empty when it does; otherwise what happened instead.
QString Assertion_Failure(const std::function<void()>& function, const QString& source,
                          const QString& condition, const QString& in_function = QString());

/// Writes bytes to a file.
void Write_File(const QString& path, const QByteArray& content);

/// The content of a file; empty when it cannot be read.
QByteArray Read_File(const QString& path);

/// Whether queued connections by signature can pass this type.
bool Is_Meta_Type(const char* name);

/// A PDF file without its creation time.
QByteArray Timeless_Pdf(const QString& path);

/// Sorted names of everything in a folder, including hidden files.
QStringList Entries(const QString& folder);

/// Permission bits of a file, as octal digits.
QString Mode(const QString& path);

/// Limits the size of files that this process writes, in bytes, for the rest of the process. Longer
/// writes are incomplete, as on a full disk. Call it in a child of Run_In_Child.
void Limit_File_Size(qint64 bytes);

/// A complete project file without pages. Every label size gives a different file.
QByteArray Empty_Project(int label_size = 32);

/// Sets a file's modification time to some seconds ago.
void Make_Old(const QString& path, int seconds);

} // namespace Support
