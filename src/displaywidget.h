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

#include <vector>

class QGraphicsPixmapItem;
class QGraphicsScene;
struct TPageItem;

/// The zoomable view of the active page: the page image with the labels on it.
///
/// The view keeps what it needs to know of each label in the label's graphics item and never asks
/// the model; whoever changes the document tells both. Scene coordinates are pixels of the page
/// image. Labels are found by their id, which is unique on the page. Operations on an unknown id do
/// nothing.
///
/// A left press picks the label under the mouse, or none, a drag moves it, and a right press is
/// reported for the place it was made at. The view moves only its own items; the signals tell the
/// rest of the program.
class TDisplayWidget : public QGraphicsView
{
    Q_OBJECT

public:
    /// Under which keys a label's graphics item stores what the label shows.
    enum TItemKey {
        Id_Key = 1,       ///< int
        Value_Key = 2,    ///< int, the number shown
        Text_Key = 4,     ///< QString, shown instead of the number when not empty
        Centre_Key = 8,   ///< QPointF, scene coordinates
        Border_Key = 16,  ///< int, see TBorderType
        Selected_Key = 17 ///< int, 0 or 1
    };

    /// A view without labels that shows the start-up image.
    explicit TDisplayWidget(const QWidget* parent);

    /// Shows another page image; its top-left corner is the origin of the scene. Labels stay.
    void Set_Background_Image(const QPixmap& pixmap);
    /// The page image, or the built-in image that stands in for it.
    QPixmap Background_Pixmap() const;
    /// Shows a page's image and its labels, unselected. Remove the labels of the page before first.
    void Show_Page(const TPageItem& page);
    /// Makes the scene as large as the page image and all labels together. Costs a walk over the
    /// labels, and is not done when a single one is added or moved.
    void Update_Scene_Rect();
    /// Zooms: 1.0 shows a pixel of the page image as a pixel of the screen.
    void Change_Scale(const double& scale);

    /// Removes every label and shows the image for a page without one.
    void Clear();
    /// Removes every label; the page image stays.
    void Remove_Items();
    /// Removes a label; the others keep their order.
    void Remove_Item(int id);
    /// Adds a label, unselected, in the top-left corner of what is in sight of the page.
    /// @param border_type  one of TBorderType.
    /// @return the label's graphics item, which the scene owns, or null when the id is taken.
    QGraphicsPixmapItem* Add_Item(int id, int value, const QString& text, int border_type);
    bool Item_Exists(int id) const;
    /// Centre of a label in scene coordinates, (0, 0) for an unknown id.
    QPointF Item_Position(int id) const;
    /// Centres a label on a scene point, which may lie outside of the page image, and reports it by
    /// Update_Item_Position.
    void Move_Item(int id, const QPointF& centre);
    void Change_Item_Value(int id, int value);
    void Change_Item_Text(int id, const QString& text);
    void Change_Item_Border(int id, int border_type);
    /// Selects the labels with these ids and unselects all others.
    /// @param center  scroll to the last of them, in the order in which labels were added, provided
    ///                that d_track_item allows it.
    void Set_Selected_Items(const std::vector<int>& ids, bool center);

    /// The whole page at its own size with the labels as they are shown, on white. Updates the
    /// scene rectangle, so that labels reaching past the page image are on it as a whole. Null when
    /// a label is so far away that the picture would have more than 2^30 pixels.
    QPixmap Pixmap();

    /// Changes the size of all labels; each stays centred where it is.
    /// @param size       of the labels in page-image pixels.
    /// @param font_size  in points.
    void Set_Label_Size(const QSize& size, int font_size);
    /// The label size as it was set.
    QSize Label_Size() const;
    /// Changes the colour of all labels.
    void Set_Label_Color(const QColor& color);
    QColor Label_Color() const { return d_label_color; }
    /// A label as the view draws it.
    QPixmap Render_Pixmap(const QString& text, const int& border_type, bool selected) const;
    /// The same for a label without a text, which shows its value.
    QPixmap Render_Pixmap(int value, const int& border_type, bool selected) const;

signals:
    /// The right button was pressed.
    void Right_Mouse_Click(const QPointF& scene_point);
    /// A label was pressed with the left button; id is -1 for a click on no label.
    void Item_Clicked(int id);
    /// A label got this centre, or was clicked and kept it.
    void Update_Item_Position(int id, const QPointF& centre);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    TLabelStyle Label_Style() const;
    void Update_Label_Template();
    QPointF Corner(const QPointF& centre) const;
    QPointF Visible_Corner() const;
    QPixmap Render_Item(const QGraphicsPixmapItem& item) const;
    QPixmap Render_Label(int value, const QString& text, int border_type, bool selected) const;
    void Select_Item(QGraphicsPixmapItem* item, bool selected);
    const QGraphicsPixmapItem* Last_Selected_Item() const;
    void Change_Item(int id, TItemKey key, const QVariant& content);
    void Show_Background(const QPixmap& pixmap);
    void Forget_Pressed_Item();
    QPointF Scene_Point(const QMouseEvent& event) const;
    void Press_Item(const QPointF& scene_point);
    void Drag_Item(const QPointF& scene_point);

    QGraphicsScene* d_scene;
    QGraphicsPixmapItem* d_background_item;        ///< the page image
    QGraphicsPixmapItem* d_pressed_item = nullptr; ///< label under the last left press, or null
    int d_label_width = 32;                        ///< of the pixmap, which includes a margin
    int d_label_height = 32;
    int d_font_size = 12; ///< in points
    QPixmap d_label_pixmap;
    std::vector<QGraphicsPixmapItem*> d_label_items; ///< in the order they were added
    bool d_item_moved = false;                       ///< a drag moved the pressed label
    Qt::MouseButtons d_mouse_buttons;                ///< held at the last press
    QPointF d_last_scene_point;                      ///< of the last press or drag step
    QColor d_label_color{250, 8, 50};

public:
    /// Whether the view scrolls to labels that get selected.
    bool d_track_item = false;

private:
    QHash<int, QGraphicsPixmapItem*> d_items_by_id; ///< the same labels as in d_label_items
    QSet<QGraphicsPixmapItem*> d_selected_items;
    mutable TLabelCache d_label_cache;
};
