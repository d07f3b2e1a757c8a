#pragma once

#include "src/paint/labelcache.h"

#include <QColor>
#include <QGraphicsView>
#include <QHash>
#include <QPixmap>
#include <QPointF>
#include <QSet>
#include <QSize>
#include <QString>

#include <optional>
#include <vector>

class QGraphicsPixmapItem;
class QGraphicsScene;
struct TDataItem;
struct TPageItem;

/// The zoomable view of the active page: the page image with the labels on it.
///
/// The view stores the data of each label in its graphics item and does not use the model. Code
/// that changes the document updates both. Scene coordinates are pixels of the page image. Labels
/// are found by their id, which is unique on the page. Operations on an unknown id do nothing.
///
/// A left press clicks the label under the mouse, if there is one, and a drag moves it. A right
/// press is reported with its position. The view changes only its own items and emits signals for
/// the rest of the program.
class TDisplayWidget : public QGraphicsView
{
    Q_OBJECT

public:
    /// Keys of the data that a label's graphics item stores.
    enum TItemKey {
        Id_Key = 1,       ///< int
        Value_Key = 2,    ///< int, the number shown
        Text_Key = 4,     ///< QString, shown instead of the number when not empty
        Centre_Key = 8,   ///< QPointF, scene coordinates
        Border_Key = 16,  ///< int, see TBorderType
        Selected_Key = 17 ///< int, 0 or 1
    };

    /// Constructs a view without labels that shows the start-up image.
    explicit TDisplayWidget(const QWidget* parent);

    /// Sets the page image. Its top-left corner is the origin of the scene. Does not move labels.
    void Set_Background_Image(const QPixmap& pixmap);
    /// The page image, or the built-in image shown without one.
    QPixmap Background_Pixmap() const;
    /// Shows the built-in image of the program's start instead of a page.
    void Show_Start_Image();
    /// Shows an image that is not a page, which has no edge.
    void Show_Built_In_Image(const QPixmap& image);
    /// Shows a page's image and its labels, unselected. Does not remove the labels of another page.
    void Show_Page(const TPageItem& page);
    /// Fits the scene to the page image and all labels. Takes linear time, so adding or moving a
    /// label does not call it.
    void Update_Scene_Rect();
    /// Sets the zoom factor. 1.0 shows a pixel of the page image as a pixel of the screen.
    void Change_Scale(const double& scale);

    /// Removes all labels and shows the built-in image for a page without one.
    void Clear();
    /// Removes all labels, but not the page image.
    void Remove_Items();
    /// Removes a label; the others keep their order.
    void Remove_Item(int id);
    /// Adds an unselected label in the top-left corner of the visible part of the page.
    /// @param border_type  one of TBorderType.
    /// @return the label's graphics item, which the scene owns, or null when the id is taken.
    QGraphicsPixmapItem* Add_Item(int id, int value, const QString& text, int border_type);
    /// Adds an unselected label at its position. Emits Update_Item_Position.
    void Add_Item(const TDataItem& item);
    bool Item_Exists(int id) const;
    /// The id of the topmost label at a scene point; empty if there is none.
    std::optional<int> Item_At(const QPointF& scene_point) const;
    /// The ids of the labels whose centres are in a rectangle, in the order they were added.
    std::vector<int> Items_In(const QRectF& scene_rect) const;
    /// The centre of a label in scene coordinates; (0, 0) for an unknown id.
    QPointF Item_Position(int id) const;
    /// Centres a label on a scene point, possibly outside the page image. Emits
    /// Update_Item_Position.
    void Move_Item(int id, const QPointF& centre);
    void Change_Item_Value(int id, int value);
    void Change_Item_Text(int id, const QString& text);
    void Change_Item_Border(int id, int border_type);
    /// Selects only the labels with these ids.
    /// @param center  whether to scroll to the one that was added last. No effect unless
    ///                d_track_item is set.
    void Set_Selected_Items(const std::vector<int>& ids, bool center);

    /// Draws the page at its original size with its labels on white. Updates the scene rectangle,
    /// so that the picture contains labels beyond the edges of the page image. Returns a null
    /// pixmap if a label is so far away that the picture would have more than 2^30 pixels.
    QPixmap Pixmap();

    /// Sets the size of all labels. Their centres do not move.
    /// @param size       in page-image pixels.
    /// @param font_size  in points.
    void Set_Label_Size(const QSize& size, int font_size);
    /// The label size that was set last.
    QSize Label_Size() const;
    /// Sets the colour of all labels.
    void Set_Label_Color(const QColor& color);
    QColor Label_Color() const { return d_label_color; }
    /// Sets whether labels have a thin light outline, which they do not have at first.
    void Set_Label_Halo(bool has_halo);
    /// Draws a label as the view does.
    QPixmap Render_Pixmap(const QString& text, const int& border_type, bool selected) const;
    /// Draws a label that has no text and so shows its value.
    QPixmap Render_Pixmap(int value, const int& border_type, bool selected) const;

signals:
    /// The right button was pressed.
    void Right_Mouse_Click(const QPointF& scene_point);
    /// The user pressed a label with the left button; id is -1 for a click outside all labels.
    void Item_Clicked(int id);
    /// A label was moved to this centre, or was clicked without being moved.
    void Update_Item_Position(int id, const QPointF& centre);

protected:
    /// Draws an edge around the page. Exports are drawn without it.
    void drawBackground(QPainter* painter, const QRectF& exposed) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    TLabelStyle Label_Style() const;
    void Update_Label_Template();
    void Draw_Labels_Again();
    QPointF Corner(const QPointF& centre) const;
    QPointF Visible_Corner() const;
    QPixmap Render_Item(const QGraphicsPixmapItem& item) const;
    QPixmap Render_Label(int value, const QString& text, int border_type, bool selected) const;
    void Select_Item(QGraphicsPixmapItem* item, bool selected);
    const QGraphicsPixmapItem* Last_Selected_Item() const;
    void Scroll_To(const QGraphicsPixmapItem& item);
    void Change_Item(int id, TItemKey key, const QVariant& content);
    enum class TBackground { Page, Built_In };
    void Show_Background(const QPixmap& pixmap, TBackground kind);
    void Release_Pressed_Item();
    QPointF Scene_Point(const QMouseEvent& event) const;
    QGraphicsPixmapItem* Label_At(const QPointF& scene_point) const;
    void Press_Item(const QPointF& scene_point);
    void Drag_Item(const QPointF& scene_point);

    QGraphicsScene* d_scene;
    QGraphicsPixmapItem* d_background_item;        ///< the page image or a built-in one
    QGraphicsPixmapItem* d_pressed_item = nullptr; ///< label under the last left press, or null
    int d_label_width = TLabelStyle().width;       ///< of the pixmap, which includes a margin
    int d_label_height = TLabelStyle().height;
    int d_font_size = TLabelStyle().font_size; ///< in points
    QPixmap d_label_pixmap;
    std::vector<QGraphicsPixmapItem*> d_label_items; ///< in the order they were added
    bool d_item_moved = false;                       ///< a drag moved the pressed label
    Qt::MouseButtons d_mouse_buttons;                ///< held at the last press
    QPointF d_last_scene_point;                      ///< of the last press or drag
    QColor d_label_color = TLabelStyle().color;
    bool d_has_label_halo = false;

public:
    /// Whether selecting labels scrolls the view to them.
    bool d_track_item = false;

private:
    QHash<int, QGraphicsPixmapItem*> d_items_by_id; ///< the same labels as in d_label_items
    QSet<QGraphicsPixmapItem*> d_selected_items;
    bool d_has_page_edge = false; ///< a page is shown, and not a built-in image
    mutable TLabelCache d_label_cache;
};
