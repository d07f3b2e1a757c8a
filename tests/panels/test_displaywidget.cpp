// The page view: labels on a page, their selection and looks, zoom, and the finished picture.

#include "src/displaywidget.h"
#include "src/model/pageitem.h"

#include "support/support.h"
#include "support/view.h"

#include <QGraphicsScene>
#include <QMetaMethod>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QTest>

#include <limits>
#include <memory>

namespace {

const QString start_image = QStringLiteral(":/images/background_default.png");
const QString empty_image = QStringLiteral(":/images/default.png");

/// A page whose sides are longer than those of the view.
QPixmap Page(int width = 1000, int height = 800)
{
    return QPixmap::fromImage(Support::Picture(width, height));
}

QGraphicsPixmapItem* Background(const TDisplayWidget& view)
{
    const QList<QGraphicsItem*> items = view.scene()->items(Qt::AscendingOrder);
    return items.isEmpty() ? nullptr : dynamic_cast<QGraphicsPixmapItem*>(items.first());
}

QImage Painted(const TLabelStyle& style, const QString& text, int border_type, bool selected)
{
    QPixmap pixmap = LabelPainter::Template(style);
    LabelPainter::Paint(&pixmap, style, text, border_type, selected);
    return pixmap.toImage();
}

/// The expected data of a label in the view.
QString Label_State(const QGraphicsPixmapItem* label)
{
    return QStringLiteral("id %1, value %2, text '%3', centre %4, border %5, selected %6, at %7")
        .arg(label->data(1).toInt())
        .arg(label->data(2).toInt())
        .arg(label->data(4).toString(), Support::Text(label->data(8).toPointF()))
        .arg(label->data(16).toInt())
        .arg(label->data(17).toInt())
        .arg(Support::Text(label->pos()));
}

QList<int> Ids(const TDisplayWidget& view)
{
    QList<int> ids;
    for (const QGraphicsPixmapItem* label : Support::Labels(view))
        ids.append(label->data(1).toInt());
    return ids;
}

/// The cache keys of all label pixmaps, which may change when labels are drawn again.
QList<qint64> Pixmap_Keys(const TDisplayWidget& view)
{
    QList<qint64> keys;
    for (const QGraphicsPixmapItem* label : Support::Labels(view))
        keys.append(label->pixmap().cacheKey());
    return keys;
}

} // namespace

class TestDisplayWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void a_new_view_has_the_documented_defaults();
    void the_view_belongs_to_its_parent();
    void the_signals_are_declared_in_order();
    void the_background_image_is_shown_at_the_origin();
    void a_background_image_keeps_the_labels();
    void the_scene_rectangle_covers_all_items();
    void the_scene_rectangle_changes_only_when_it_is_updated();
    void scaling_starts_from_the_page_size_each_time();
    void clearing_removes_the_labels_and_shows_the_empty_image();
    void removing_the_items_keeps_the_background();
    void removing_an_item_keeps_the_order_of_the_others();
    void removing_an_unknown_item_does_nothing();
    void a_removed_id_can_be_used_again();
    void an_added_item_has_all_its_data();
    void an_added_item_shows_its_text_or_else_its_value();
    void an_id_that_is_shown_is_not_added_again();
    void labels_with_extreme_ids_are_distinct();
    void an_item_is_added_at_the_origin_if_that_is_visible();
    void an_item_is_added_in_the_visible_corner_of_a_scrolled_view_data();
    void an_item_is_added_in_the_visible_corner_of_a_scrolled_view();
    void the_centre_of_an_added_item_is_in_whole_pixels();
    void item_positions_are_looked_up_by_id();
    void moving_an_item_centres_and_reports_it();
    void moving_an_unknown_item_does_nothing();
    void every_move_is_reported();
    void changing_an_item_redraws_it_data();
    void changing_an_item_redraws_it();
    void changing_an_unknown_item_does_nothing();
    void selecting_redraws_only_what_changes();
    void selecting_sets_exactly_the_given_ids();
    void selecting_nothing_clears_every_selection();
    void a_selected_label_can_be_removed_before_others_are_selected();
    void selecting_scrolls_to_the_last_label_in_list_order();
    void selecting_scrolls_only_when_requested_and_tracking_data();
    void selecting_scrolls_only_when_requested_and_tracking();
    void selecting_scrolls_to_a_label_outside_of_the_page_data();
    void selecting_scrolls_to_a_label_outside_of_the_page();
    void selecting_unknown_ids_does_not_scroll();
    void the_label_size_is_five_less_than_the_pixmap();
    void changing_the_label_size_redraws_and_keeps_the_centres();
    void changing_the_label_color_redraws_without_moving();
    void a_rendered_label_has_the_pixels_of_the_painter();
    void a_rendered_value_is_its_plain_decimal();
    void labels_that_look_the_same_share_their_pixels();
    void the_page_is_rendered_with_its_labels();
    void the_rendered_page_covers_labels_past_the_edge();
    void the_rendered_page_is_cut_to_whole_pixels();
    void a_page_too_large_to_render_gives_no_picture_data();
    void a_page_too_large_to_render_gives_no_picture();
    void the_rendered_page_does_not_depend_on_the_zoom();
    void thousands_of_labels_keep_their_order_and_data();
    void the_page_has_an_edge_and_shaded_surroundings_data();
    void the_page_has_an_edge_and_shaded_surroundings();
    void a_transparent_page_is_shown_on_white();
    void a_built_in_image_has_no_edge();

private:
    std::unique_ptr<TDisplayWidget> d_view;
};

void TestDisplayWidget::init()
{
    d_view = std::make_unique<TDisplayWidget>(nullptr);
    d_view->setFrameShape(QFrame::NoFrame);
    d_view->resize(400, 300);
    d_view->show();
    // Small enough to be completely visible.
    d_view->Set_Background_Image(Page(100, 80));
}

void TestDisplayWidget::cleanup()
{
    d_view.reset();
}

void TestDisplayWidget::a_new_view_has_the_documented_defaults()
{
    const TDisplayWidget view(nullptr);
    QCOMPARE(view.dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(view.d_track_item, false);
    QCOMPARE(view.Label_Size(), QSize(27, 27));
    QCOMPARE(view.scene()->parent(), static_cast<const QObject*>(&view));
    QCOMPARE(view.scene()->items().size(), 1);
    const QGraphicsPixmapItem* background = Background(view);
    QVERIFY(background);
    QCOMPARE(background->pos(), QPointF(0, 0));
    QCOMPARE(background->zValue(), 0.0);
    QCOMPARE(background->transformationMode(), Qt::SmoothTransformation);
    QVERIFY(!QPixmap(start_image).isNull());
    QCOMPARE(Support::Difference(
                 view.Background_Pixmap().toImage(),
                 QImage(start_image).convertToFormat(view.Background_Pixmap().toImage().format())),
             QString());
    QCOMPARE(Support::Difference(
                 view.Render_Pixmap(QStringLiteral("1"), 1, false).toImage(),
                 Painted({32, 32, 12, QColor(250, 8, 50, 255)}, QStringLiteral("1"), 1, false)),
             QString());
}

void TestDisplayWidget::the_view_belongs_to_its_parent()
{
    auto parent = std::make_unique<QWidget>();
    const QWidget* const_parent = parent.get();
    const QPointer<TDisplayWidget> view(new TDisplayWidget(const_parent));
    QCOMPARE(view->parentWidget(), parent.get());
    parent.reset();
    QVERIFY(view.isNull());
}

void TestDisplayWidget::the_signals_are_declared_in_order()
{
    const QMetaObject& meta = TDisplayWidget::staticMetaObject;
    QStringList found;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            found.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    const QStringList expected{QStringLiteral("Right_Mouse_Click(QPointF)"),
                               QStringLiteral("Item_Clicked(int)"),
                               QStringLiteral("Update_Item_Position(int,QPointF)")};
    QCOMPARE(found, expected);
}

void TestDisplayWidget::the_background_image_is_shown_at_the_origin()
{
    const QPixmap page = Page(500, 700);
    d_view->Set_Background_Image(page);
    QCOMPARE(Support::Difference(d_view->Background_Pixmap().toImage(), page.toImage()), QString());
    QCOMPARE(Background(*d_view)->pos(), QPointF(0, 0));
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 500, 700));
    d_view->Set_Background_Image(Page(50, 20));
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 50, 20));
    QCOMPARE(d_view->scene()->items().size(), 1);
}

void TestDisplayWidget::a_background_image_keeps_the_labels()
{
    d_view->Set_Background_Image(Page());
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Move_Item(1, QPointF(990, 790));
    d_view->Set_Background_Image(Page(100, 100));
    QCOMPARE(Ids(*d_view), QList<int>{1});
    QCOMPARE(d_view->Item_Position(1), QPointF(990, 790));
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 990 + 16, 790 + 16));
}

void TestDisplayWidget::the_scene_rectangle_covers_all_items()
{
    d_view->Set_Background_Image(Page(100, 80));
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Add_Item(2, 2, QString(), 0);
    d_view->Move_Item(1, QPointF(-10, 40));
    d_view->Move_Item(2, QPointF(50, 200));
    d_view->Update_Scene_Rect();
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(QPointF(-26, 0), QPointF(100, 216)));
}

void TestDisplayWidget::the_scene_rectangle_changes_only_when_it_is_updated()
{
    d_view->Set_Background_Image(Page(100, 80));
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Move_Item(1, QPointF(500, 500));
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 100, 80));
    d_view->Update_Scene_Rect();
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 516, 516));
    d_view->Remove_Item(1);
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(0, 0, 516, 516));
}

void TestDisplayWidget::scaling_starts_from_the_page_size_each_time()
{
    d_view->Change_Scale(2.0);
    QCOMPARE(d_view->transform(), QTransform::fromScale(2.0, 2.0));
    d_view->Change_Scale(0.5);
    QCOMPARE(d_view->transform(), QTransform::fromScale(0.5, 0.5));
    d_view->rotate(30);
    d_view->Change_Scale(1.0);
    QCOMPARE(d_view->transform(), QTransform());
}

void TestDisplayWidget::clearing_removes_the_labels_and_shows_the_empty_image()
{
    QVERIFY(Support::Difference(QImage(empty_image), QImage(start_image)) != QString());
    d_view->Set_Background_Image(Page());
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Add_Item(2, 2, QString(), 0);
    d_view->Clear();
    QCOMPARE(d_view->scene()->items().size(), 1);
    QVERIFY(!d_view->Item_Exists(1));
    QVERIFY(!d_view->Item_Exists(2));
    const QPixmap empty(empty_image);
    QVERIFY(!empty.isNull());
    QCOMPARE(Support::Difference(d_view->Background_Pixmap().toImage(), empty.toImage()),
             QString());
    QCOMPARE(Background(*d_view)->pos(), QPointF(0, 0));
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(QPointF(0, 0), QSizeF(empty.size())));
    d_view->Clear();
    QCOMPARE(d_view->scene()->items().size(), 1);
}

void TestDisplayWidget::removing_the_items_keeps_the_background()
{
    d_view->Set_Background_Image(Page(100, 80));
    for (int id = 0; id < 5; ++id)
        d_view->Add_Item(id, id, QString(), 0);
    d_view->Remove_Items();
    QCOMPARE(Ids(*d_view), QList<int>());
    QCOMPARE(d_view->scene()->items().size(), 1);
    QVERIFY(!d_view->Item_Exists(3));
    QCOMPARE(Support::Difference(d_view->Background_Pixmap().toImage(), Page(100, 80).toImage()),
             QString());
}

void TestDisplayWidget::removing_an_item_keeps_the_order_of_the_others()
{
    for (const int id : {5, 3, 9, 1})
        d_view->Add_Item(id, id, QString(), 0);
    d_view->Remove_Item(3);
    const QList<int> without_3{5, 9, 1};
    QCOMPARE(Ids(*d_view), without_3);
    QVERIFY(!d_view->Item_Exists(3));
    d_view->Remove_Item(1);
    d_view->Remove_Item(5);
    QCOMPARE(Ids(*d_view), QList<int>{9});
    // The remaining label still scrolls into view, as the last of the list.
    d_view->d_track_item = true;
    d_view->Set_Selected_Items({9}, true);
    QCOMPARE(Support::Label(*d_view, 9)->data(17).toInt(), 1);
}

void TestDisplayWidget::removing_an_unknown_item_does_nothing()
{
    d_view->Remove_Item(1);
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Remove_Item(2);
    d_view->Remove_Item(-1);
    QCOMPARE(Ids(*d_view), QList<int>{1});
}

void TestDisplayWidget::a_removed_id_can_be_used_again()
{
    d_view->Add_Item(1, 10, QString(), 0);
    d_view->Add_Item(2, 20, QString(), 0);
    d_view->Remove_Item(1);
    QVERIFY(d_view->Add_Item(1, 11, QString(), 0));
    const QList<int> expected{2, 1};
    QCOMPARE(Ids(*d_view), expected);
    d_view->Clear();
    QVERIFY(d_view->Add_Item(2, 21, QString(), 0));
    QCOMPARE(Ids(*d_view), QList<int>{2});
}

void TestDisplayWidget::an_added_item_has_all_its_data()
{
    d_view->Set_Background_Image(Page());
    const QGraphicsPixmapItem* item = d_view->Add_Item(77, -3, QStringLiteral("wall"), 8);
    QVERIFY(item);
    QCOMPARE(item, Support::Label(*d_view, 77));
    QCOMPARE(item->data(1), QVariant(77));
    QCOMPARE(item->data(2), QVariant(-3));
    QCOMPARE(item->data(4), QVariant(QStringLiteral("wall")));
    QCOMPARE(item->data(8), QVariant(QPointF(16, 16)));
    QCOMPARE(item->data(16), QVariant(8));
    QCOMPARE(item->data(17), QVariant(0));
    QCOMPARE(item->data(17).userType(), static_cast<int>(QMetaType::Int));
    QCOMPARE(item->pos(), QPointF(0, 0));
    QCOMPARE(item->zValue(), 1.0);
    QCOMPARE(item->transformationMode(), Qt::SmoothTransformation);
    QCOMPARE(item->scene(), d_view->scene());
    QVERIFY(!item->parentItem());
}

void TestDisplayWidget::an_added_item_shows_its_text_or_else_its_value()
{
    const TLabelStyle style;
    const QGraphicsPixmapItem* with_text = d_view->Add_Item(1, 12, QStringLiteral("ab"), 1);
    QCOMPARE(Support::Difference(with_text->pixmap().toImage(),
                                 Painted(style, QStringLiteral("ab"), 1, false)),
             QString());
    const QGraphicsPixmapItem* without = d_view->Add_Item(2, 12, QString(), 4);
    QCOMPARE(Support::Difference(without->pixmap().toImage(),
                                 Painted(style, QStringLiteral("12"), 4, false)),
             QString());
}

void TestDisplayWidget::an_id_that_is_shown_is_not_added_again()
{
    d_view->Add_Item(1, 10, QStringLiteral("a"), 1);
    const QString state = Label_State(Support::Label(*d_view, 1));
    QVERIFY(!d_view->Add_Item(1, 11, QStringLiteral("b"), 2));
    QCOMPARE(d_view->scene()->items().size(), 2);
    QCOMPARE(Label_State(Support::Label(*d_view, 1)), state);
}

void TestDisplayWidget::labels_with_extreme_ids_are_distinct()
{
    const int largest = std::numeric_limits<int>::max();
    const int smallest = std::numeric_limits<int>::min();
    for (const int id : {0, -1, largest, smallest})
        QVERIFY(d_view->Add_Item(id, 1, QString(), 0));
    for (const int id : {0, -1, largest, smallest})
        QVERIFY(d_view->Item_Exists(id));
    QVERIFY(!d_view->Item_Exists(1));
    d_view->Move_Item(smallest, QPointF(1, 2));
    QCOMPARE(d_view->Item_Position(smallest), QPointF(1, 2));
    QCOMPARE(d_view->Item_Position(largest), QPointF(16, 16));
}

void TestDisplayWidget::an_item_is_added_at_the_origin_if_that_is_visible()
{
    // A page smaller than the view is centred, so the origin is visible.
    d_view->Set_Background_Image(Page(100, 80));
    QCOMPARE(d_view->Add_Item(1, 1, QString(), 0)->pos(), QPointF(0, 0));
    d_view->Set_Background_Image(Page());
    d_view->horizontalScrollBar()->setValue(0);
    d_view->verticalScrollBar()->setValue(0);
    QCOMPARE(d_view->Add_Item(2, 1, QString(), 0)->pos(), QPointF(0, 0));
    QCOMPARE(d_view->Item_Position(2), QPointF(16, 16));
}

void TestDisplayWidget::an_item_is_added_in_the_visible_corner_of_a_scrolled_view_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("down");
    QTest::addColumn<QPointF>("corner");

    QTest::newRow("to the right") << 1.0 << 120 << 0 << QPointF(120, 0);
    QTest::newRow("down") << 1.0 << 0 << 45 << QPointF(0, 45);
    QTest::newRow("by a pixel") << 1.0 << 1 << 0 << QPointF(1, 0);
    QTest::newRow("both ways") << 1.0 << 200 << 300 << QPointF(200, 300);
    QTest::newRow("enlarged") << 2.0 << 301 << 40 << QPointF(150.5, 20);
    QTest::newRow("reduced") << 0.5 << 30 << 7 << QPointF(60, 14);
}

void TestDisplayWidget::an_item_is_added_in_the_visible_corner_of_a_scrolled_view()
{
    QFETCH(double, scale);
    QFETCH(int, right);
    QFETCH(int, down);
    QFETCH(QPointF, corner);
    d_view->Set_Background_Image(Page());
    d_view->Change_Scale(scale);
    d_view->horizontalScrollBar()->setValue(right);
    d_view->verticalScrollBar()->setValue(down);
    const QGraphicsPixmapItem* item = d_view->Add_Item(1, 1, QString(), 0);
    QCOMPARE(item->pos(), corner);
    QCOMPARE(item->data(8).toPointF(), corner + QPointF(16, 16));
}

void TestDisplayWidget::the_centre_of_an_added_item_is_in_whole_pixels()
{
    d_view->Set_Label_Size(QSize(40, 30), 12);
    d_view->Add_Item(1, 1, QString(), 0);
    QCOMPARE(d_view->Item_Position(1), QPointF(22, 17));
}

void TestDisplayWidget::item_positions_are_looked_up_by_id()
{
    d_view->Add_Item(4, 1, QString(), 0);
    d_view->Move_Item(4, QPointF(30.25, -12.5));
    QCOMPARE(d_view->Item_Position(4), QPointF(30.25, -12.5));
    QCOMPARE(d_view->Item_Position(5), QPointF(0, 0));
    QVERIFY(d_view->Item_Exists(4));
    QVERIFY(!d_view->Item_Exists(5));
}

void TestDisplayWidget::moving_an_item_centres_and_reports_it()
{
    d_view->Set_Label_Size(QSize(40, 40), 16);
    d_view->Add_Item(6, 1, QString(), 0);
    Support::TSignalLog log(*d_view);
    d_view->Move_Item(6, QPointF(100, 100));
    QCOMPARE(Support::Label(*d_view, 6)->pos(), QPointF(78, 78));
    QCOMPARE(Support::Label(*d_view, 6)->data(8).toPointF(), QPointF(100, 100));
    QCOMPARE(log.Take(), QStringList{QStringLiteral("6 is at 100,100")});
}

void TestDisplayWidget::moving_an_unknown_item_does_nothing()
{
    d_view->Add_Item(6, 1, QString(), 0);
    Support::TSignalLog log(*d_view);
    d_view->Move_Item(7, QPointF(100, 100));
    QCOMPARE(log.Take(), QStringList());
    QCOMPARE(d_view->Item_Position(6), QPointF(16, 16));
}

void TestDisplayWidget::every_move_is_reported()
{
    d_view->Add_Item(6, 1, QString(), 0);
    Support::TSignalLog log(*d_view);
    d_view->Move_Item(6, QPointF(5, 5));
    d_view->Move_Item(6, QPointF(5, 5));
    const QStringList expected{QStringLiteral("6 is at 5,5"), QStringLiteral("6 is at 5,5")};
    QCOMPARE(log.Take(), expected);
}

void TestDisplayWidget::changing_an_item_redraws_it_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("border_type");

    QTest::newRow("value")
        << "value"
        << "id 2, value 99, text '', centre 50,60, border 1, selected 1, at 34,44"
        << "99" << 1;
    QTest::newRow("text")
        << "text"
        << "id 2, value 20, text 'hut', centre 50,60, border 1, selected 1, at 34,44"
        << "hut" << 1;
    QTest::newRow("border")
        << "border"
        << "id 2, value 20, text '', centre 50,60, border 8, selected 1, at 34,44"
        << "20" << 8;
    QTest::newRow("value under a text")
        << "text, value"
        << "id 2, value 99, text 'hut', centre 50,60, border 1, selected 1, at 34,44"
        << "hut" << 1;
    QTest::newRow("text to empty")
        << "text, no text"
        << "id 2, value 20, text '', centre 50,60, border 1, selected 1, at 34,44"
        << "20" << 1;
}

void TestDisplayWidget::changing_an_item_redraws_it()
{
    QFETCH(QString, change);
    QFETCH(QString, state);
    QFETCH(QString, shown);
    QFETCH(int, border_type);
    d_view->Add_Item(1, 10, QString(), 1);
    d_view->Add_Item(2, 20, QString(), 1);
    d_view->Move_Item(2, QPointF(50, 60));
    d_view->Set_Selected_Items({2}, false);
    const QString other = Label_State(Support::Label(*d_view, 1));
    const qint64 other_pixmap = Support::Label(*d_view, 1)->pixmap().cacheKey();
    Support::TSignalLog log(*d_view);
    for (const QString& part : change.split(QStringLiteral(", "))) {
        if (part == QLatin1String("value"))
            d_view->Change_Item_Value(2, 99);
        else if (part == QLatin1String("text"))
            d_view->Change_Item_Text(2, QStringLiteral("hut"));
        else if (part == QLatin1String("no text"))
            d_view->Change_Item_Text(2, QString());
        else
            d_view->Change_Item_Border(2, 8);
    }
    QCOMPARE(Label_State(Support::Label(*d_view, 2)), state);
    QCOMPARE(Support::Difference(Support::Label(*d_view, 2)->pixmap().toImage(),
                                 Painted(TLabelStyle(), shown, border_type, true)),
             QString());
    QCOMPARE(Label_State(Support::Label(*d_view, 1)), other);
    QCOMPARE(Support::Label(*d_view, 1)->pixmap().cacheKey(), other_pixmap);
    QCOMPARE(log.Take(), QStringList());
}

void TestDisplayWidget::changing_an_unknown_item_does_nothing()
{
    d_view->Add_Item(1, 10, QString(), 1);
    const QString state = Label_State(Support::Label(*d_view, 1));
    d_view->Change_Item_Value(2, 1);
    d_view->Change_Item_Text(2, QStringLiteral("x"));
    d_view->Change_Item_Border(2, 4);
    QCOMPARE(Label_State(Support::Label(*d_view, 1)), state);
    QCOMPARE(d_view->scene()->items().size(), 2);
}

void TestDisplayWidget::selecting_redraws_only_what_changes()
{
    for (int id = 0; id < 4; ++id)
        d_view->Add_Item(id, id, QString(), 2);
    d_view->Set_Selected_Items({1, 2}, false);
    // Marks that only drawing the label again can remove.
    const QPixmap mark = Page(3, 3);
    for (QGraphicsPixmapItem* label : Support::Labels(*d_view))
        label->setPixmap(mark);
    const QList<qint64> marked = Pixmap_Keys(*d_view);
    QCOMPARE(marked.count(mark.cacheKey()), 4);
    d_view->Set_Selected_Items({1, 2}, false);
    QCOMPARE(Pixmap_Keys(*d_view), marked);
    d_view->Set_Selected_Items({2, 1, 2}, false);
    QCOMPARE(Pixmap_Keys(*d_view), marked);
    d_view->Set_Selected_Items({2, 3}, false);
    const QList<qint64> keys = Pixmap_Keys(*d_view);
    QCOMPARE(keys[0], mark.cacheKey());
    QVERIFY(keys[1] != mark.cacheKey());
    QCOMPARE(keys[2], mark.cacheKey());
    QVERIFY(keys[3] != mark.cacheKey());
}

void TestDisplayWidget::selecting_sets_exactly_the_given_ids()
{
    for (int id = 0; id < 4; ++id)
        d_view->Add_Item(id, id + 10, id == 2 ? QStringLiteral("two") : QString(), 2);
    d_view->Set_Selected_Items({0, 1}, false);
    d_view->Set_Selected_Items({2, 1, 99}, false);
    for (int id = 0; id < 4; ++id) {
        const bool selected = id == 1 || id == 2;
        const QGraphicsPixmapItem* label = Support::Label(*d_view, id);
        QCOMPARE(label->data(17), QVariant(selected ? 1 : 0));
        const QString shown = id == 2 ? QStringLiteral("two") : QString::number(id + 10);
        QCOMPARE(Support::Difference(label->pixmap().toImage(),
                                     Painted(TLabelStyle(), shown, 2, selected)),
                 QString());
    }
}

void TestDisplayWidget::selecting_nothing_clears_every_selection()
{
    for (int id = 0; id < 3; ++id)
        d_view->Add_Item(id, id, QString(), 2);
    d_view->Set_Selected_Items({0, 1, 2}, false);
    d_view->Set_Selected_Items({}, true);
    for (const QGraphicsPixmapItem* label : Support::Labels(*d_view)) {
        QCOMPARE(label->data(17).toInt(), 0);
        QCOMPARE(Support::Difference(label->pixmap().toImage(),
                                     Painted(TLabelStyle(), label->data(2).toString(), 2, false)),
                 QString());
    }
}

void TestDisplayWidget::a_selected_label_can_be_removed_before_others_are_selected()
{
    for (int id = 0; id < 3; ++id)
        d_view->Add_Item(id, id, QString(), 2);
    d_view->Set_Selected_Items({0, 1}, false);
    d_view->Remove_Item(1);
    d_view->Set_Selected_Items({2}, true);
    QCOMPARE(Support::Label(*d_view, 0)->data(17).toInt(), 0);
    QCOMPARE(Support::Label(*d_view, 2)->data(17).toInt(), 1);

    d_view->Remove_Items();
    d_view->Add_Item(2, 2, QString(), 2);
    d_view->Set_Selected_Items({2}, false);
    QCOMPARE(Support::Label(*d_view, 2)->data(17).toInt(), 1);
    d_view->Set_Selected_Items({}, false);
    QCOMPARE(Support::Label(*d_view, 2)->data(17).toInt(), 0);
}

void TestDisplayWidget::selecting_scrolls_to_the_last_label_in_list_order()
{
    d_view->Set_Background_Image(Page(2000, 1500));
    d_view->d_track_item = true;
    d_view->Add_Item(8, 1, QString(), 0);
    d_view->Add_Item(4, 1, QString(), 0);
    d_view->Move_Item(8, QPointF(300, 400));
    d_view->Move_Item(4, QPointF(1200, 900));
    d_view->Set_Selected_Items({4, 8}, true);
    // The view is centred on the point.
    const QSize port = d_view->viewport()->size();
    QCOMPARE(d_view->horizontalScrollBar()->value(), 1200 - port.width() / 2);
    QCOMPARE(d_view->verticalScrollBar()->value(), 900 - port.height() / 2);
    // It is already selected, but the view still scrolls to it.
    d_view->Set_Selected_Items({8}, true);
    QCOMPARE(d_view->horizontalScrollBar()->value(), 300 - port.width() / 2);
    QCOMPARE(d_view->verticalScrollBar()->value(), 400 - port.height() / 2);
}

void TestDisplayWidget::selecting_scrolls_only_when_requested_and_tracking_data()
{
    QTest::addColumn<bool>("center");
    QTest::addColumn<bool>("track");
    QTest::newRow("neither") << false << false;
    QTest::newRow("requested") << true << false;
    QTest::newRow("tracking") << false << true;
    QTest::newRow("both") << true << true;
}

void TestDisplayWidget::selecting_scrolls_only_when_requested_and_tracking()
{
    QFETCH(bool, center);
    QFETCH(bool, track);
    d_view->Set_Background_Image(Page(2000, 1500));
    d_view->horizontalScrollBar()->setValue(10);
    d_view->verticalScrollBar()->setValue(20);
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Move_Item(1, QPointF(1200, 900));
    d_view->d_track_item = track;
    d_view->Set_Selected_Items({1}, center);
    const bool scrolled =
        d_view->horizontalScrollBar()->value() != 10 || d_view->verticalScrollBar()->value() != 20;
    QCOMPARE(scrolled, center && track);
    QCOMPARE(Support::Label(*d_view, 1)->data(17).toInt(), 1);
}

void TestDisplayWidget::selecting_scrolls_to_a_label_outside_of_the_page_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::newRow("on the right") << QPointF(9040, 40);
    QTest::newRow("on the left") << QPointF(-300, 40);
    QTest::newRow("above") << QPointF(50, -19);
    QTest::newRow("below") << QPointF(50, 4000);
}

void TestDisplayWidget::selecting_scrolls_to_a_label_outside_of_the_page()
{
    QFETCH(QPointF, centre);
    d_view->resize(300, 200);
    TPageItem page;
    page.image = Page(1000, 800).toImage();
    page.data_items = {{1, 1, QString(), 1, centre, false}};
    d_view->d_track_item = true;
    d_view->Show_Page(page);
    d_view->Set_Selected_Items({1}, true);
    const QRect label =
        d_view->mapFromScene(Support::Label(*d_view, 1)->sceneBoundingRect()).boundingRect();
    QVERIFY(d_view->viewport()->rect().contains(label));
}

void TestDisplayWidget::selecting_unknown_ids_does_not_scroll()
{
    d_view->Set_Background_Image(Page(2000, 1500));
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Move_Item(1, QPointF(1200, 900));
    d_view->horizontalScrollBar()->setValue(10);
    d_view->d_track_item = true;
    d_view->Set_Selected_Items({2}, true);
    QCOMPARE(d_view->horizontalScrollBar()->value(), 10);
}

void TestDisplayWidget::the_label_size_is_five_less_than_the_pixmap()
{
    d_view->Set_Label_Size(QSize(60, 30), 12);
    QCOMPARE(d_view->Label_Size(), QSize(60, 30));
    QCOMPARE(d_view->Render_Pixmap(1, 0, false).size(), QSize(65, 35));
}

void TestDisplayWidget::changing_the_label_size_redraws_and_keeps_the_centres()
{
    d_view->Add_Item(1, 10, QString(), 1);
    d_view->Add_Item(2, 20, QStringLiteral("two"), 8);
    d_view->Move_Item(1, QPointF(100, 100));
    d_view->Move_Item(2, QPointF(20.5, -3.25));
    d_view->Set_Selected_Items({2}, false);
    Support::TSignalLog log(*d_view);
    d_view->Set_Label_Size(QSize(40, 30), 16);
    QCOMPARE(
        Label_State(Support::Label(*d_view, 1)),
        QStringLiteral("id 1, value 10, text '', centre 100,100, border 1, selected 0, at 78,83"));
    QCOMPARE(Label_State(Support::Label(*d_view, 2)),
             QStringLiteral("id 2, value 20, text 'two', centre 20.5,-3.25, border 8, selected 1, "
                            "at -1.5,-20.25"));
    const TLabelStyle style{45, 35, 16, QColor(250, 8, 50)};
    QCOMPARE(Support::Difference(Support::Label(*d_view, 1)->pixmap().toImage(),
                                 Painted(style, QStringLiteral("10"), 1, false)),
             QString());
    QCOMPARE(Support::Difference(Support::Label(*d_view, 2)->pixmap().toImage(),
                                 Painted(style, QStringLiteral("two"), 8, true)),
             QString());
    QCOMPARE(log.Take(), QStringList());
}

void TestDisplayWidget::changing_the_label_color_redraws_without_moving()
{
    d_view->Set_Label_Size(QSize(40, 40), 16);
    QGraphicsPixmapItem* item = d_view->Add_Item(1, 10, QString(), 1);
    d_view->Move_Item(1, QPointF(100, 100));
    item->setPos(3, 4);
    d_view->Set_Selected_Items({1}, false);
    d_view->Set_Label_Color(QColor(0, 120, 0));
    const TLabelStyle style{45, 45, 16, QColor(0, 120, 0)};
    QCOMPARE(Support::Difference(item->pixmap().toImage(),
                                 Painted(style, QStringLiteral("10"), 1, true)),
             QString());
    QCOMPARE(item->pos(), QPointF(3, 4));
    QCOMPARE(item->data(8).toPointF(), QPointF(100, 100));
    QCOMPARE(d_view->Label_Size(), QSize(40, 40));
}

void TestDisplayWidget::a_rendered_label_has_the_pixels_of_the_painter()
{
    d_view->Set_Label_Size(QSize(60, 30), 20);
    d_view->Set_Label_Color(QColor(1, 2, 3));
    const TLabelStyle style{65, 35, 20, QColor(1, 2, 3)};
    for (const int border_type : {0, 1, 2, 3, 4, 8}) {
        for (const bool selected : {false, true}) {
            const QString text = QStringLiteral("north");
            QCOMPARE(
                Support::Difference(d_view->Render_Pixmap(text, border_type, selected).toImage(),
                                    Painted(style, text, border_type, selected)),
                QString());
        }
    }
    QCOMPARE(Support::Difference(d_view->Render_Pixmap(QString(), 2, false).toImage(),
                                 Painted(style, QString(), 2, false)),
             QString());
}

void TestDisplayWidget::a_rendered_value_is_its_plain_decimal()
{
    for (const int value : {0, 7, -12, 1234, std::numeric_limits<int>::min()})
        QCOMPARE(Support::Difference(d_view->Render_Pixmap(value, 2, true).toImage(),
                                     Painted(TLabelStyle(), QString::number(value), 2, true)),
                 QString());
}

void TestDisplayWidget::labels_that_look_the_same_share_their_pixels()
{
    d_view->Add_Item(1, 5, QString(), 1);
    d_view->Add_Item(2, 5, QString(), 1);
    d_view->Add_Item(3, 6, QStringLiteral("5"), 1);
    d_view->Add_Item(4, 6, QString(), 1);
    const QList<qint64> keys = Pixmap_Keys(*d_view);
    QCOMPARE(keys[1], keys[0]);
    QCOMPARE(keys[2], keys[0]);
    QVERIFY(keys[3] != keys[0]);
}

void TestDisplayWidget::the_page_is_rendered_with_its_labels()
{
    const QPixmap page = Page(200, 150);
    d_view->Set_Background_Image(page);
    d_view->Set_Label_Size(QSize(40, 40), 16);
    d_view->Add_Item(1, 10, QString(), 1);
    d_view->Add_Item(2, 20, QString(), 2);
    d_view->Move_Item(1, QPointF(60, 70));
    d_view->Move_Item(2, QPointF(80, 75));
    d_view->Set_Selected_Items({2}, false);
    const TLabelStyle style{45, 45, 16, QColor(250, 8, 50)};
    QImage expected = page.toImage();
    QPainter painter(&expected);
    painter.drawImage(60 - 22, 70 - 22, Painted(style, QStringLiteral("10"), 1, false));
    painter.drawImage(80 - 22, 75 - 22, Painted(style, QStringLiteral("20"), 2, true));
    painter.end();
    QCOMPARE(Support::Difference(d_view->Pixmap().toImage(), expected), QString());
}

void TestDisplayWidget::the_rendered_page_covers_labels_past_the_edge()
{
    const QPixmap page = Page(100, 80);
    d_view->Set_Background_Image(page);
    d_view->Add_Item(1, 1, QString(), 1);
    d_view->Move_Item(1, QPointF(-4, 90));
    const QImage picture = d_view->Pixmap().toImage();
    // The label reaches from (-20, 74) to (12, 106).
    QImage expected(120, 106, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.drawPixmap(20, 0, page);
    painter.drawImage(0, 74, Painted(TLabelStyle(), QStringLiteral("1"), 1, false));
    painter.end();
    QCOMPARE(Support::Difference(picture, expected), QString());
    QCOMPARE(d_view->scene()->sceneRect(), QRectF(-20, 0, 120, 106));
}

void TestDisplayWidget::the_rendered_page_is_cut_to_whole_pixels()
{
    d_view->Set_Background_Image(Page(100, 80));
    d_view->Add_Item(1, 1, QString(), 1);
    d_view->Move_Item(1, QPointF(100.75, 70.9));
    QCOMPARE(d_view->Pixmap().size(), QSize(116, 86));
}

void TestDisplayWidget::a_page_too_large_to_render_gives_no_picture_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::newRow("far away") << QPointF(1e5, 1e5);
    QTest::newRow("beyond the range of integers") << QPointF(-1e300, 20);
    QTest::newRow("infinitely far away") << QPointF(20, qInf());
    QTest::newRow("not a number") << QPointF(qQNaN(), qQNaN());
}

void TestDisplayWidget::a_page_too_large_to_render_gives_no_picture()
{
    QFETCH(QPointF, centre);
    d_view->Set_Background_Image(QPixmap::fromImage(Support::Picture(60, 40)));
    d_view->Add_Item(1, 1, QString(), 0);
    d_view->Move_Item(1, centre);
    QVERIFY(d_view->Pixmap().isNull());
    d_view->Move_Item(1, QPointF(20, 20));
    QCOMPARE(d_view->Pixmap().size(), QSize(60, 40));
}

void TestDisplayWidget::the_rendered_page_does_not_depend_on_the_zoom()
{
    d_view->Set_Background_Image(Page());
    d_view->Add_Item(1, 1, QString(), 1);
    const QImage expected = d_view->Pixmap().toImage();
    d_view->Change_Scale(3.0);
    d_view->horizontalScrollBar()->setValue(500);
    QCOMPARE(Support::Difference(d_view->Pixmap().toImage(), expected), QString());
}

void TestDisplayWidget::thousands_of_labels_keep_their_order_and_data()
{
    const int count = 3000;
    d_view->Set_Background_Image(Page());
    QList<int> expected;
    for (int i = 0; i < count; ++i) {
        const int id = (i * 7919) % 100003;
        d_view->Add_Item(id, i, QString(), 2);
        d_view->Move_Item(id, QPointF(i % 1000, i / 4.0));
        if (i % 3 != 0)
            expected.append(id);
    }
    for (int i = 0; i < count; i += 3)
        d_view->Remove_Item((i * 7919) % 100003);
    QCOMPARE(Ids(*d_view), expected);
    d_view->Set_Selected_Items(std::vector<int>(expected.cbegin(), expected.cend()), true);
    for (int i = 0; i < count; ++i) {
        const int id = (i * 7919) % 100003;
        QCOMPARE(d_view->Item_Exists(id), i % 3 != 0);
        if (i % 3 != 0)
            QCOMPARE(d_view->Item_Position(id), QPointF(i % 1000, i / 4.0));
    }
    d_view->Clear();
    QCOMPARE(d_view->scene()->items().size(), 1);
}

void TestDisplayWidget::the_page_has_an_edge_and_shaded_surroundings_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("shade");
    QTest::newRow("light theme") << QColor(0, 0, 0) << QColor(184, 184, 184);
    QTest::newRow("dark theme") << QColor(230, 230, 230) << QColor(30, 30, 32);
}

void TestDisplayWidget::the_page_has_an_edge_and_shaded_surroundings()
{
    QFETCH(QColor, text);
    QFETCH(QColor, shade);
    QPalette theme = d_view->palette();
    theme.setColor(QPalette::WindowText, text);
    theme.setColor(QPalette::Mid, shade);
    d_view->setPalette(theme);
    const QPixmap page = Page(100, 80);
    d_view->Set_Background_Image(page);
    const QImage shown = d_view->viewport()->grab().toImage();
    const QPoint corner = d_view->mapFromScene(0, 0);
    QCOMPARE(Support::Difference(shown.copy(QRect(corner, QSize(100, 80))), page.toImage()),
             QString());
    const QRect around = QRect(corner, QSize(100, 80)).adjusted(-1, -1, 1, 1);
    const QColor edge = shown.pixelColor(around.topLeft());
    QVERIFY(qAbs(edge.red() - (text.red() + shade.red()) / 2) <= 2);
    for (const QPoint& point : {around.topRight(), around.bottomLeft(), around.bottomRight(),
                                around.center() - QPoint(around.width() / 2 - 1, 0)})
        QCOMPARE(shown.pixelColor(point), edge);
    QCOMPARE(shown.pixelColor(around.topLeft() - QPoint(1, 1)), shade);
    QCOMPARE(shown.pixelColor(around.bottomRight() + QPoint(1, 1)), shade);
    QCOMPARE(Support::Difference(d_view->Pixmap().toImage(), page.toImage()), QString());
}

void TestDisplayWidget::a_transparent_page_is_shown_on_white()
{
    QImage page(60, 40, QImage::Format_ARGB32);
    page.fill(Qt::transparent);
    d_view->Set_Background_Image(QPixmap::fromImage(page));
    QImage white(60, 40, QImage::Format_RGB32);
    white.fill(Qt::white);
    const QRect area(d_view->mapFromScene(0, 0), QSize(60, 40));
    QCOMPARE(Support::Difference(d_view->viewport()->grab(area).toImage(), white), QString());
    QCOMPARE(Support::Difference(d_view->Pixmap().toImage(), white), QString());
}

void TestDisplayWidget::a_built_in_image_has_no_edge()
{
    const auto beside_the_image = [this] {
        const QPoint corner = d_view->mapFromScene(0, 0);
        return d_view->viewport()->grab().toImage().pixel(corner + QPoint(-1, 50));
    };
    const QRgb shade = d_view->palette().color(QPalette::Mid).rgb();
    QVERIFY(beside_the_image() != shade);
    d_view->Show_Start_Image();
    QCOMPARE(beside_the_image(), shade);
    d_view->Set_Background_Image(Page(100, 80));
    d_view->Clear();
    QCOMPARE(beside_the_image(), shade);
}

QTEST_MAIN(TestDisplayWidget)
#include "test_displaywidget.moc"
