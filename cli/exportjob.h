#pragma once

#include "core/pageranges.h"
#include "src/format/document.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class TCommandLine;

/// A page to export.
struct TExportPage
{
    int number; ///< in the document, from 1
    int page_id;
    QString name;
};

/// A document to export, and the chosen pages.
struct TExportInput
{
    QString path;
    TDocument document;
    std::vector<TExportPage> pages; ///< at least one

    QList<int> Page_Ids() const;
};

/// Exports several documents, as export-images and export-pdf do. Handles the options that these
/// commands share: --pages, --halo, --json and --force.
class TExportJob
{
public:
    /// Declares the argument and these options except --force, which the output option declares.
    static void Declare(TCommandLine* line);

    /// @param line  parsed; must outlive this object.
    explicit TExportJob(const TCommandLine& line);
    /// Removes the new files if the job failed. Files that it has overwritten cannot be restored.
    ~TExportJob();
    TExportJob(const TExportJob&) = delete;
    TExportJob& operator=(const TExportJob&) = delete;

    /// Loads each document, passes it to a function, and prints the list of files at the end.
    /// @param export_document  calls Add_File for each file before it writes the first one.
    void Run(const std::function<void(TExportInput*)>& export_document);

    /// Checks that a file can be written and adds it to the list.
    /// @param details  the further members of its entry in the JSON list.
    void Add_File(const QString& path, const QJsonObject& details);

    /// Notes that a file of the list is written, so that it is removed if the job fails.
    void Mark_Written(const QString& path);

    bool Has_Halo() const;

private:
    TExportInput Load(const QString& path) const;

    const TCommandLine& d_line;
    std::vector<TPageRange> d_ranges; ///< empty for all pages
    QStringList d_files;
    QJsonArray d_details;        ///< of each file
    QStringList d_missing_files; ///< those that did not exist when they were added
    QStringList d_new_files;     ///< those of them that are written
    bool d_is_finished = false;
};
