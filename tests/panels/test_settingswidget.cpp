// The panel with the settings.

#include "src/settingswidget.h"

#include "support/support.h"
#include "support/widgets.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QLineEdit>
#include <QScopedPointer>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <functional>

namespace {

const QColor first_color(250, 8, 50, 255);

/// The expected pixmap of an icon.
QImage Filled(const QSize& size, const QColor& color)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

} // namespace

class TestSettingsWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void the_panel_has_its_initial_state();
    void the_parent_and_flags_are_the_given_ones();
    void widgets_are_in_their_places();
    void combo_boxes_have_their_entries_data();
    void combo_boxes_have_their_entries();
    void signals_and_slots_are_declared_in_order();
    void the_tab_key_goes_from_top_to_bottom();

    void the_icon_appears_with_the_first_resize();
    void the_icon_is_never_smaller_than_sixteen_pixels();
    void later_resizes_do_not_change_the_icon();
    void the_panel_can_shrink_below_its_initial_width();
    void an_icon_is_one_pixmap_of_one_colour();

    void moving_the_slider_reports_the_size();
    void setting_the_size_reports_changes_only();
    void the_size_stays_in_its_range_data();
    void the_size_stays_in_its_range();
    void setting_the_colour_redraws_the_icon_and_reports_nothing();
    void toggling_the_tracking_option_reports_it();
    void setting_the_format_does_not_clean_or_report_it();
    void the_orientation_is_set_by_its_code_data();
    void the_orientation_is_set_by_its_code();
    void the_resolution_is_set_by_its_code_data();
    void the_resolution_is_set_by_its_code();
    void the_user_picks_orientation_and_resolution();

    void an_edited_format_is_cleaned_and_reported_data();
    void an_edited_format_is_cleaned_and_reported();
    void leaving_the_format_editor_finishes_the_edit();
    void an_unchanged_format_is_reported_too();

    void an_accepted_colour_is_kept_shown_and_reported();
    void the_same_colour_again_is_reported();
    void a_cancelled_colour_dialog_changes_nothing();

private:
    void Show();
    void Answer_Color_Dialog(const std::function<void(QColorDialog*)>& answer);
    QImage Button_Image() const;

    QScopedPointer<TSettingsWidget> d_panel;
    QLineEdit* d_format = nullptr;
    QToolButton* d_color = nullptr;
    QSlider* d_size = nullptr;
    QComboBox* d_orientation = nullptr;
    QComboBox* d_resolution = nullptr;
    QCheckBox* d_track = nullptr;
};

void TestSettingsWidget::initTestCase()
{
    Support::Set_Style();
}

void TestSettingsWidget::init()
{
    d_panel.reset(new TSettingsWidget(nullptr, Qt::WindowFlags()));
    d_format = Support::By_Caption<QLineEdit>(*d_panel, QStringLiteral("Item Display Format:"));
    d_color = Support::By_Caption<QToolButton>(*d_panel, QStringLiteral("Item Color:"));
    d_size = Support::By_Caption<QSlider>(*d_panel, QStringLiteral("Item Size:"));
    d_orientation = Support::By_Caption<QComboBox>(*d_panel, QStringLiteral("PDF Orientation"));
    d_resolution = Support::By_Caption<QComboBox>(*d_panel, QStringLiteral("PDF Resolution"));
    d_track = Support::Only<QCheckBox>(*d_panel);
    QVERIFY(d_format && d_color && d_size && d_orientation && d_resolution && d_track);
}

void TestSettingsWidget::cleanup()
{
    d_panel.reset();
}

void TestSettingsWidget::Show()
{
    d_panel->show();
    d_panel->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(d_panel.data()));
}

/// Clicks the colour button and closes the dialog that opens.
void TestSettingsWidget::Answer_Color_Dialog(const std::function<void(QColorDialog*)>& answer)
{
    bool answered = false;
    QTimer::singleShot(0, d_panel.data(), [&answered, &answer] {
        auto* const dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr)
            return;
        answered = true;
        answer(dialog);
    });
    QTest::mouseClick(d_color, Qt::LeftButton);
    QVERIFY(answered);
}

QImage TestSettingsWidget::Button_Image() const
{
    return d_color->icon().pixmap(d_color->iconSize()).toImage();
}

void TestSettingsWidget::the_panel_has_its_initial_state()
{
    QCOMPARE(d_panel->size(), QSize(315, 217));
    QCOMPARE(d_panel->windowTitle(), QStringLiteral("Settings"));
    QCOMPARE(d_format->text(), QStringLiteral("Item[%1]"));
    QVERIFY(d_format->alignment() & Qt::AlignHCenter);
    QVERIFY(d_color->icon().isNull());
    QCOMPARE(d_color->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(d_color->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(d_size->orientation(), Qt::Horizontal);
    QCOMPARE(d_size->minimum(), 16);
    QCOMPARE(d_size->maximum(), 128);
    QCOMPARE(d_size->value(), 32);
    QCOMPARE(d_track->text(), QStringLiteral("Track Selected Item"));
    QVERIFY(d_track->isChecked());

    QCOMPARE(d_panel->Label_Size(), 32);
    QCOMPARE(d_panel->Label_Color(), first_color);
    QCOMPARE(d_panel->Track_Label(), true);
    QCOMPARE(d_panel->Display_Format(), QStringLiteral("Item[%1]"));
    QCOMPARE(d_panel->PDF_Orientation(), 0);
    QCOMPARE(d_panel->PDF_Resolution(), 1);
}

void TestSettingsWidget::the_parent_and_flags_are_the_given_ones()
{
    Support::Compare_Parent_And_Flags<TSettingsWidget>();
}

void TestSettingsWidget::widgets_are_in_their_places()
{
    auto* const grid = qobject_cast<QGridLayout*>(d_panel->layout());
    QVERIFY(grid != nullptr);
    const QList<QPair<int, QWidget*>> editors = {
        {0, d_format}, {1, d_color}, {2, d_size}, {4, d_orientation}, {5, d_resolution}};
    for (const auto& editor : editors) {
        QCOMPARE(grid->itemAtPosition(editor.first, 1)->widget(), editor.second);
        const auto* const caption =
            qobject_cast<QLabel*>(grid->itemAtPosition(editor.first, 0)->widget());
        QVERIFY(caption != nullptr);
        QCOMPARE(caption->buddy(), editor.second);
        QVERIFY(caption->text().startsWith(editor.second->accessibleName()));
    }
    for (const int row : {3, 6}) {
        const auto* const line = qobject_cast<QFrame*>(grid->itemAtPosition(row, 0)->widget());
        QVERIFY(line != nullptr);
        QCOMPARE(grid->itemAtPosition(row, 1)->widget(), line);
        QCOMPARE(line->frameShape(), QFrame::HLine);
        QCOMPARE(line->frameShadow(), QFrame::Sunken);
    }
    QCOMPARE(grid->itemAtPosition(7, 0)->widget(), d_track);
    QCOMPARE(grid->itemAtPosition(7, 1)->widget(), d_track);
    QSpacerItem* const spacer = grid->itemAtPosition(8, 0)->spacerItem();
    QVERIFY(spacer != nullptr);
    QCOMPARE(grid->itemAtPosition(8, 1)->spacerItem(), spacer);
    QCOMPARE(spacer->expandingDirections(), Qt::Vertical);
}

void TestSettingsWidget::combo_boxes_have_their_entries_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    const auto add = [](const char* caption, int index, const char* text, int code) {
        QTest::newRow(text) << QString::fromLatin1(caption) << index << QString::fromLatin1(text)
                            << code;
    };
    add("PDF Orientation", 0, "Portrait", 0);
    add("PDF Orientation", 1, "Landscape", 1);
    add("PDF Resolution", 0, "96 DPI", 1);
    add("PDF Resolution", 1, "180 DPI", 2);
    add("PDF Resolution", 2, "276 DPI", 3);
    add("PDF Resolution", 3, "372 DPI", 4);
}

void TestSettingsWidget::combo_boxes_have_their_entries()
{
    QFETCH(QString, caption);
    QFETCH(int, index);
    QFETCH(QString, text);
    QFETCH(int, code);
    const auto* const box = Support::By_Caption<QComboBox>(*d_panel, caption);
    QCOMPARE(box->itemText(index), text);
    QCOMPARE(box->itemData(index, Qt::UserRole), QVariant(code));
    QCOMPARE(box->count(), box == d_orientation ? 2 : 4);
    QCOMPARE(box->currentIndex(), 0);
}

void TestSettingsWidget::signals_and_slots_are_declared_in_order()
{
    QCOMPARE(Support::Methods(TSettingsWidget::staticMetaObject, QMetaMethod::Signal),
             QStringList({QStringLiteral("Label_Size_Changed(int)"),
                          QStringLiteral("Color_Changed(QColor)"),
                          QStringLiteral("Item_Display_Format_Changed(QString)"),
                          QStringLiteral("Track_Item_Option_Changed(bool)")}));
    QCOMPARE(Support::Methods(TSettingsWidget::staticMetaObject, QMetaMethod::Slot),
             QStringList(
                 {QStringLiteral("Select_Color()"), QStringLiteral("Display_Format_Updated()")}));
}

void TestSettingsWidget::the_tab_key_goes_from_top_to_bottom()
{
    Show();
    d_format->setFocus();
    const QList<QWidget*> order = {d_color, d_size, d_orientation, d_resolution, d_track, d_format};
    for (QWidget* const next : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
}

void TestSettingsWidget::the_icon_appears_with_the_first_resize()
{
    QVERIFY(d_color->icon().isNull());
    d_panel->resize(400, 300);
    Show();
    QVERIFY(!d_color->icon().isNull());
    const QSize icon_size = d_color->iconSize();
    QCOMPARE(d_color->icon().availableSizes(), QList<QSize>({icon_size}));
    QCOMPARE(Support::Difference(Button_Image(), Filled(icon_size, first_color)), QString());

    // Compute the expected size with a second panel, from the button's content without an icon.
    TSettingsWidget twin(nullptr, Qt::WindowFlags());
    twin.resize(d_panel->size());
    twin.ensurePolished();
    twin.layout()->activate();
    twin.layout()->setGeometry(twin.rect());
    auto* const button = Support::By_Caption<QToolButton>(twin, QStringLiteral("Item Color:"));
    const QRect area = button->rect();
    QCOMPARE(icon_size, QSize(qMax(16, area.right() - area.left() - 5),
                              qMax(16, area.bottom() - area.top() - 5)));
    QVERIFY(icon_size.width() > 100);
}

void TestSettingsWidget::the_icon_is_never_smaller_than_sixteen_pixels()
{
    d_color->setFixedSize(10, 50);
    Show();
    QCOMPARE(d_color->iconSize(), QSize(16, 44));
    TSettingsWidget other(nullptr, Qt::WindowFlags());
    auto* const button = Support::By_Caption<QToolButton>(other, QStringLiteral("Item Color:"));
    button->setFixedSize(40, 12);
    other.show();
    QCOMPARE(button->iconSize(), QSize(34, 16));
    QCOMPARE(button->icon().availableSizes(), QList<QSize>({QSize(34, 16)}));
}

void TestSettingsWidget::later_resizes_do_not_change_the_icon()
{
    Show();
    const QSize icon_size = d_color->iconSize();
    const qint64 icon_key = d_color->icon().cacheKey();
    d_panel->resize(600, 400);
    QCoreApplication::processEvents();
    QVERIFY(d_color->width() > icon_size.width() + 100);
    QCOMPARE(d_color->iconSize(), icon_size);
    QCOMPARE(d_color->icon().cacheKey(), icon_key);
    d_panel->hide();
    d_panel->show();
    QCOMPARE(d_color->iconSize(), icon_size);
    QCOMPARE(d_color->icon().cacheKey(), icon_key);
}

void TestSettingsWidget::the_panel_can_shrink_below_its_initial_width()
{
    const int narrowest = d_panel->minimumSizeHint().width();
    d_panel->resize(500, 300);
    Show();
    QCOMPARE(d_panel->minimumSizeHint().width(), narrowest);
    d_panel->resize(narrowest, 300);
    QCoreApplication::processEvents();
    QCOMPARE(d_panel->width(), narrowest);
}

void TestSettingsWidget::an_icon_is_one_pixmap_of_one_colour()
{
    const QSize size(37, 11);
    for (const QColor& color : {QColor(1, 2, 3), QColor(Qt::white), QColor(10, 20, 30, 128)}) {
        const QIcon icon = d_panel->Create_Icon(size, color);
        QCOMPARE(icon.availableSizes(), QList<QSize>({size}));
        QCOMPARE(Support::Difference(icon.pixmap(size).toImage(), Filled(size, color)), QString());
    }
}

void TestSettingsWidget::moving_the_slider_reports_the_size()
{
    Show();
    QSignalSpy sizes(d_panel.data(), SIGNAL(Label_Size_Changed(int)));
    QTest::keyClick(d_size, Qt::Key_Right);
    QCOMPARE(sizes.count(), 1);
    QCOMPARE(sizes.first().first().toInt(), 33);
    QCOMPARE(d_panel->Label_Size(), 33);
    QTest::keyClick(d_size, Qt::Key_End);
    QCOMPARE(sizes.last().first().toInt(), 128);
    QTest::keyClick(d_size, Qt::Key_End);
    QCOMPARE(sizes.count(), 2);
}

void TestSettingsWidget::setting_the_size_reports_changes_only()
{
    QSignalSpy sizes(d_panel.data(), SIGNAL(Label_Size_Changed(int)));
    d_panel->Set_Label_Size(32);
    QCOMPARE(sizes.count(), 0);
    d_panel->Set_Label_Size(50);
    QCOMPARE(sizes.count(), 1);
    QCOMPARE(sizes.first().first().toInt(), 50);
    QCOMPARE(d_size->value(), 50);
}

void TestSettingsWidget::the_size_stays_in_its_range_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("taken");
    QTest::newRow("200") << 200 << 128;
    QTest::newRow("129") << 129 << 128;
    QTest::newRow("128") << 128 << 128;
    QTest::newRow("16") << 16 << 16;
    QTest::newRow("15") << 15 << 16;
    QTest::newRow("-1") << -1 << 16;
}

void TestSettingsWidget::the_size_stays_in_its_range()
{
    QFETCH(int, given);
    QFETCH(int, taken);
    QSignalSpy sizes(d_panel.data(), SIGNAL(Label_Size_Changed(int)));
    d_panel->Set_Label_Size(given);
    QCOMPARE(d_panel->Label_Size(), taken);
    QCOMPARE(sizes.count(), 1);
    QCOMPARE(sizes.first().first().toInt(), taken);
}

void TestSettingsWidget::setting_the_colour_redraws_the_icon_and_reports_nothing()
{
    Show();
    QSignalSpy colors(d_panel.data(), SIGNAL(Color_Changed(QColor)));
    const QSize icon_size = d_color->iconSize();
    const QColor color(12, 200, 99);
    d_panel->Set_Label_Color(color);
    QCOMPARE(d_panel->Label_Color(), color);
    QCOMPARE(d_color->iconSize(), icon_size);
    QCOMPARE(Support::Difference(Button_Image(), Filled(icon_size, color)), QString());
    QCOMPARE(d_color->grab().toImage().pixelColor(d_color->rect().center()), color);
    QCOMPARE(colors.count(), 0);

    // A colour set before the panel is shown appears with the panel.
    TSettingsWidget other(nullptr, Qt::WindowFlags());
    other.Set_Label_Color(color);
    other.show();
    auto* const button = Support::By_Caption<QToolButton>(other, QStringLiteral("Item Color:"));
    QCOMPARE(Support::Difference(button->icon().pixmap(button->iconSize()).toImage(),
                                 Filled(button->iconSize(), color)),
             QString());
}

void TestSettingsWidget::toggling_the_tracking_option_reports_it()
{
    Show();
    QSignalSpy options(d_panel.data(), SIGNAL(Track_Item_Option_Changed(bool)));
    QTest::mouseClick(d_track, Qt::LeftButton, Qt::KeyboardModifiers(),
                      QPoint(8, d_track->height() / 2));
    QCOMPARE(options.count(), 1);
    QCOMPARE(options.first().first().toBool(), false);
    QCOMPARE(d_panel->Track_Label(), false);
    d_panel->Set_Track_Label(false);
    QCOMPARE(options.count(), 1);
    d_panel->Set_Track_Label(true);
    QCOMPARE(options.count(), 2);
    QCOMPARE(options.last().first().toBool(), true);
    QVERIFY(d_track->isChecked());
}

void TestSettingsWidget::setting_the_format_does_not_clean_or_report_it()
{
    QSignalSpy formats(d_panel.data(), SIGNAL(Item_Display_Format_Changed(QString)));
    const QString odd = QStringLiteral("  100%  %2 ");
    d_panel->Set_Display_Format(odd);
    QCOMPARE(d_panel->Display_Format(), odd);
    QCOMPARE(d_format->text(), odd);
    d_panel->Set_Display_Format(QString());
    QCOMPARE(d_panel->Display_Format(), QString());
    QCOMPARE(formats.count(), 0);
}

void TestSettingsWidget::the_orientation_is_set_by_its_code_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("taken");
    QTest::newRow("portrait") << 0 << 0;
    QTest::newRow("landscape") << 1 << 1;
    QTest::newRow("2") << 2 << 1;
    QTest::newRow("-1") << -1 << 1;
}

void TestSettingsWidget::the_orientation_is_set_by_its_code()
{
    QFETCH(int, given);
    QFETCH(int, taken);
    for (const int before : {0, 1}) {
        d_panel->Set_PDF_Orientation(before);
        d_panel->Set_PDF_Orientation(given);
        QCOMPARE(d_panel->PDF_Orientation(), taken);
        QCOMPARE(d_orientation->currentIndex(), taken);
    }
}

void TestSettingsWidget::the_resolution_is_set_by_its_code_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("taken");
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("2") << 2 << 2;
    QTest::newRow("3") << 3 << 3;
    QTest::newRow("4") << 4 << 4;
    QTest::newRow("0") << 0 << 1;
    QTest::newRow("5") << 5 << 1;
    QTest::newRow("7") << 7 << 1;
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("dots per inch") << 180 << 1;
}

void TestSettingsWidget::the_resolution_is_set_by_its_code()
{
    QFETCH(int, given);
    QFETCH(int, taken);
    for (const int before : {1, 4}) {
        d_panel->Set_PDF_Resolution(before);
        d_panel->Set_PDF_Resolution(given);
        QCOMPARE(d_panel->PDF_Resolution(), taken);
        QCOMPARE(d_resolution->currentIndex(), taken - 1);
    }
}

void TestSettingsWidget::the_user_picks_orientation_and_resolution()
{
    Show();
    QTest::keyClicks(d_orientation, QStringLiteral("L"));
    QCOMPARE(d_panel->PDF_Orientation(), 1);
    QTest::keyClick(d_resolution, Qt::Key_Down);
    QTest::keyClick(d_resolution, Qt::Key_Down);
    QCOMPARE(d_panel->PDF_Resolution(), 3);
}

void TestSettingsWidget::an_edited_format_is_cleaned_and_reported_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("cleaned");
    const auto add = [](const char* typed, const char* cleaned) {
        QTest::newRow(typed) << QString::fromLatin1(typed) << QString::fromLatin1(cleaned);
    };
    add("Item [%1] %2", "Item [%1] %2");
    add("  Tag  %1 / %2 ", "Tag %1 / %2");
    add("%1%%", "%1__");
    add("Label %2", "Label _2");
    add("100% %1", "100_ %1");
    add("%2 and %1", "%2 and %1");
    add("", "Item [%1] %2");
    add("   ", "Item [%1] %2");
}

void TestSettingsWidget::an_edited_format_is_cleaned_and_reported()
{
    QFETCH(QString, typed);
    QFETCH(QString, cleaned);
    Show();
    QSignalSpy formats(d_panel.data(), SIGNAL(Item_Display_Format_Changed(QString)));
    Support::Type_Over(d_format, typed);
    QCOMPARE(formats.count(), 0);
    QTest::keyClick(d_format, Qt::Key_Return);
    QCOMPARE(formats.count(), 1);
    QCOMPARE(formats.first().first().toString(), cleaned);
    QCOMPARE(d_format->text(), cleaned);
    QCOMPARE(d_panel->Display_Format(), cleaned);
}

void TestSettingsWidget::leaving_the_format_editor_finishes_the_edit()
{
    Show();
    d_format->setFocus();
    QSignalSpy formats(d_panel.data(), SIGNAL(Item_Display_Format_Changed(QString)));
    Support::Type_Over(d_format, QStringLiteral(" No. %1 "));
    QTest::keyClick(d_format, Qt::Key_Tab);
    QCOMPARE(formats.count(), 1);
    QCOMPARE(formats.first().first().toString(), QStringLiteral("No. %1"));
}

void TestSettingsWidget::an_unchanged_format_is_reported_too()
{
    Show();
    QSignalSpy formats(d_panel.data(), SIGNAL(Item_Display_Format_Changed(QString)));
    QTest::keyClick(d_format, Qt::Key_Return);
    QTest::keyClick(d_format, Qt::Key_Return);
    QCOMPARE(formats.count(), 2);
    QCOMPARE(formats.last().first().toString(), QStringLiteral("Item[%1]"));
}

void TestSettingsWidget::an_accepted_colour_is_kept_shown_and_reported()
{
    Show();
    QSignalSpy colors(d_panel.data(), SIGNAL(Color_Changed(QColor)));
    const QSize icon_size = d_color->iconSize();
    const QColor chosen(17, 34, 51);
    Answer_Color_Dialog([this, &chosen](QColorDialog* dialog) {
        QCOMPARE(dialog->parentWidget(), d_panel.data());
        QVERIFY(dialog->isModal());
        QCOMPARE(dialog->currentColor(), first_color);
        QCOMPARE(dialog->options(), QColorDialog::ColorDialogOptions());
        dialog->setCurrentColor(chosen);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    QCOMPARE(d_panel->Label_Color(), chosen);
    QCOMPARE(colors.count(), 1);
    QCOMPARE(colors.first().first().value<QColor>(), chosen);
    QCOMPARE(d_color->iconSize(), icon_size);
    QCOMPARE(Support::Difference(Button_Image(), Filled(icon_size, chosen)), QString());
    Answer_Color_Dialog([&chosen](QColorDialog* dialog) {
        QCOMPARE(dialog->currentColor(), chosen);
        dialog->reject();
    });
}

void TestSettingsWidget::the_same_colour_again_is_reported()
{
    Show();
    QSignalSpy colors(d_panel.data(), SIGNAL(Color_Changed(QColor)));
    Answer_Color_Dialog([](QColorDialog* dialog) { dialog->accept(); });
    QCOMPARE(colors.count(), 1);
    QCOMPARE(colors.first().first().value<QColor>(), first_color);
    QCOMPARE(d_panel->Label_Color(), first_color);
}

void TestSettingsWidget::a_cancelled_colour_dialog_changes_nothing()
{
    Show();
    QSignalSpy colors(d_panel.data(), SIGNAL(Color_Changed(QColor)));
    const qint64 icon_key = d_color->icon().cacheKey();
    Answer_Color_Dialog([](QColorDialog* dialog) {
        dialog->setCurrentColor(Qt::green);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    QCOMPARE(colors.count(), 0);
    QCOMPARE(d_panel->Label_Color(), first_color);
    QCOMPARE(d_color->icon().cacheKey(), icon_key);
}

QTEST_MAIN(TestSettingsWidget)
#include "test_settingswidget.moc"
