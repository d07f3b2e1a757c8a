#include "src/paint/reportgeometry.h"

#include "support/support.h"

#include <QTest>

namespace {

/// Assumed metrics of the report's fonts on the printer by resolution code: Nimbus Sans in 12 and 6
/// points at 96, 192, 288 and 384 dots per inch.
constexpr TFontMeasure heading_fonts[] = {{23, 9}, {45, 17}, {67, 25}, {89, 34}};
constexpr TFontMeasure footer_fonts[] = {{12, 5}, {23, 9}, {34, 13}, {45, 17}};

TReportLayout Layout(int code, bool has_header_1, bool has_header_2)
{
    return {code, has_header_1, has_header_2, heading_fonts[code - 1], footer_fonts[code - 1]};
}

QRect Corners(int left, int top, int right, int bottom)
{
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

/// The layout of a page, calculated by hand.
struct TCoordinates
{
    int x0, x1, xr;
    int y0, yb, fy;
    int hy_one, hy_both; ///< header rule with one and with both headers; without any it is y0
};

/// A printer page and the resulting layout.
struct TPaper
{
    const char* name;
    int code;
    int width, height; ///< what QPrinter gives for this paper at code * 96 dots per inch
    TCoordinates coordinates;
};

// For each page, with left and top 0, R = W - 1, B = H - 1:
//   mx = W * 0.09, my = H * 0.045, both truncated; x0 = mx, x1 = R - mx, y0 = my, yb = B - my;
//   third = (x1 - x0 + 1) / 3 + 0.5, truncated; xr = x0 + 3 third - 1;
//   hy = y0 + h + xh with one header and y0 + 2h + xh with both; fy = yb - h6 - xh6.
const TPaper papers[] = {
    // mx 71.37, my 50.535; x1 = 792 - 71, yb = 1122 - 50; 651 / 3 + .5 = 217.5, xr = 71 + 651 - 1;
    // hy = 50 + 32, 50 + 55; fy = 1072 - 17
    {"A4 portrait", 1, 793, 1123, {71, 721, 721, 50, 1072, 1055, 82, 105}},
    // mx 142.83, my 101.025; x1 = 1586 - 142, yb = 2244 - 101; 1303 / 3 + .5 = 434.83,
    // xr = 142 + 1302 - 1; hy = 101 + 62, 101 + 107; fy = 2143 - 32
    {"A4 portrait", 2, 1587, 2245, {142, 1444, 1443, 101, 2143, 2111, 163, 208}},
    // mx 214.2, my 151.56; x1 = 2379 - 214, yb = 3367 - 151; 1952 / 3 + .5 = 651.17,
    // xr = 214 + 1953 - 1; hy = 151 + 92, 151 + 159; fy = 3216 - 47
    {"A4 portrait", 3, 2380, 3368, {214, 2165, 2166, 151, 3216, 3169, 243, 310}},
    // mx 285.57, my 202.095; x1 = 3172 - 285, yb = 4490 - 202; 2603 / 3 + .5 = 868.17,
    // xr = 285 + 2604 - 1; hy = 202 + 123, 202 + 212; fy = 4288 - 62
    {"A4 portrait", 4, 3173, 4491, {285, 2887, 2888, 202, 4288, 4226, 325, 414}},
    // mx 101.07, my 35.685; x1 = 1122 - 101, yb = 792 - 35; 921 / 3 + .5 = 307.5,
    // xr = 101 + 921 - 1; hy = 35 + 32, 35 + 55; fy = 757 - 17
    {"A4 landscape", 1, 1123, 793, {101, 1021, 1021, 35, 757, 740, 67, 90}},
    // mx 202.05, my 71.415; x1 = 2244 - 202, yb = 1586 - 71; 1841 / 3 + .5 = 614.17,
    // xr = 202 + 1842 - 1; hy = 71 + 62, 71 + 107; fy = 1515 - 32
    {"A4 landscape", 2, 2245, 1587, {202, 2042, 2043, 71, 1515, 1483, 133, 178}},
    // mx 303.12, my 107.1; x1 = 3367 - 303, yb = 2379 - 107; 2762 / 3 + .5 = 921.17,
    // xr = 303 + 2763 - 1; hy = 107 + 92, 107 + 159; fy = 2272 - 47
    {"A4 landscape", 3, 3368, 2380, {303, 3064, 3065, 107, 2272, 2225, 199, 266}},
    // mx 404.19, my 142.785; x1 = 4490 - 404, yb = 3172 - 142; 3683 / 3 + .5 = 1228.17,
    // xr = 404 + 3684 - 1; hy = 142 + 123, 142 + 212; fy = 3030 - 62
    {"A4 landscape", 4, 4491, 3173, {404, 4086, 4087, 142, 3030, 2968, 265, 354}},
    // mx 73.44, my 47.52; x1 = 815 - 73, yb = 1055 - 47; 670 / 3 + .5 = 223.83,
    // xr = 73 + 669 - 1; hy = 47 + 32, 47 + 55; fy = 1008 - 17
    {"Letter portrait", 1, 816, 1056, {73, 742, 741, 47, 1008, 991, 79, 102}},
    // mx 146.88, my 95.04; x1 = 1631 - 146, yb = 2111 - 95; 1340 / 3 + .5 = 447.17,
    // xr = 146 + 1341 - 1; hy = 95 + 62, 95 + 107; fy = 2016 - 32
    {"Letter portrait", 2, 1632, 2112, {146, 1485, 1486, 95, 2016, 1984, 157, 202}},
    // mx 220.32, my 142.56; x1 = 2447 - 220, yb = 3167 - 142; 2008 / 3 + .5 = 669.83,
    // xr = 220 + 2007 - 1; hy = 142 + 92, 142 + 159; fy = 3025 - 47
    {"Letter portrait", 3, 2448, 3168, {220, 2227, 2226, 142, 3025, 2978, 234, 301}},
    // mx 293.76, my 190.08; x1 = 3263 - 293, yb = 4223 - 190; 2678 / 3 + .5 = 893.17,
    // xr = 293 + 2679 - 1; hy = 190 + 123, 190 + 212; fy = 4033 - 62
    {"Letter portrait", 4, 3264, 4224, {293, 2970, 2971, 190, 4033, 3971, 313, 402}},
    // mx 95.04, my 36.72; x1 = 1055 - 95, yb = 815 - 36; 866 / 3 + .5 = 289.17,
    // xr = 95 + 867 - 1; hy = 36 + 32, 36 + 55; fy = 779 - 17
    {"Letter landscape", 1, 1056, 816, {95, 960, 961, 36, 779, 762, 68, 91}},
    // mx 190.08, my 73.44; x1 = 2111 - 190, yb = 1631 - 73; 1732 / 3 + .5 = 577.83,
    // xr = 190 + 1731 - 1; hy = 73 + 62, 73 + 107; fy = 1558 - 32
    {"Letter landscape", 2, 2112, 1632, {190, 1921, 1920, 73, 1558, 1526, 135, 180}},
    // mx 285.12, my 110.16; x1 = 3167 - 285, yb = 2447 - 110; 2598 / 3 + .5 = 866.5,
    // xr = 285 + 2598 - 1; hy = 110 + 92, 110 + 159; fy = 2337 - 47
    {"Letter landscape", 3, 3168, 2448, {285, 2882, 2882, 110, 2337, 2290, 202, 269}},
    // mx 380.16, my 146.88; x1 = 4223 - 380, yb = 3263 - 146; 3464 / 3 + .5 = 1155.17,
    // xr = 380 + 3465 - 1; hy = 146 + 123, 146 + 212; fy = 3117 - 62
    {"Letter landscape", 4, 4224, 3264, {380, 3843, 3844, 146, 3117, 3055, 269, 358}},
};

/// An A4 page at 96 dots per inch without headers. Its target is (72, 51) to (720, 1053), that is
/// 649 x 1003: rules from 71 to 721, header rule 50, footer's top 1055, gap 1.
TReportGeometry Plain_Page()
{
    return TReportGeometry(QRect(0, 0, 793, 1123), Layout(1, false, false));
}

} // namespace

/// The layout of a report page.
class TestReportGeometry : public QObject
{
    Q_OBJECT

    static void Add_Papers()
    {
        QTest::addColumn<int>("index");
        int index = 0;
        for (const TPaper& paper : papers) {
            QTest::addRow("%s, code %d", paper.name, paper.code) << index;
            ++index;
        }
    }

    static TReportGeometry Geometry(const TPaper& paper, bool has_header_1, bool has_header_2)
    {
        return TReportGeometry(QRect(0, 0, paper.width, paper.height),
                               Layout(paper.code, has_header_1, has_header_2));
    }

    /// Compares the parts of the layout that depend only on the position of the header rule.
    static void Compare_Frame(const TReportGeometry& geometry, const TPaper& paper, int hy)
    {
        const TCoordinates& p = paper.coordinates;
        QCOMPARE(geometry.Header_Rule(), QLine(p.x0, hy, p.xr, hy));
        QCOMPARE(geometry.Footer_Rule(), QLine(p.x0, p.fy - 1, p.xr, p.fy - 1));
        QCOMPARE(geometry.Footer(), Corners(p.x0, p.fy, p.x1, p.yb - 1));
        const int code = paper.code;
        QCOMPARE(geometry.Target(), Corners(p.x0 + code, hy + code, p.xr - code, p.fy - 1 - code));
    }

private slots:
    void without_headers_the_rule_lies_at_the_top_margin_data() { Add_Papers(); }
    void without_headers_the_rule_lies_at_the_top_margin()
    {
        QFETCH(int, index);
        const TPaper& paper = papers[index];
        const TReportGeometry geometry = Geometry(paper, false, false);
        Compare_Frame(geometry, paper, paper.coordinates.y0);
        QVERIFY(geometry.Header_1().isEmpty());
        QVERIFY(geometry.Header_2().isEmpty());
    }

    void the_first_header_alone_has_the_whole_band_data() { Add_Papers(); }
    void the_first_header_alone_has_the_whole_band()
    {
        QFETCH(int, index);
        const TPaper& paper = papers[index];
        const TCoordinates& p = paper.coordinates;
        const TReportGeometry geometry = Geometry(paper, true, false);
        Compare_Frame(geometry, paper, p.hy_one);
        QCOMPARE(geometry.Header_1(), Corners(p.x0, p.y0, p.x1, p.hy_one - 1));
        QVERIFY(geometry.Header_2().isEmpty());
    }

    void the_second_header_alone_has_the_whole_band_data() { Add_Papers(); }
    void the_second_header_alone_has_the_whole_band()
    {
        QFETCH(int, index);
        const TPaper& paper = papers[index];
        const TCoordinates& p = paper.coordinates;
        const TReportGeometry geometry = Geometry(paper, false, true);
        Compare_Frame(geometry, paper, p.hy_one);
        QVERIFY(geometry.Header_1().isEmpty());
        QCOMPARE(geometry.Header_2(), Corners(p.x0, p.y0, p.x1, p.hy_one - 1));
    }

    void both_headers_share_the_band_data() { Add_Papers(); }
    void both_headers_share_the_band()
    {
        QFETCH(int, index);
        const TPaper& paper = papers[index];
        const TCoordinates& p = paper.coordinates;
        const TReportGeometry geometry = Geometry(paper, true, true);
        Compare_Frame(geometry, paper, p.hy_both);
        const int second = p.y0 + heading_fonts[paper.code - 1].height;
        QCOMPARE(geometry.Header_1(), Corners(p.x0, p.y0, p.x1, second - 1));
        QCOMPARE(geometry.Header_2(), Corners(p.x0, second, p.x1, p.hy_both - 1));
    }

    void an_a4_page_with_both_headers()
    {
        // 96 dots per inch: x0 71, x1 721, xr 721; y0 50, second line 73, hy 105, fy 1055, yb 1072.
        const TReportGeometry geometry(QRect(0, 0, 793, 1123), Layout(1, true, true));
        QCOMPARE(geometry.Header_1(), Corners(71, 50, 721, 72));
        QCOMPARE(geometry.Header_2(), Corners(71, 73, 721, 104));
        QCOMPARE(geometry.Header_Rule(), QLine(71, 105, 721, 105));
        QCOMPARE(geometry.Target(), Corners(72, 106, 720, 1053));
        QCOMPARE(geometry.Footer_Rule(), QLine(71, 1054, 721, 1054));
        QCOMPARE(geometry.Footer(), Corners(71, 1055, 721, 1071));
    }

    void a_page_need_not_start_at_the_origin()
    {
        // The same page as above, moved by (40, 30).
        const TReportGeometry geometry(QRect(40, 30, 793, 1123), Layout(1, true, true));
        QCOMPARE(geometry.Header_1(), Corners(111, 80, 761, 102));
        QCOMPARE(geometry.Header_2(), Corners(111, 103, 761, 134));
        QCOMPARE(geometry.Header_Rule(), QLine(111, 135, 761, 135));
        QCOMPARE(geometry.Target(), Corners(112, 136, 760, 1083));
        QCOMPARE(geometry.Footer_Rule(), QLine(111, 1084, 761, 1084));
        QCOMPARE(geometry.Footer(), Corners(111, 1085, 761, 1101));
    }

    void a_further_page_of_the_same_size_changes_nothing()
    {
        const QRect page(0, 0, 793, 1123);
        TReportGeometry geometry(page, Layout(1, true, true));
        geometry.Set_Page(page);
        QCOMPARE(geometry.Header_Rule(), QLine(71, 105, 721, 105));
        QCOMPARE(geometry.Target(), Corners(72, 106, 720, 1053));
        QCOMPARE(geometry.Footer(), Corners(71, 1055, 721, 1071));
    }

    void a_further_page_moves_the_left_right_and_bottom_margins_only()
    {
        TReportGeometry geometry(QRect(0, 0, 793, 1123), Layout(1, true, true));
        // mx = 90, my = 54: x0 = 10 + 90 = 100, x1 = 1009 - 90 = 919, yb = 1219 - 54 = 1165.
        // xr stays 721, y0 50, second line 73, hy 105, fy 1055.
        geometry.Set_Page(QRect(10, 20, 1000, 1200));
        QCOMPARE(geometry.Header_1(), Corners(100, 50, 919, 72));
        QCOMPARE(geometry.Header_2(), Corners(100, 73, 919, 104));
        QCOMPARE(geometry.Header_Rule(), QLine(100, 105, 721, 105));
        QCOMPARE(geometry.Target(), Corners(101, 106, 720, 1053));
        QCOMPARE(geometry.Footer_Rule(), QLine(100, 1054, 721, 1054));
        QCOMPARE(geometry.Footer(), Corners(100, 1055, 919, 1164));
    }

    void a_picture_is_centred_where_it_is_smaller_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QRect>("centred");

        // The target is (72, 51) to (720, 1053), 649 x 1003.
        QTest::newRow("fits exactly") << QSize(649, 1003) << Corners(72, 51, 720, 1053);
        QTest::newRow("one less is drawn to the target's edges")
            << QSize(648, 1002) << Corners(72, 51, 720, 1053);
        QTest::newRow("two less is drawn to the target's edges")
            << QSize(647, 1001) << Corners(72, 51, 720, 1053);
        QTest::newRow("three less: both edges by one")
            << QSize(646, 1000) << Corners(73, 52, 719, 1052);
        QTest::newRow("four less: both edges by two")
            << QSize(645, 999) << Corners(74, 53, 718, 1051);
        QTest::newRow("five less: both edges by two")
            << QSize(644, 998) << Corners(74, 53, 718, 1051);
        // 649 - 400 = 249, half 124: 72 + 124, 720 - 124.
        QTest::newRow("narrow, odd difference") << QSize(400, 1003) << Corners(196, 51, 596, 1053);
        // 649 - 401 = 248, half 124
        QTest::newRow("narrow, even difference") << QSize(401, 1003) << Corners(196, 51, 596, 1053);
        // 1003 - 300 = 703, half 351: 51 + 351, 1053 - 351
        QTest::newRow("flat") << QSize(649, 300) << Corners(72, 402, 720, 702);
        QTest::newRow("narrow by two, flat") << QSize(647, 300) << Corners(72, 402, 720, 702);
        QTest::newRow("larger is not moved") << QSize(660, 1010) << Corners(72, 51, 720, 1053);
    }
    void a_picture_is_centred_where_it_is_smaller()
    {
        QFETCH(QSize, picture);
        const TReportGeometry geometry = Plain_Page();
        QCOMPARE(geometry.Target(), Corners(72, 51, 720, 1053));
        QTEST(geometry.Centred(picture), "centred");
    }

    void dots_per_inch_are_the_codes_times_96()
    {
        QCOMPARE(TReportGeometry::Resolution(1), 96);
        QCOMPARE(TReportGeometry::Resolution(2), 192);
        QCOMPARE(TReportGeometry::Resolution(3), 288);
        QCOMPARE(TReportGeometry::Resolution(4), 384);
    }

    void rules_of_codes_2_and_3_share_a_width()
    {
        QCOMPARE(TReportGeometry::Rule_Width(1), 1);
        QCOMPARE(TReportGeometry::Rule_Width(2), 2);
        QCOMPARE(TReportGeometry::Rule_Width(3), 2);
        QCOMPARE(TReportGeometry::Rule_Width(4), 3);
    }

    void resolution_codes_run_from_1_to_4()
    {
        for (const int code : {1, 2, 3, 4})
            QVERIFY(TReportGeometry::Is_Resolution_Code(code));
        for (const int code : {-1, 0, 5, 96})
            QVERIFY(!TReportGeometry::Is_Resolution_Code(code));
    }

    void another_resolution_code_fails_an_assertion()
    {
        const QString condition = QStringLiteral("Is_Resolution_Code(resolution_code)");
        QCOMPARE(Support::Assertion_Failure([] { TReportGeometry::Rule_Width(0); },
                                            "src/paint/reportgeometry.cpp", condition,
                                            "Rule_Width"),
                 QString());
        QCOMPARE(Support::Assertion_Failure([] { TReportGeometry::Rule_Width(5); },
                                            "src/paint/reportgeometry.cpp", condition,
                                            "Rule_Width"),
                 QString());
    }
};

QTEST_MAIN(TestReportGeometry)
#include "test_reportgeometry.moc"
