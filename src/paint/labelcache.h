#pragma once

#include "src/paint/labelpainter.h"

#include <QCache>
#include <QHash>
#include <QPixmap>
#include <QString>

/// A cache of label pixmaps of one style.
///
/// Labels with the same look share a pixmap, and labels that differ only in their text share the
/// drawing of border and highlight. The pixels are those of LabelPainter::Paint. Drops the least
/// recently used pixmaps when they take too much memory.
class TLabelCache
{
public:
    TLabelCache();

    /// Sets the style and drops all pixmaps.
    void Set_Style(const TLabelStyle& style, const QPixmap& label_template);

    /// The pixmap of a label with this look.
    QPixmap Label(const QString& text, int border_type, bool selected);

private:
    /// What distinguishes labels of one style.
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
