#pragma once

#include "src/paint/labelpainter.h"

#include <QCache>
#include <QHash>
#include <QPixmap>
#include <QString>

/// Label pixmaps of one style, each drawn once.
///
/// Labels that look the same share one pixmap, and labels that differ only in their text share the
/// drawing of their border and highlight. The pixels are those of LabelPainter::Paint. What was not
/// asked for lately is dropped when the pixmaps take too much memory.
class TLabelCache
{
public:
    TLabelCache();

    /// Forgets all pixmaps and goes on with another style.
    void Set_Style(const TLabelStyle& style, const QPixmap& label_template);

    /// The label with this look.
    QPixmap Label(const QString& text, int border_type, bool selected);

private:
    /// What tells labels of one style from each other.
    struct TLook
    {
        QString text;
        int frame; ///< see Frame_Key

        bool operator==(const TLook& other) const
        {
            return frame == other.frame && text == other.text;
        }
        friend uint qHash(const TLook& look, uint seed)
        {
            return qHash(look.text, seed) ^ qHash(look.frame, seed);
        }
    };

    static int Frame_Key(int border_type, bool selected);
    QPixmap Frame(int border_type, bool selected);

    TLabelStyle d_style;
    QPixmap d_template;
    QHash<int, QPixmap> d_frames;
    QCache<TLook, QPixmap> d_labels; ///< costs are bytes
};
