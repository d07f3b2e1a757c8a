#pragma once

#include <QtGlobal>

/// Layout of a project file, which docs/file-formats.md describes.
///
/// Magic number, label size, the texts of the header (colour name and two header lines), page
/// count, and for each page the fields name, image and labels. A field is its length and that many
/// bytes.
namespace ProjectLayout {

/// First integer of every project file.
constexpr int Magic = 90210;
constexpr int Integer_Size = 4; ///< bytes
static_assert(Integer_Size == sizeof(int), "integers are stored as they are in memory");

constexpr int Header_Texts = 3;
constexpr int Page_Fields = 3;
/// Magic number and label size, in bytes. A shorter file is not a project.
constexpr int Minimum_File = 2 * Integer_Size;
constexpr qint64 Minimum_Page = Page_Fields * Integer_Size; ///< bytes

} // namespace ProjectLayout
