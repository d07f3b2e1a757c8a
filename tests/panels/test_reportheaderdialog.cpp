#include "src/reportheaderdialog.h"

#include "support/dialogs.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using Support::Child_With_Text;

namespace {

QLineEdit* Line_Named(const QDialog& dialog, const QString& label)
{
    return qobject_cast<QLineEdit*>(Child_With_Text<QLabel>(dialog, label)->buddy());
}

} // namespace

/// The dialog that asks for the report's header lines.
class TestReportHeaderDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(QStringLiteral("fusion")); }

    void it_has_a_title_and_a_size()
    {
        const TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(dialog.windowTitle(), QString("Report Header"));
        QCOMPARE(dialog.size(), QSize(510, 163));
        QVERIFY(!dialog.isVisible());
    }

    void it_takes_parent_and_flags()
    {
        QWidget parent;
        const TReportHeaderDialog* const dialog =
            new TReportHeaderDialog(&parent, Qt::WindowStaysOnTopHint);
        QCOMPARE(dialog->parentWidget(), &parent);
        QVERIFY(dialog->isWindow());
        QVERIFY(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    }

    void it_has_no_signals_or_slots_of_its_own()
    {
        const QMetaObject& meta = TReportHeaderDialog::staticMetaObject;
        QCOMPARE(meta.className(), "TReportHeaderDialog");
        QCOMPARE(meta.methodCount(), QDialog::staticMetaObject.methodCount());
    }

    void cells_have_their_widgets_data()
    {
        Support::Add_Cell_Columns();
        Support::Add_Cell("header 1's name", 0, 0, 1, 1, "Header 1 Text:");
        Support::Add_Cell("header 1", 0, 1, 1, 1, "QLineEdit");
        Support::Add_Cell("header 2's name", 1, 0, 1, 1, "Header 2 Text:");
        Support::Add_Cell("header 2", 1, 1, 1, 1, "QLineEdit");
        Support::Add_Cell("line", 2, 0, 1, 2, "HLine");
        Support::Add_Cell("space", 3, 0, 1, 2, "vertical spacer");
        Support::Add_Cell("buttons", 4, 0, 1, 2, "stretch, Cancel, Accept");
    }
    void cells_have_their_widgets()
    {
        const TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        Support::Compare_Cell(dialog);
    }

    void there_are_no_other_cells()
    {
        const TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(dialog.layout()->count(), 7);
        QCOMPARE(Support::Grid(dialog)->columnCount(), 2);
        QCOMPARE(Support::Grid(dialog)->rowCount(), 5);
    }

    void texts_are_empty_at_first()
    {
        const TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        QCOMPARE(dialog.Header1_Text(), QString());
        QCOMPARE(dialog.Header2_Text(), QString());
    }

    void each_text_belongs_to_its_own_line()
    {
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        dialog.Set_Header1_Text(QString::fromUtf8("Bericht für Ωmega"));
        dialog.Set_Header2_Text(QStringLiteral("%1 second"));
        QCOMPARE(Line_Named(dialog, "Header 1 Text:")->text(),
                 QString::fromUtf8("Bericht für Ωmega"));
        QCOMPARE(Line_Named(dialog, "Header 2 Text:")->text(), QString("%1 second"));
        QCOMPARE(dialog.Header1_Text(), QString::fromUtf8("Bericht für Ωmega"));
        QCOMPARE(dialog.Header2_Text(), QString("%1 second"));
    }

    void typed_texts_are_returned()
    {
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        dialog.show();
        QTest::keyClicks(Line_Named(dialog, "Header 1 Text:"), "one");
        QTest::keyClicks(Line_Named(dialog, "Header 2 Text:"), " two ");
        QCOMPARE(dialog.Header1_Text(), QString("one"));
        QCOMPARE(dialog.Header2_Text(), QString(" two "));
    }

    void buttons_end_the_dialog_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("auto_default");
        QTest::addColumn<int>("result");

        QTest::newRow("cancel") << "Cancel" << false << static_cast<int>(QDialog::Rejected);
        QTest::newRow("accept") << "Accept" << true << static_cast<int>(QDialog::Accepted);
    }
    void buttons_end_the_dialog()
    {
        QFETCH(QString, text);
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        QSignalSpy finished(&dialog, SIGNAL(finished(int)));
        dialog.open();
        auto* const button = Child_With_Text<QPushButton>(dialog, text);
        QTEST(button->autoDefault(), "auto_default");
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(finished.count(), 1);
        QTEST(dialog.result(), "result");
        QVERIFY(!dialog.isVisible());
    }

    void return_in_a_line_accepts_data()
    {
        QTest::addColumn<QString>("label");

        QTest::newRow("header 1") << "Header 1 Text:";
        QTest::newRow("header 2") << "Header 2 Text:";
    }
    void return_in_a_line_accepts()
    {
        QFETCH(QString, label);
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        QSignalSpy accepted(&dialog, SIGNAL(accepted()));
        dialog.open();
        QTest::keyClick(Line_Named(dialog, label), Qt::Key_Return);
        QCOMPARE(accepted.count(), 1);
    }

    void texts_stay_until_the_next_use_data() { buttons_end_the_dialog_data(); }
    void texts_stay_until_the_next_use()
    {
        QFETCH(QString, text);
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        dialog.open();
        QTest::keyClicks(Line_Named(dialog, "Header 1 Text:"), "one");
        QTest::keyClicks(Line_Named(dialog, "Header 2 Text:"), "two");
        Child_With_Text<QPushButton>(dialog, text)->click();
        dialog.open();
        QCOMPARE(dialog.Header1_Text(), QString("one"));
        QCOMPARE(dialog.Header2_Text(), QString("two"));
    }

    void tab_follows_the_rows()
    {
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        const QList<QWidget*> expected{Line_Named(dialog, "Header 1 Text:"),
                                       Line_Named(dialog, "Header 2 Text:"),
                                       Child_With_Text<QPushButton>(dialog, "Cancel"),
                                       Child_With_Text<QPushButton>(dialog, "Accept")};
        QCOMPARE(Support::Tab_Order(&dialog, expected.size()), expected);
    }

    void screen_readers_find_the_labels()
    {
        const TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        for (const QString& label : {QString("Header 1 Text:"), QString("Header 2 Text:")})
            QCOMPARE(Support::Accessible_Label(Line_Named(dialog, label)), label);
    }

    void nothing_is_clipped()
    {
        TReportHeaderDialog dialog(nullptr, Qt::WindowFlags());
        dialog.show();
        QCOMPARE(dialog.size(), QSize(510, 163));
        QCOMPARE(Support::Clipped_Widget(dialog), QString());
    }
};

QTEST_MAIN(TestReportHeaderDialog)
#include "test_reportheaderdialog.moc"
