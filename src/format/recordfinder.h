#pragma once

#include "core/bytesource.h"

#include <QByteArray>

#include <optional>

/// A field of a project file. The four bytes before its content are its length.
struct TFileField
{
    qint64 begin = 0; ///< of the content, in bytes from the beginning of the file
    qint64 length = 0;

    qint64 End() const { return begin + length; }
    qint64 Length_Offset() const;
};

/// The location of a page in a project file. A field that cannot be found is empty.
struct TPageRecord
{
    std::optional<TFileField> name;
    std::optional<TFileField> image;
    std::optional<TFileField> items;
    qint64 begin = 0;
    qint64 end = 0;          ///< where the next record begins
    bool is_end_sure = true; ///< false when the next record must be searched for
};

/// Finds page records in a project file, even after a damaged length.
///
/// In a sound file the lengths lead from record to record. After a wrong length the record is
/// rebuilt from distinctive marks: the root element of a label document, the signature of a PNG
/// image, and lengths that match the distance between them. The time is proportional to the size of
/// the file.
class TRecordFinder
{
public:
    /// @param file  the whole file.
    explicit TRecordFinder(const TByteSource& file);

    qint64 Size() const { return d_file.Size(); }
    /// The integer at an offset; empty if the file ends before or within it.
    std::optional<int> Integer_At(qint64 offset) const;
    /// The field whose length is at an offset; empty when it does not lie within the file.
    std::optional<TFileField> Field_At(qint64 offset) const;

    /// Whether the file ends at an offset, or what looks like a page record begins there.
    bool Is_Boundary(qint64 offset) const;
    /// Whether a page record begins at an offset or after it.
    bool Has_Record_After(qint64 offset) const;

    /// The record that begins at an offset, or what can be found of it: at least one byte.
    TPageRecord Find(qint64 offset) const;
    /// The next record after an offset. In contrast to Find, the offset need not be that of a
    /// record.
    TPageRecord Find_After(qint64 offset) const;

private:
    bool Begins_With(const TFileField& field, const QByteArray& what) const;
    std::optional<TPageRecord> Record_At(qint64 offset) const;
    TPageRecord Record_Up_To(qint64 end, qint64 offset) const;
    std::optional<TPageRecord> Document_After(qint64 offset) const;
    qint64 Document_End(qint64 root, bool* is_sure) const;
    TPageRecord Rebuilt(qint64 offset, bool begins_here) const;
    std::optional<TFileField> Image_Before(qint64 end, qint64 offset) const;
    std::optional<TFileField> Name_Before(qint64 end, qint64 offset) const;

    const TByteSource d_file;
    const qint64 d_last_root; ///< offset of the last label document's root, -1 for none
};
