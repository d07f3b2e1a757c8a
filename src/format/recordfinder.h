#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

/// A field of a project file. The four bytes before its content are its length.
struct TFileField
{
    qint64 begin = 0; ///< of the content, in bytes from the beginning of the file
    qint64 length = 0;

    qint64 End() const { return begin + length; }
    qint64 Length_Place() const;
};

/// Where a page is in a project file. A field that was not found is empty.
struct TPageRecord
{
    std::optional<TFileField> name;
    std::optional<TFileField> image;
    std::optional<TFileField> items;
    qint64 begin = 0;
    qint64 end = 0;          ///< where the next record begins
    bool is_end_sure = true; ///< false when the next record must be searched for
};

/// Finds page records in a project file, also after a damaged length.
///
/// In a sound file the lengths lead from record to record, and nothing else is read. After a wrong
/// length the record is rebuilt from unmistakable marks: the root element of a label document, the
/// signature of a PNG image, and lengths that match the distance between them. The time is
/// proportional to the size of the file.
class TRecordFinder
{
public:
    /// @param bytes  the whole file.
    explicit TRecordFinder(const QByteArray& bytes);

    qint64 Size() const { return d_bytes.size(); }
    /// The integer at an offset; empty when the file ends before its end.
    std::optional<int> Integer_At(qint64 offset) const;
    /// The field whose length is at an offset; empty when it does not lie within the file.
    std::optional<TFileField> Field_At(qint64 offset) const;

    /// Whether the file ends here, or what begins here looks like a page record.
    bool Is_Boundary(qint64 offset) const;
    /// Whether a page record begins here or further on.
    bool Has_Record_After(qint64 offset) const;

    /// The record that begins at an offset, or what is left of it. It has at least one byte before
    /// the end of the file.
    TPageRecord Find(qint64 offset) const;
    /// The first record after an offset where it is not certain that one begins.
    TPageRecord Find_After(qint64 offset) const;

private:
    struct TDocument;

    std::optional<TPageRecord> Chain_At(qint64 offset) const;
    bool Is_Document(const TFileField& field) const;
    std::optional<TDocument> Document_After(qint64 offset) const;
    TFileField Fitted(const TFileField& items) const;
    TPageRecord Rebuilt(qint64 offset, bool begins_here) const;
    TPageRecord Remainder(qint64 offset) const;
    TPageRecord Lost_Page(qint64 offset, qint64 end) const;
    std::optional<TFileField> Image_Before(qint64 offset, const TDocument& document,
                                           bool begins_here) const;
    std::optional<TFileField> Name_Before(qint64 offset, qint64 end) const;
    const std::vector<int>& Roots() const;
    const std::vector<int>& Images() const;
    const std::vector<int>& Places(std::optional<std::vector<int>>* places,
                                   const QByteArray& what) const;

    const QByteArray d_bytes;
    /// Filled on first use; sound files do not need them.
    mutable std::optional<std::vector<int>> d_roots;
    mutable std::optional<std::vector<int>> d_images;
};
