#pragma once

#include "src/format/fileplaces.h"
#include "src/model/pageimage.h"
#include "src/model/pageitem.h"

#include <QString>

#include <optional>
#include <vector>

/// A page in a file.
struct TFilePage
{
    QString name;
    TPageImage image;             ///< may not be decodable
    std::vector<TDataItem> items; ///< ids may repeat
    TPagePlace place{};           ///< only project files have one
};

/// The content of a document's file, or the part of it before the first fault.
struct TFileContent
{
    std::optional<int> label_size; ///< as stored, even if out of range
    std::optional<QString> color_name;
    QString header_1;
    QString header_2;
    std::optional<std::vector<TFilePage>> pages; ///< empty if the fault is before the pages
    QString fault;                               ///< empty when everything was read
};
