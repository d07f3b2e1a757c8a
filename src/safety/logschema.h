#pragma once

/// Layout of a work log, which docs/file-formats.md describes.
namespace LogSchema {

constexpr int Application_Id = 0x514c4f47; ///< "QLOG"
constexpr int Version = 1;

/// Creates the tables of an empty log.
constexpr const char* Tables =
    "CREATE TABLE document(id INTEGER PRIMARY KEY CHECK(id=1), path BLOB, changed INTEGER,"
    " label_size INTEGER, color BLOB, header_1 BLOB, header_2 BLOB);"
    "CREATE TABLE base(id INTEGER PRIMARY KEY CHECK(id=1), path BLOB, device INTEGER,"
    " inode INTEGER, size INTEGER, seconds INTEGER, nanoseconds INTEGER);"
    "CREATE TABLE images(image_id INTEGER PRIMARY KEY, bytes BLOB, offset INTEGER,"
    " length INTEGER, ends BLOB);"
    "CREATE TABLE pages(page_id INTEGER PRIMARY KEY, position INTEGER, name BLOB,"
    " image_id INTEGER, items_offset INTEGER, items_length INTEGER);"
    "CREATE TABLE labels(page_id INTEGER, label_id INTEGER, rank INTEGER, value INTEGER,"
    " text BLOB, border INTEGER, x REAL, y REAL, PRIMARY KEY(page_id, label_id)) WITHOUT ROWID;";

} // namespace LogSchema
