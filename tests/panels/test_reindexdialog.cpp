#include "src/reindexdialog.h"

#include "support/dialogs.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>

using Support::Child_With_Text;
using Support::Grid_Cell;

namespace {

QLineEdit* First_Value(const QDialog& dialog)
{
    return dialog.findChild<QLineEdit*>();
}

QComboBox* Increment(const QDialog& dialog)
{
    return dialog.findChild<QComboBox*>();
}

} // namespace

/// The dialog that asks how to renumber.
class TestReindexDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(QStringLiteral("fusion")); }

    void it_has_a_title_and_a_size()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(dialog.windowTitle(), QString("Reindex Items"));
        QCOMPARE(dialog.size(), QSize(520, 250));
        QVERIFY(!dialog.isVisible());
    }

    void it_takes_parent_and_flags()
    {
        QWidget parent;
        const TReindexDialog* const dialog = new TReindexDialog(&parent, Qt::WindowStaysOnTopHint);
        QCOMPARE(dialog->parentWidget(), &parent);
        QVERIFY(dialog->isWindow());
        QVERIFY(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    }

    void it_starts_with_100_next_100x_all_pages()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(First_Value(dialog)->text(), QString("100"));
        QCOMPARE(dialog.Initial_Value(), 100);
        QCOMPARE(Increment(dialog)->currentText(), QString("Next 100X"));
        QCOMPARE(dialog.Increment_Over_Page_Method(), 2);
        QCOMPARE(dialog.Reindex_Option(), 0);
        QVERIFY(Child_With_Text<QRadioButton>(dialog, "All Pages, All Label Items")->isChecked());
    }

    void cells_have_their_widgets_data()
    {
        Support::Add_Cell_Columns();
        Support::Add_Cell("top line", 0, 0, 1, 5, "HLine");
        Support::Add_Cell("parameters", 1, 0, 2, 1, "Parameters:");
        Support::Add_Cell("line beside parameters", 1, 1, 2, 1, "VLine");
        Support::Add_Cell("first value's name", 1, 2, 1, 1, "First Item Value:");
        Support::Add_Cell("first value", 1, 3, 1, 1, "QLineEdit");
        Support::Add_Cell("increment's name", 2, 2, 1, 1, "Increment Over Page:");
        Support::Add_Cell("increment", 2, 3, 1, 1, "QComboBox");
        Support::Add_Cell("space beside parameters", 1, 4, 2, 1, "horizontal spacer");
        Support::Add_Cell("middle line", 3, 0, 1, 5, "HLine");
        Support::Add_Cell("options", 4, 0, 3, 1, "Options:");
        Support::Add_Cell("line beside options", 4, 1, 3, 1, "VLine");
        Support::Add_Cell("option 0", 4, 2, 1, 3, "All Pages, All Label Items");
        Support::Add_Cell("option 1", 5, 2, 1, 3, "Current Page, All Label Items");
        Support::Add_Cell("option 2", 6, 2, 1, 3, "Current Page, Selected Label Items");
        Support::Add_Cell("bottom line", 7, 0, 1, 5, "HLine");
        Support::Add_Cell("space", 8, 0, 1, 5, "vertical spacer");
        Support::Add_Cell("buttons", 9, 0, 1, 5, "stretch, Cancel, Apply");
    }
    void cells_have_their_widgets()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        Support::Compare_Cell(dialog);
    }

    void there_are_no_other_cells()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(dialog.layout()->count(), 17);
        QCOMPARE(Support::Grid(dialog)->columnCount(), 5);
        QCOMPARE(Support::Grid(dialog)->rowCount(), 10);
    }

    void group_titles_are_aligned_left_and_top()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        for (const int row : {1, 4}) {
            QCOMPARE(Grid_Cell(dialog, row, 0)->alignment(), Qt::AlignLeft | Qt::AlignTop);
            const auto* label = qobject_cast<QLabel*>(Grid_Cell(dialog, row, 0)->widget());
            QVERIFY(label);
            QCOMPARE(label->alignment(), Qt::AlignLeft | Qt::AlignTop);
        }
    }

    void the_first_value_is_centred_and_accepts_any_text()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QVERIFY(First_Value(dialog)->alignment().testFlag(Qt::AlignHCenter));
        QVERIFY(First_Value(dialog)->validator() == nullptr);
        QVERIFY(First_Value(dialog)->inputMask().isEmpty());
    }

    void each_increment_entry_has_its_text_and_code_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code");

        QTest::newRow("first") << 0 << "Next 1X" << 0;
        QTest::newRow("second") << 1 << "Next 10X" << 1;
        QTest::newRow("third") << 2 << "Next 100X" << 2;
        QTest::newRow("fourth") << 3 << "Next 1000X" << 4;
    }
    void each_increment_entry_has_its_text_and_code()
    {
        QFETCH(int, index);
        QFETCH(int, code);
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(Increment(dialog)->count(), 4);
        QVERIFY(!Increment(dialog)->isEditable());
        QTEST(Increment(dialog)->itemText(index), "text");
        QCOMPARE(Increment(dialog)->itemData(index).toInt(), code);
        Increment(dialog)->setCurrentIndex(index);
        QCOMPARE(dialog.Increment_Over_Page_Method(), code);
    }

    void each_option_has_its_code_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code");

        QTest::newRow("all pages") << "All Pages, All Label Items" << 0;
        QTest::newRow("current page") << "Current Page, All Label Items" << 1;
        QTest::newRow("selected") << "Current Page, Selected Label Items" << 2;
    }
    void each_option_has_its_code()
    {
        QFETCH(QString, text);
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        dialog.show();
        auto* const option = Child_With_Text<QRadioButton>(dialog, text);
        QTest::mouseClick(option, Qt::LeftButton, Qt::NoModifier, QPoint(10, option->height() / 2));
        QTEST(dialog.Reindex_Option(), "code");
        int checked = 0;
        for (const QRadioButton* const button : dialog.findChildren<QRadioButton*>())
            checked += button->isChecked() ? 1 : 0;
        QCOMPARE(checked, 1);
    }

    void the_first_value_is_a_decimal_integer_or_1_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");

        QTest::newRow("number") << "250" << 250;
        QTest::newRow("zero") << "0" << 0;
        QTest::newRow("negative") << "-7" << -7;
        QTest::newRow("leading zeros are not octal") << "010" << 10;
        QTest::newRow("largest") << "2147483647" << 2147483647;
        QTest::newRow("too large") << "2147483648" << 1;
        QTest::newRow("empty") << "" << 1;
        QTest::newRow("letters") << "abc" << 1;
        QTest::newRow("trailing letters") << "12a" << 1;
        QTest::newRow("fraction") << "1.5" << 1;
        QTest::newRow("hexadecimal") << "0x10" << 1;
    }
    void the_first_value_is_a_decimal_integer_or_1()
    {
        QFETCH(QString, text);
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        dialog.show();
        First_Value(dialog)->selectAll();
        QTest::keyClick(First_Value(dialog), Qt::Key_Delete);
        QTest::keyClicks(First_Value(dialog), text);
        QTEST(dialog.Initial_Value(), "value");
    }

    void buttons_end_the_dialog_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("result");

        QTest::newRow("cancel") << "Cancel" << static_cast<int>(QDialog::Rejected);
        QTest::newRow("apply") << "Apply" << static_cast<int>(QDialog::Accepted);
    }
    void buttons_end_the_dialog()
    {
        QFETCH(QString, text);
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QSignalSpy finished(&dialog, SIGNAL(finished(int)));
        dialog.open();
        QTest::mouseClick(Child_With_Text<QPushButton>(dialog, text), Qt::LeftButton);
        QCOMPARE(finished.count(), 1);
        QTEST(dialog.result(), "result");
        QVERIFY(!dialog.isVisible());
    }

    void no_button_is_pressed_by_return()
    {
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        for (const QPushButton* const button : dialog.findChildren<QPushButton*>()) {
            QVERIFY(!button->autoDefault());
            QVERIFY(!button->isDefault());
        }
        QSignalSpy finished(&dialog, SIGNAL(finished(int)));
        dialog.open();
        QTest::keyClick(First_Value(dialog), Qt::Key_Return);
        QCOMPARE(finished.count(), 0);
        QVERIFY(dialog.isVisible());
    }

    void choices_stay_until_the_next_use_data() { buttons_end_the_dialog_data(); }
    void choices_stay_until_the_next_use()
    {
        QFETCH(QString, text);
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        dialog.open();
        First_Value(dialog)->setText(QStringLiteral("17"));
        Increment(dialog)->setCurrentIndex(3);
        Child_With_Text<QRadioButton>(dialog, "Current Page, Selected Label Items")->click();
        Child_With_Text<QPushButton>(dialog, text)->click();
        dialog.open();
        QCOMPARE(dialog.Initial_Value(), 17);
        QCOMPARE(dialog.Increment_Over_Page_Method(), 4);
        QCOMPARE(dialog.Reindex_Option(), 2);
    }

    void tab_follows_the_rows()
    {
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        // Of the radio buttons, Tab visits the one that is checked.
        const QList<QWidget*> expected{
            First_Value(dialog), Increment(dialog),
            Child_With_Text<QRadioButton>(dialog, "All Pages, All Label Items"),
            Child_With_Text<QPushButton>(dialog, "Cancel"),
            Child_With_Text<QPushButton>(dialog, "Apply")};
        QCOMPARE(Support::Tab_Order(&dialog, expected.size()), expected);
    }

    void screen_readers_find_the_labels()
    {
        const TReindexDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(Support::Accessible_Label(First_Value(dialog)), QString("First Item Value:"));
        QCOMPARE(Support::Accessible_Label(Increment(dialog)), QString("Increment Over Page:"));
    }

    void nothing_is_clipped()
    {
        TReindexDialog dialog(nullptr, Qt::WindowFlags());
        dialog.show();
        QCOMPARE(dialog.size(), QSize(520, 250));
        QCOMPARE(Support::Clipped_Widget(dialog), QString());
    }
};

QTEST_MAIN(TestReindexDialog)
#include "test_reindexdialog.moc"
