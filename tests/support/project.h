#pragma once

#include "support/window.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include <vector>

/// Project files assembled by hand, and documents to save and to compare.
namespace Support {

/// The four bytes of an integer, lowest first.
QByteArray Number(quint32 value);

/// A length and that many bytes.
QByteArray Field(const QByteArray& content);

/// The magic number.
QByteArray Magic();

/// Everything before the page records.
QByteArray Header(quint32 label_size, const QByteArray& color, const QByteArray& header_1,
                  const QByteArray& header_2, quint32 page_count);

/// A page record.
QByteArray Page_Record(const QByteArray& name, const QByteArray& image, const QByteArray& items);

/// An item-list document with this content below its root.
QByteArray Item_List(const QByteArray& content = QByteArray());

/// One label of such a document; all values as they stand in it.
QByteArray Item_Element(const QByteArray& id, const QByteArray& value, const QByteArray& text,
                        const QByteArray& border, const QByteArray& position);

/// A page to put into a window.
struct TPage
{
    QString name;
    QImage image;
    std::vector<TDataItem> items;
};

TDataItem Label(int id, int value, const QString& text, int border, const QPointF& position);

/// Adds pages to the window's document and page list; none of them becomes active.
/// @return their ids.
QList<int> Add_Pages(TOpenWindow* window, const std::vector<TPage>& pages);

/// A label in one line.
QString Describe_Label(const TDataItem& item);

/// The window's document as lines of text: for each page its place, name and picture size, below it
/// its labels; pages that are missing in the page list are told as well. The active page stays.
QStringList Describe(TOpenWindow* window);

/// Label size and colour in the settings panel, and the header lines or "no headers".
QString Describe_Appearance(const TOpenWindow& window);

/// Empty when the window's view draws labels as a view does that has this label size, its font size
/// and this colour; otherwise the first pixel that differs.
QString View_Difference(const TOpenWindow& window, int label_size, const QColor& color);

} // namespace Support
