#pragma once

#include "src/model/bordertype.h"
#include "src/model/pageimage.h"

#include <QPointF>
#include <QString>

#include <vector>

/// A numbered label of a page.
struct TDataItem
{
    int id = 0;                  ///< random key, unique within its page, never shown
    int value = 0;               ///< the number on the label; values may repeat
    QString text;                ///< shown instead of the number when not empty
    int border_type = No_Border; ///< see TBorderType; unknown codes are kept and draw no border
    QPointF position;            ///< centre of the label in page-image pixels
    bool selected = false;
};

/// A page: its image and its labels in insertion order.
struct TPageItem
{
    int page_id = 0;  ///< unique within the document
    TPageImage image; ///< null for a page that was added without one
    std::vector<TDataItem> data_items;
    /// Changes with the labels and the image, but not with the selection. Two pages of a process
    /// with the same revision have the same content; undo restores the revision with the content.
    quint64 revision = 0;
};

/// Whether two labels are equal except for their selection.
bool Has_Same_Content(const TDataItem& left, const TDataItem& right);
