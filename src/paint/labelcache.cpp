#include "src/paint/labelcache.h"

namespace {

constexpr int memory_limit = 128 * 1024 * 1024; // bytes of pixels

int Size_In_Bytes(const QPixmap& pixmap)
{
    return pixmap.width() * pixmap.height() * pixmap.depth() / 8;
}

} // namespace

TLabelCache::TLabelCache()
    : d_labels(memory_limit)
{
}

void TLabelCache::Set_Style(const TLabelStyle& style, const QPixmap& label_template)
{
    d_style = style;
    d_template = label_template;
    d_frames.clear();
    d_labels.clear();
}

QPixmap TLabelCache::Label(const QString& text, int border_type, bool selected)
{
    const TLook look{text, Frame_Key(border_type, selected)};
    if (const QPixmap* known = d_labels.object(look))
        return *known;
    QPixmap label = Frame(border_type, selected);
    LabelPainter::Paint_Text(&label, d_style, text, border_type);
    d_labels.insert(look, new QPixmap(label), Size_In_Bytes(label));
    return label;
}

/// A number for each frame. All codes without a border share one, which limits the number of frames
/// for files with arbitrary codes.
int TLabelCache::Frame_Key(int border_type, bool selected)
{
    const int shape = Is_Border_Type(border_type) ? border_type : No_Border;
    return shape * 2 + (selected ? 1 : 0);
}

QPixmap TLabelCache::Frame(int border_type, bool selected)
{
    QPixmap& frame = d_frames[Frame_Key(border_type, selected)];
    if (frame.isNull()) {
        frame = d_template;
        LabelPainter::Paint_Frame(&frame, d_style, border_type, selected);
    }
    return frame;
}
