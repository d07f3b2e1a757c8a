#pragma once

#include "core/filestamp.h"
#include "src/format/fileplaces.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// A file at one moment: another file, or another version of it, differs in at least one value.
struct TFileIdentity
{
    QString path;
    quint64 device = 0;
    quint64 inode = 0;
    TFileStamp stamp;
};

/// The project file that the document was last read from or saved to. Unsaved work refers to its
/// pages instead of storing them again.
///
/// The file may be changed, replaced or deleted at any time. A second name protects its content
/// unless another program overwrites it in place; a clone, which shares its blocks, always does.
class TBaseFile
{
public:
    /// No file.
    TBaseFile() = default;

    /// @param stamp   the file's stamp before it was read or after it was written. If the file at
    ///                the path has another one by now, there is no base.
    /// @param places  with revisions and image ids.
    TBaseFile(const QString& path, const TFileStamp& stamp, TFilePlaces places);

    /// Whether there is a file.
    bool Exists() const { return d_identity.stamp.Exists(); }
    const TFileIdentity& Identity() const { return d_identity; }

    /// The place of a page or an image; null if the file does not have it.
    const TPagePlace* Find_Page(quint64 revision) const;
    const TPagePlace* Find_Image(quint64 image_id) const;

    /// Protects the content of the file against its loss, without copying it. Does nothing if the
    /// file is not at its path any more, or if the file system supports neither links nor clones.
    /// @param path  of the hard link or clone to create. It must not exist.
    void Protect(const QString& path);

    /// Whether the content is protected against the loss of the file.
    bool Is_Protected() const { return !d_protection.isEmpty(); }

    /// Whether the protected content, or the file if it is not protected, is unchanged.
    bool Is_Intact() const;

    /// Forgets where the labels of the pages are, but not their images.
    void Forget_Pages() { d_pages.clear(); }

    /// Syncs the content to the disk, if there is a file and it was not synced before.
    bool Sync();

private:
    TFileIdentity d_identity;
    TFilePlaces d_places;
    QHash<quint64, int> d_pages;  ///< indexes of places by revision
    QHash<quint64, int> d_images; ///< indexes of places by image id
    QString d_protection;         ///< path of the link or clone; empty without
    TFileStamp d_protection_stamp;
    bool d_is_synced = false;
};

/// Finds the parts of a base file when work that refers to them is recovered.
///
/// A file with another identity may have the same content: a clone, or a copy among the backups. It
/// may also be another version of the document, so each part is checked.
class TBaseReader
{
public:
    /// @param identity    of the base file.
    /// @param candidates  paths where it may be, best first.
    TBaseReader(const TFileIdentity& identity, QStringList candidates);

    /// Reads an image.
    /// @param ends  its first and last bytes, as in TPagePlace.
    /// @return its bytes; none if no candidate has it.
    std::optional<QByteArray> Read_Image(const TFilePart& part, const QByteArray& ends) const;

    /// Reads the document of a page's labels.
    /// @param digest  as in TPagePlace.
    /// @return its bytes; none if no candidate has it.
    std::optional<QByteArray> Read_Items(const TFilePart& part, const QByteArray& digest) const;

private:
    using TCheck = std::function<bool(const QByteArray&)>;
    std::optional<QByteArray> Read(const TFilePart& part, const TCheck& is_right) const;

    qint64 d_size;
    QStringList d_candidates;
};
