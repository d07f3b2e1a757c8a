#pragma once

#include "src/model/pageimage.h"
#include "src/model/pageitem.h"

#include <QString>

#include <optional>
#include <vector>

/// A page as a file has it.
struct TFilePage
{
    QString name;
    TPageImage image;             ///< may be undecodable
    std::vector<TDataItem> items; ///< ids may repeat
};

/// The content of a document's file, as far as it could be read. What was read before a fault is
/// there.
struct TFileContent
{
    std::optional<int> label_size; ///< as stored, also when it is out of range
    std::optional<QString> color_name;
    QString header_1;
    QString header_2;
    std::optional<std::vector<TFilePage>> pages; ///< empty when a fault comes before all pages
    QString fault;                               ///< empty when everything was read
};
