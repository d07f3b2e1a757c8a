#pragma once

#include "core/unfinishedfile.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <optional>

class TCommandLine;

/// The file that a command writes. "-" stands for standard output: the command writes a temporary
/// file, and Finish() prints it.
class TOutput
{
public:
    enum class TContent {
        Text,
        Binary, ///< printed on a terminal only with --force
        Project ///< as Binary; the file must not have the suffix of an earlier generation
    };

    /// Checks that the file can be written.
    /// @param option  of the parsed command line; its value is the file.
    TOutput(const TCommandLine& line, const char* option, TContent content);

    /// The file to write. It does not exist, or may be overwritten.
    QString Path() const { return d_path; }

    bool Is_Standard_Output() const { return d_folder != nullptr; }

    /// Prints the file if it goes to standard output. Call it when the file is written.
    void Finish() const;

private:
    void Redirect(bool force);

    QString d_path;
    TContent d_content;
    std::unique_ptr<QTemporaryDir> d_folder; ///< only for standard output
    std::optional<TUnfinishedFile> d_registration;
};
