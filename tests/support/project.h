#pragma once

#include "support/window.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include <vector>

/// Hand-made project files, and documents to save and to compare.
namespace Support {

/// The four bytes of an integer in little-endian order.
QByteArray Number(quint32 value);

/// A byte array, preceded by its length.
QByteArray Field(const QByteArray& content);

/// The magic number.
QByteArray Magic();

/// Everything before the page records.
QByteArray Header(quint32 label_size, const QByteArray& color, const QByteArray& header_1,
                  const QByteArray& header_2, quint32 page_count);

/// A page record.
QByteArray Page_Record(const QByteArray& name, const QByteArray& image, const QByteArray& items);

/// An item-list document with this content below its root.
/// @param attributes  of the root besides its version, each after a blank.
QByteArray Item_List(const QByteArray& content = QByteArray(),
                     const QByteArray& attributes = QByteArray());

/// One label of such a document, with all values verbatim.
QByteArray Item_Element(const QByteArray& id, const QByteArray& value, const QByteArray& text,
                        const QByteArray& border, const QByteArray& position);

/// A project with one page, on which a square label has the number 7.
QByteArray One_Label_Project(const QByteArray& page_name = "a");

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

/// Describes the window's document in lines of text: each page with its id, name and image size,
/// followed by its labels. Marks pages that the page list lacks. Keeps the active page.
QStringList Describe(TOpenWindow* window);

/// Describes the label size and colour in the settings panel, and the header lines.
QString Describe_Appearance(const TOpenWindow& window);

/// Compares the labels that the window's view draws with those of a new view with this label size,
/// the matching font size and this colour.
/// @return  the first pixel that differs; empty when none does.
QString View_Difference(const TOpenWindow& window, int label_size, const QColor& color);

} // namespace Support
