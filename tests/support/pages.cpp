#include "support/pages.h"

#include "support/view.h"

#include "src/pagewidget.h"

#include <QGraphicsPixmapItem>
#include <QTest>

namespace Support {

int Add_Page(TOpenWindow* window, const QImage& image, const std::vector<TDataItem>& items)
{
    TData& data = window->d_data;
    const int page_id = image.isNull() ? data.Add_Page() : data.Add_Page(image);
    window->d_page_widget->Add_Page(page_id);
    const int active_page = data.Active_Page();
    data.Set_Active_Page(page_id);
    for (const TDataItem& item : items)
        data.Add_Item(item);
    data.Set_Active_Page(active_page);
    window->Update_Document_Actions();
    return page_id;
}

void Show_Page(TOpenWindow* window, int page_id)
{
    window->d_page_widget->Set_Active_Page(page_id);
    QCOMPARE(window->d_data.Active_Page(), page_id);
}

std::unique_ptr<TOpenWindow> New_Window(int label_size, const QColor& label_color)
{
    auto window = std::make_unique<TOpenWindow>();
    window->Label_Size_Changed(label_size);
    window->Color_Changed(label_color);
    window->show();
    window->Set_Changed(false);
    return window;
}

QStringList View_In_Words(const TOpenWindow& window)
{
    const TDisplayWidget& view = *window.d_display_widget;
    const QImage image = view.Background_Pixmap().toImage();
    // In each test, the first pixel identifies the page.
    QStringList words{QStringLiteral("%1 x %2, %3%4")
                          .arg(image.width())
                          .arg(image.height())
                          .arg(image.isNull() ? QString() : image.pixelColor(0, 0).name(),
                               view.updatesEnabled() ? "" : ", not painting")};
    for (const QGraphicsPixmapItem* label : Labels(view))
        words += QStringLiteral("%1: %2 \"%3\" border %4 at %5%6")
                     .arg(label->data(TDisplayWidget::Id_Key).toInt())
                     .arg(label->data(TDisplayWidget::Value_Key).toInt())
                     .arg(label->data(TDisplayWidget::Text_Key).toString())
                     .arg(label->data(TDisplayWidget::Border_Key).toInt())
                     .arg(Text(label->data(TDisplayWidget::Centre_Key).toPointF()),
                          label->data(TDisplayWidget::Selected_Key).toInt() ? ", selected" : "");
    return words;
}

} // namespace Support
