#pragma once

#include "src/model/pageitem.h"

#include <QByteArray>

#include <vector>

/// Layout of a work log, which docs/file-formats.md describes.
namespace LogSchema {

constexpr int Application_Id = 0x514c4f47; ///< "QLOG"
constexpr int Version = 2;

/// Creates the tables of an empty log.
constexpr const char* Tables =
    "CREATE TABLE document(id INTEGER PRIMARY KEY CHECK(id=1), path BLOB, size INTEGER,"
    " seconds INTEGER, nanoseconds INTEGER, changed INTEGER, label_size INTEGER, color BLOB,"
    " header_1 BLOB, header_2 BLOB);"
    "CREATE TABLE base(id INTEGER PRIMARY KEY CHECK(id=1), path BLOB, device INTEGER,"
    " inode INTEGER, size INTEGER, seconds INTEGER, nanoseconds INTEGER);"
    "CREATE TABLE images(image_id INTEGER PRIMARY KEY, bytes BLOB, offset INTEGER,"
    " length INTEGER, ends BLOB);"
    "CREATE TABLE pages(page_id INTEGER PRIMARY KEY, position INTEGER, name BLOB,"
    " image_id INTEGER, items_offset INTEGER, items_length INTEGER,"
    " items_digest BLOB);"
    "CREATE TABLE labels(page_id INTEGER, first INTEGER, bytes BLOB,"
    " PRIMARY KEY(page_id, first)) WITHOUT ROWID;";

/// Number of labels in a row of the table of labels. With one label a row, renumbering a large
/// document would write too many rows; with one page a row, changing one of ten thousand labels
/// would write too many bytes.
constexpr std::size_t Labels_Per_Row = 64;

/// Encodes the labels from `first` to `last`, which is excluded.
QByteArray Encode_Labels(std::vector<TDataItem>::const_iterator first,
                         std::vector<TDataItem>::const_iterator last);

/// Appends encoded labels to a list. Returns false if they are damaged; those before the damage are
/// appended.
bool Decode_Labels(const QByteArray& bytes, std::vector<TDataItem>* items);

} // namespace LogSchema
