#pragma once

#include <QString>

/// Marks a document as open in this window, so that other windows can show that. Prevents nothing.
///
/// A mark is an empty file named after the document's path, with a shared lock. The kernel releases
/// the lock when the process ends; only a locked mark counts.
class TOpenMark
{
public:
    /// Removes the marks that killed processes left.
    /// @param folder  folder of the marks; created on first use.
    explicit TOpenMark(const QString& folder);
    ~TOpenMark() { Clear(); }
    TOpenMark(const TOpenMark&) = delete;
    TOpenMark& operator=(const TOpenMark&) = delete;

    /// Marks a document instead of the previous one. Without a writable folder, does nothing.
    /// @return whether another window has marked it, too.
    bool Set(const QString& document);
    /// Removes the mark.
    void Clear();

private:
    QString d_folder;
    QString d_path; ///< of the mark; empty if there is none
    int d_descriptor = -1;
};
