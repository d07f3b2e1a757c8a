#include "support/project.h"
#include "support/support.h"
#include "support/view.h"

#include "src/displaywidget.h"
#include "src/export/pageexporter.h"
#include "src/export/printedpdf.h"
#include "src/format/document.h"

#include <QPixmap>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QSize page_size(60, 40);

QImage Page_Picture(int seed)
{
    return Support::Picture(page_size.width(), page_size.height(), seed);
}

} // namespace

/// Exports without a window.
class TestPageExporter : public QObject
{
    Q_OBJECT

    TDocument d_document;
    std::unique_ptr<TDisplayWidget> d_view;
    std::unique_ptr<QTemporaryDir> d_folder;

    TPageExporter Exporter() { return TPageExporter(&d_document.data, d_view.get()); }
    QString Path(const QString& name) const { return d_folder->filePath(name); }
    /// Adds pages that are large enough to be encoded by another process.
    void Add_Large_Pages(int count)
    {
        for (int page = 0; page < count; ++page)
            d_document.Add_Page("large", Support::Picture(1000, 600, page));
    }

private slots:
    void init()
    {
        d_document = TDocument();
        d_view = std::make_unique<TDisplayWidget>(nullptr);
        d_folder = std::make_unique<QTemporaryDir>();
        d_document.Add_Page("a", Page_Picture(0));
        d_document.Add_Page("b", Page_Picture(1));
    }

    void pages_are_drawn_in_the_given_order()
    {
        QList<int> drawn;
        QVERIFY(Exporter().Draw_Pages({2, 1}, [&](int page_id, const QPixmap& picture) {
            drawn += page_id;
            return Support::Difference(picture.toImage(), Page_Picture(page_id - 1)).isEmpty();
        }));
        QCOMPARE(drawn, QList<int>({2, 1}));
    }

    void drawing_stops_when_the_handler_returns_false()
    {
        int count = 0;
        QVERIFY(!Exporter().Draw_Pages({1, 2}, [&](int, const QPixmap&) {
            ++count;
            return false;
        }));
        QCOMPARE(count, 1);
    }

    void without_pages_nothing_is_exported()
    {
        QVERIFY(!Exporter().Draw_Pages({}, [](int, const QPixmap&) { return true; }));
        QVERIFY(!Exporter().Export_Images({}, [](int, int) { return QString(); }));
        QCOMPARE(Exporter().Export_Pdf(Path("r.pdf"), {}, {0, 1, "", ""}),
                 TPageExporter::TOutcome::Not_Begun);
        QCOMPARE(Support::Entries(d_folder->path()), QStringList());
    }

    void the_active_page_is_shown_after_an_export()
    {
        d_document.data.Set_Active_Page(1);
        d_document.data.Add_Item(Support::Label(5, 7, "", 1, QPointF(20, 20)));
        Exporter().Draw_Pages({2}, [this](int, const QPixmap&) {
            return Support::Labels(*d_view).isEmpty() && !d_view->updatesEnabled();
        });
        QCOMPARE(d_document.data.Active_Page(), 1);
        QCOMPARE(Support::Labels(*d_view).size(), 1);
        QCOMPARE(Support::Difference(d_view->Background_Pixmap().toImage(), Page_Picture(0)),
                 QString());
        QVERIFY(d_view->updatesEnabled());
    }

    void the_built_in_image_is_shown_as_before_after_an_export()
    {
        d_view->Show_Start_Image();
        d_view->resize(500, 400);
        const QImage before = d_view->grab().toImage();
        Exporter().Draw_Pages({1, 2}, [](int, const QPixmap&) { return true; });
        QCOMPARE(Support::Difference(d_view->grab().toImage(), before), QString());
    }

    void progress_is_reported_before_drawing_and_before_handling_a_page()
    {
        QStringList reports;
        const TPageExporter exporter(&d_document.data, d_view.get(), [&](int number, int total) {
            reports += QString("%1 of %2").arg(number).arg(total);
        });
        exporter.Draw_Pages({1, 2}, [&](int page_id, const QPixmap&) {
            reports += QString("page %1").arg(page_id);
            return true;
        });
        QCOMPARE(reports,
                 QStringList({"1 of 2", "1 of 2", "page 1", "2 of 2", "2 of 2", "page 2"}));
    }

    void images_are_written_to_the_given_paths()
    {
        QStringList asked;
        QVERIFY(Exporter().Export_Images({2, 1}, [&](int page_id, int counter) {
            asked += QString("%1 %2").arg(page_id).arg(counter);
            return Path(QString::number(page_id));
        }));
        QCOMPARE(asked, QStringList({"2 1", "1 2"}));
        QCOMPARE(Support::Difference(QImage(Path("1"), "png"), Page_Picture(0)), QString());
        QCOMPARE(Support::Difference(QImage(Path("2"), "png"), Page_Picture(1)), QString());
    }

    void large_images_are_the_same_with_any_number_of_jobs()
    {
        Add_Large_Pages(3);
        const QList<int> ids{3, 4, 5};
        for (const int jobs : {1, 2, 4}) {
            QVERIFY(Exporter().Export_Images(
                ids, [&](int id, int) { return Path(QString("%1-%2").arg(jobs).arg(id)); },
                TPageExporter::TPng::Small, jobs));
        }
        for (const int id : ids) {
            const QByteArray png = Support::Png(d_document.data.Page(id).image);
            for (const int jobs : {1, 2, 4})
                QCOMPARE(Support::Read_File(Path(QString("%1-%2").arg(jobs).arg(id))), png);
        }
    }

    void after_an_image_that_cannot_be_written_no_other_one_is()
    {
        Add_Large_Pages(4);
        QStringList asked;
        const auto path_of = [&](int page_id, int) {
            asked += QString::number(page_id);
            return Path(page_id == 4 ? "missing/4" : asked.last());
        };
        QVERIFY(!Exporter().Export_Images({3, 4, 5, 6}, path_of, TPageExporter::TPng::Small, 4));
        QCOMPARE(asked, QStringList({"3", "4"}));
        QCOMPARE(Support::Entries(d_folder->path()), QStringList("3"));
    }

    void a_report_that_cannot_be_opened_is_not_begun()
    {
        using TOutcome = TPageExporter::TOutcome;
        const TReportOptions settings{0, 1, "", ""};
        QCOMPARE(Exporter().Export_Pdf(QString(), {1}, settings), TOutcome::Not_Begun);
        QCOMPARE(Exporter().Export_Pdf(Path("r.pdf"), {1}, {0, 5, "", ""}), TOutcome::Not_Begun);
        QCOMPARE(Exporter().Export_Pdf(Path("missing/r.pdf"), {1}, settings), TOutcome::Not_Begun);
        QCOMPARE(Support::Entries(d_folder->path()), QStringList());
        QCOMPARE(Exporter().Export_Pdf(Path("r.pdf"), {1}, settings), TOutcome::Complete);
        QVERIFY(PrintedPdf::Is_Complete(Path("r.pdf")));
    }

    void an_incomplete_report_leaves_the_old_file()
    {
        Support::Write_File(Path("r.pdf"), "old");
        const Support::TChildResult result = Support::Run_In_Child([this] {
            constexpr qint64 too_small = 1000; // bytes
            Support::Limit_File_Size(too_small);
            return Exporter().Export_Pdf(Path("r.pdf"), {1}, {0, 1, "", ""}) ==
                           TPageExporter::TOutcome::Incomplete
                       ? 0
                       : 1;
        });
        QVERIFY2(result.exited, result.error_output.constData());
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(Support::Read_File(Path("r.pdf")), QByteArray("old"));
    }
};

QTEST_MAIN(TestPageExporter)
#include "test_pageexporter.moc"
