#include "src/displaywidget.h"

#include "src/model/pageitem.h"
#include "src/widgets/parentwidget.h"
#include "src/widgets/pictureitems.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QPainter>
#include <QVariant>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr double background_z = 0.0;
constexpr double label_z = 1.0; // always above the page image

/// Depth of the scene's index, which has 2 ^ depth cells. On an A4 page at 300 dpi a cell is about
/// twice as wide and high as a label.
constexpr int index_depth = 10;

constexpr double edge_opacity = 0.5; // of the line around the page

/// A rendered page with more pixels than this would take more than 4 GiB of memory.
constexpr double maximum_picture_pixels = 1024.0 * 1024.0 * 1024.0;

QPixmap Start_Image()
{
    return QPixmap(QStringLiteral(":/images/background_default.png"));
}

} // namespace

TDisplayWidget::TDisplayWidget(const QWidget* parent)
    : QGraphicsView(Parent_Widget(parent))
    , d_scene(new QGraphicsScene(this))
    , d_background_item(new TPictureItem(Start_Image()))
{
    d_scene->addItem(d_background_item);
    setScene(d_scene);
    // By default, the view collects the area of each changed label separately, in quadratic time.
    setViewportUpdateMode(QGraphicsView::BoundingRectViewportUpdate);
    // By default, the scene chooses the depth for the number of items at the first look-up, when
    // there is only the page image.
    d_scene->setBspTreeDepth(index_depth);
    setDragMode(QGraphicsView::NoDrag);
    viewport()->setBackgroundRole(QPalette::Mid);
    d_background_item->setZValue(background_z);
    d_background_item->setTransformationMode(Qt::SmoothTransformation);
    Update_Label_Template();
}

void TDisplayWidget::Set_Background_Image(const QPixmap& pixmap)
{
    Show_Background(pixmap, TBackground::Page);
    Update_Scene_Rect();
}

void TDisplayWidget::Show_Start_Image()
{
    Show_Built_In_Image(Start_Image());
}

void TDisplayWidget::Show_Built_In_Image(const QPixmap& image)
{
    Show_Background(image, TBackground::Built_In);
    Update_Scene_Rect();
}

QPixmap TDisplayWidget::Background_Pixmap() const
{
    return d_background_item->pixmap();
}

void TDisplayWidget::Show_Page(const TPageItem& page)
{
    Set_Background_Image(QPixmap::fromImage(page.image));
    for (const TDataItem& item : page.data_items)
        Add_Item(item);
}

void TDisplayWidget::Update_Scene_Rect()
{
    d_scene->setSceneRect(d_scene->itemsBoundingRect());
}

void TDisplayWidget::Change_Scale(const double& scale_factor)
{
    resetTransform();
    scale(scale_factor, scale_factor);
}

void TDisplayWidget::Clear()
{
    Remove_Items();
    Show_Background(QPixmap(QStringLiteral(":/images/default.png")), TBackground::Built_In);
    Update_Scene_Rect();
}

void TDisplayWidget::Remove_Items()
{
    Release_Pressed_Item();
    d_items_by_id.clear();
    d_selected_items.clear();
    for (const QGraphicsPixmapItem* item : std::exchange(d_label_items, {}))
        delete item;
}

void TDisplayWidget::Remove_Item(int id)
{
    // Deleting an item also removes it from its scene.
    const std::unique_ptr<QGraphicsPixmapItem> item(d_items_by_id.take(id));
    if (!item)
        return;
    if (item.get() == d_pressed_item)
        Release_Pressed_Item();
    d_selected_items.remove(item.get());
    d_label_items.erase(std::find(d_label_items.cbegin(), d_label_items.cend(), item.get()));
}

QGraphicsPixmapItem* TDisplayWidget::Add_Item(int id, int value, const QString& text,
                                              int border_type)
{
    if (Item_Exists(id))
        return nullptr;
    const QPointF corner = Visible_Corner();
    // Set up the item before adding it: a scene processes every change of its items.
    auto label = std::make_unique<TDrawingItem>();
    label->setTransformationMode(Qt::SmoothTransformation);
    label->setPos(corner);
    label->setZValue(label_z);
    label->setData(Id_Key, id);
    label->setData(Value_Key, value);
    label->setData(Text_Key, text);
    label->setData(Centre_Key, corner + LabelPainter::Centre(Label_Style()));
    label->setData(Border_Key, border_type);
    label->setData(Selected_Key, 0);
    // Render_Item would read the data back from the item, which is slow.
    label->setPixmap(Render_Label(value, text, border_type, false));

    QGraphicsPixmapItem* item = label.release();
    d_scene->addItem(item);
    d_label_items.push_back(item);
    d_items_by_id.insert(id, item);
    return item;
}

void TDisplayWidget::Add_Item(const TDataItem& item)
{
    Add_Item(item.id, item.value, item.text, item.border_type);
    Move_Item(item.id, item.position);
}

bool TDisplayWidget::Item_Exists(int id) const
{
    return d_items_by_id.contains(id);
}

std::vector<int> TDisplayWidget::Items_In(const QRectF& scene_rect) const
{
    std::vector<int> ids;
    for (const QGraphicsPixmapItem* item : d_label_items) {
        if (scene_rect.contains(item->data(Centre_Key).toPointF()))
            ids.push_back(item->data(Id_Key).toInt());
    }
    return ids;
}

QPointF TDisplayWidget::Item_Position(int id) const
{
    const QGraphicsPixmapItem* item = d_items_by_id.value(id);
    return item ? item->data(Centre_Key).toPointF() : QPointF();
}

void TDisplayWidget::Move_Item(int id, const QPointF& centre)
{
    QGraphicsPixmapItem* item = d_items_by_id.value(id);
    if (!item)
        return;
    item->setPos(Corner(centre));
    item->setData(Centre_Key, centre);
    emit Update_Item_Position(id, centre);
}

void TDisplayWidget::Change_Item_Value(int id, int value)
{
    Change_Item(id, Value_Key, value);
}

void TDisplayWidget::Change_Item_Text(int id, const QString& text)
{
    Change_Item(id, Text_Key, text);
}

void TDisplayWidget::Change_Item_Border(int id, int border_type)
{
    Change_Item(id, Border_Key, border_type);
}

void TDisplayWidget::Set_Selected_Items(const std::vector<int>& ids, bool center)
{
    QSet<QGraphicsPixmapItem*> wanted;
    for (const int id : ids) {
        if (QGraphicsPixmapItem* const item = d_items_by_id.value(id))
            wanted.insert(item);
    }
    // Update only the labels that change: a click among ten thousand labels changes two.
    const QSet<QGraphicsPixmapItem*> before = std::exchange(d_selected_items, wanted);
    for (QGraphicsPixmapItem* item : before) {
        if (!wanted.contains(item))
            Select_Item(item, false);
    }
    for (QGraphicsPixmapItem* item : std::as_const(wanted)) {
        if (!before.contains(item))
            Select_Item(item, true);
    }
    if (center && d_track_item && !wanted.isEmpty())
        Scroll_To(*Last_Selected_Item());
}

void TDisplayWidget::Scroll_To(const QGraphicsPixmapItem& item)
{
    // The view scrolls only within the scene, which may have been smaller without this label.
    if (!sceneRect().contains(item.sceneBoundingRect()))
        Update_Scene_Rect();
    centerOn(item.data(Centre_Key).toPointF());
}

QPixmap TDisplayWidget::Pixmap()
{
    Update_Scene_Rect();
    const QRectF scene_rect = d_scene->sceneRect();
    // Labels from files can have any position, even an infinite one.
    if (!(scene_rect.width() * scene_rect.height() <= maximum_picture_pixels))
        return QPixmap();
    QPixmap pixmap(static_cast<int>(scene_rect.width()), static_cast<int>(scene_rect.height()));
    pixmap.fill(Qt::white);
    QPainter painter(&pixmap);
    d_scene->render(&painter, pixmap.rect(), scene_rect, Qt::KeepAspectRatio);
    return pixmap;
}

void TDisplayWidget::Set_Label_Size(const QSize& size, int font_size)
{
    d_label_width = size.width() + LabelPainter::Margin;
    d_label_height = size.height() + LabelPainter::Margin;
    d_font_size = font_size;
    Update_Label_Template();
    for (QGraphicsPixmapItem* item : std::as_const(d_label_items)) {
        item->setPixmap(Render_Item(*item));
        item->setPos(Corner(item->data(Centre_Key).toPointF()));
    }
}

QSize TDisplayWidget::Label_Size() const
{
    return QSize(d_label_width - LabelPainter::Margin, d_label_height - LabelPainter::Margin);
}

void TDisplayWidget::Set_Label_Color(const QColor& color)
{
    d_label_color = color;
    Draw_Labels_Again();
}

void TDisplayWidget::Set_Label_Halo(bool has_halo)
{
    d_has_label_halo = has_halo;
    Draw_Labels_Again();
}

QPixmap TDisplayWidget::Render_Pixmap(const QString& text, const int& border_type,
                                      bool selected) const
{
    return d_label_cache.Label(text, border_type, selected);
}

QPixmap TDisplayWidget::Render_Pixmap(int value, const int& border_type, bool selected) const
{
    return Render_Pixmap(QString::number(value), border_type, selected);
}

TLabelStyle TDisplayWidget::Label_Style() const
{
    return {d_label_width, d_label_height, d_font_size, d_label_color, d_has_label_halo};
}

void TDisplayWidget::Update_Label_Template()
{
    d_label_pixmap = LabelPainter::Template(Label_Style());
    d_label_cache.Set_Style(Label_Style(), d_label_pixmap);
}

void TDisplayWidget::Draw_Labels_Again()
{
    Update_Label_Template();
    for (QGraphicsPixmapItem* item : std::as_const(d_label_items))
        item->setPixmap(Render_Item(*item));
}

/// The top-left corner of a label that is centred on a point.
QPointF TDisplayWidget::Corner(const QPointF& centre) const
{
    return centre - LabelPainter::Centre(Label_Style());
}

/// The origin of the page or, if it is not visible, the scene point at the view's top-left pixel.
QPointF TDisplayWidget::Visible_Corner() const
{
    const QPoint origin = mapFromScene(QPointF(0.0, 0.0));
    return origin.x() < 0 || origin.y() < 0 ? mapToScene(QPoint(0, 0)) : QPointF();
}

/// Draws a label from the data in its item.
QPixmap TDisplayWidget::Render_Item(const QGraphicsPixmapItem& item) const
{
    return Render_Label(item.data(Value_Key).toInt(), item.data(Text_Key).toString(),
                        item.data(Border_Key).toInt(), item.data(Selected_Key).toInt() != 0);
}

/// Draws a label, with its value if it has no text.
QPixmap TDisplayWidget::Render_Label(int value, const QString& text, int border_type,
                                     bool selected) const
{
    return text.isEmpty() ? Render_Pixmap(value, border_type, selected)
                          : Render_Pixmap(text, border_type, selected);
}

void TDisplayWidget::Select_Item(QGraphicsPixmapItem* item, bool selected)
{
    item->setData(Selected_Key, selected ? 1 : 0);
    item->setPixmap(Render_Item(*item));
}

/// The selected label that was added last. At least one label must be selected.
const QGraphicsPixmapItem* TDisplayWidget::Last_Selected_Item() const
{
    if (d_selected_items.size() == 1)
        return *d_selected_items.cbegin();
    return *std::find_if(
        d_label_items.crbegin(), d_label_items.crend(),
        [this](QGraphicsPixmapItem* item) { return d_selected_items.contains(item); });
}

void TDisplayWidget::Change_Item(int id, TItemKey key, const QVariant& content)
{
    QGraphicsPixmapItem* item = d_items_by_id.value(id);
    if (!item)
        return;
    item->setData(key, content);
    item->setPixmap(Render_Item(*item));
}

void TDisplayWidget::Show_Background(const QPixmap& pixmap, TBackground kind)
{
    d_has_page_edge = kind == TBackground::Page && !pixmap.isNull();
    d_background_item->setPixmap(pixmap);
    d_background_item->setPos(0.0, 0.0);
}

void TDisplayWidget::drawBackground(QPainter* painter, const QRectF& exposed)
{
    QGraphicsView::drawBackground(painter, exposed);
    if (!d_has_page_edge)
        return;
    const QRect page =
        painter->worldTransform().mapRect(d_background_item->sceneBoundingRect()).toAlignedRect();
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(edge_opacity);
    painter->resetTransform();
    painter->fillRect(page.adjusted(-1, -1, 1, 1), edge);
    // Transparent pages are exported on white.
    painter->fillRect(page, Qt::white);
}

/// Prepares for the removal of the pressed label. The next mouse release must neither report it nor
/// count as a click on the page.
void TDisplayWidget::Release_Pressed_Item()
{
    if (!d_pressed_item)
        return;
    d_pressed_item = nullptr;
    d_item_moved = true;
}
