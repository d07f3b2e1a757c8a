#pragma once

#include <QImage>
#include <QObject>

#include <functional>

class QListWidgetItem;
class TRowList;

/// Shows a small picture and the name of a row as its tool tip.
///
/// The picture is made when the tool tip appears and not kept.
class TThumbnailTip : public QObject
{
    Q_OBJECT

public:
    /// Returns the picture of the row with this id in its full size; null if it has none.
    using TSource = std::function<QImage(int id)>;

    /// @param list  owns this object.
    TThumbnailTip(TRowList* list, TSource source);

    /// Maximum width and height of the picture; a smaller one keeps its size.
    static constexpr int Side = 240; ///< pixels

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QString Tip(const QListWidgetItem& row) const;

    TRowList* d_list;
    TSource d_source;
};
