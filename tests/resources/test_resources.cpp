#include "support/support.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

const QString c_source_root = QDir::cleanPath(QStringLiteral(QUILLET_TEST_DATA "/../.."));

/// Sizes at which icons are shown: in lists and combo boxes, in small tool bars, in our tool bar.
constexpr int c_icon_sizes[] = {16, 22, 32};

/// Minimum contrast at which most people can see a symbol on its background (WCAG 2.1).
constexpr double c_minimum_contrast = 3.0;

const QStringList& Background_Names()
{
    static const QStringList names{":/images/background_default.png", ":/images/default.png"};
    return names;
}

const QStringList& Outline_Names()
{
    static const QStringList names{":/gui/outline_none.png", ":/gui/outline_square.png",
                                   ":/gui/outline_ellipse.png", ":/gui/outline_triangle.png",
                                   ":/gui/outline_diamond.png"};
    return names;
}

const QStringList& Menu_Names()
{
    static const QStringList names{":/menu/file_new.png",          ":/menu/file_open.png",
                                   ":/menu/file_save.png",         ":/menu/file_import.png",
                                   ":/menu/file_export_image.png", ":/menu/file_export_pdf.png"};
    return names;
}

QStringList Icon_Names()
{
    return QStringList{":/icons/quillet.png"} + Menu_Names() + Outline_Names();
}

QStringList All_Names()
{
    return Icon_Names() + Background_Names();
}

QString At_2x(const QString& name)
{
    return QString(name).replace(".png", "@2x.png");
}

/// Converts an sRGB channel to linear light, 0 to 1 (WCAG 2.1, relative luminance).
double Linear(int channel)
{
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double Luminance(QRgb color)
{
    return 0.2126 * Linear(qRed(color)) + 0.7152 * Linear(qGreen(color)) +
           0.0722 * Linear(qBlue(color));
}

/// Contrast ratio of two colours, 1 to 21 (WCAG 2.1).
double Contrast(QRgb a, QRgb b)
{
    const double la = Luminance(a) + 0.05;
    const double lb = Luminance(b) + 0.05;
    return std::max(la, lb) / std::min(la, lb);
}

/// Draws an icon as a tool bar or a list does: scaled by QIcon, on a plain background.
QImage Shown(const QString& name, int size, const QColor& surface)
{
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(surface);
    QPainter painter(&image);
    QIcon(name).paint(&painter, image.rect());
    return image;
}

/// The pixels that contrast with the background.
struct TInk
{
    int count = 0;
    QRect extent; ///< bounding box
};

TInk Ink(const QImage& shown, const QColor& surface)
{
    TInk ink;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            if (Contrast(shown.pixel(x, y), surface.rgb()) >= c_minimum_contrast) {
                ++ink.count;
                ink.extent |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

void Add_Name_Rows(const QStringList& names)
{
    QTest::addColumn<QString>("name");
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << name;
}

/// The paths, relative to resources/, that the resource list names.
QStringList Listed_Files()
{
    const QString list =
        QString::fromUtf8(Support::Read_File(c_source_root + "/resources/quillet.qrc"));
    QStringList files;
    QRegularExpressionMatchIterator it =
        QRegularExpression("<file[^>]*>([^<]+)</file>").globalMatch(list);
    while (it.hasNext())
        files << it.next().captured(1);
    files.sort();
    return files;
}

} // namespace

/// The built-in images exist in the right sizes, match their sources, and are visible on light and
/// dark desktops.
class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void every_name_loads_and_has_a_variant_of_twice_the_size_data();
    void every_name_loads_and_has_a_variant_of_twice_the_size();
    void icons_have_the_size_at_which_they_are_shown();
    void both_backgrounds_fit_the_page_view_of_a_first_start();
    void the_two_backgrounds_differ();
    void background_texts_have_a_sheet_behind_them();
    void icons_are_legible_on_light_and_dark_palettes_data();
    void icons_are_legible_on_light_and_dark_palettes();
    void no_two_icons_look_alike_in_the_smallest_size();
    void outline_icons_show_their_border_data();
    void outline_icons_show_their_border();
    void every_listed_picture_has_its_source_beside_it();
    void every_picture_in_the_tree_is_listed();
    void every_picture_matches_its_source();
};

void TestResources::every_name_loads_and_has_a_variant_of_twice_the_size_data()
{
    Add_Name_Rows(All_Names());
}

void TestResources::every_name_loads_and_has_a_variant_of_twice_the_size()
{
    QFETCH(QString, name);
    const QImage image(name);
    QVERIFY(!image.isNull());
    QVERIFY(image.hasAlphaChannel());
    QCOMPARE(QImageReader::imageFormat(name), QByteArray("png"));

    const QImage twice(At_2x(name));
    QVERIFY(!twice.isNull());
    QCOMPARE(twice.size(), image.size() * 2);
}

void TestResources::icons_have_the_size_at_which_they_are_shown()
{
    QCOMPARE(QImage(":/icons/quillet.png").size(), QSize(256, 256));
    for (const QString& name : Menu_Names() + Outline_Names())
        QCOMPARE(QImage(name).size(), QSize(32, 32));
}

void TestResources::both_backgrounds_fit_the_page_view_of_a_first_start()
{
    // The default window is 800 x 600. The view gets 45 % of the width, less its frame, and the
    // height that menu bar, tool bar and status bar leave.
    const QSize page_view(356, 430);
    for (const QString& name : Background_Names()) {
        const QSize size = QImage(name).size();
        QCOMPARE(size.boundedTo(page_view), size);
        QCOMPARE(size, QImage(Background_Names().first()).size());
    }
}

void TestResources::the_two_backgrounds_differ()
{
    QVERIFY(
        !Support::Difference(QImage(Background_Names().first()), QImage(Background_Names().last()))
             .isEmpty());
}

void TestResources::background_texts_have_a_sheet_behind_them()
{
    // Everything except the rounded corners is opaque, so texts do not depend on the palette.
    for (const QString& name : Background_Names()) {
        const QImage image(name);
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        for (int y = 15; y < image.height() - 15; ++y)
            for (int x = 10; x < image.width() - 10; ++x)
                QCOMPARE(qAlpha(image.pixel(x, y)), 255);
    }
}

void TestResources::icons_are_legible_on_light_and_dark_palettes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::addColumn<QColor>("surface");
    const QColor surfaces[] = {QColor("#efefef"), QColor("#ffffff"), QColor("#2d2d2d")};
    for (const QString& name : Icon_Names())
        for (const int size : c_icon_sizes)
            for (const QColor& surface : surfaces)
                QTest::newRow(
                    qPrintable(QString("%1 at %2 on %3").arg(name).arg(size).arg(surface.name())))
                    << name << size << surface;
}

void TestResources::icons_are_legible_on_light_and_dark_palettes()
{
    QFETCH(QString, name);
    QFETCH(int, size);
    QFETCH(QColor, surface);
    const TInk ink = Ink(Shown(name, size, surface), surface);
    const QByteArray measured = QString("%1 contrasting pixels, over %2 x %3")
                                    .arg(ink.count)
                                    .arg(ink.extent.width())
                                    .arg(ink.extent.height())
                                    .toLocal8Bit();
    // A thin frame covers a tenth of the square. Less is hardly visible.
    QVERIFY2(ink.count * 10 >= size * size, measured);
    // The whole symbol must be visible and not just a part of it.
    QVERIFY2(ink.extent.width() * 4 >= size * 3, measured);
    QVERIFY2(ink.extent.height() * 4 >= size * 3, measured);
}

void TestResources::no_two_icons_look_alike_in_the_smallest_size()
{
    const int size = c_icon_sizes[0];
    const QColor surface("#efefef");
    const QStringList names = Icon_Names();
    for (int a = 0; a < names.size(); ++a) {
        const QImage first = Shown(names[a], size, surface);
        for (int b = a + 1; b < names.size(); ++b) {
            const QImage second = Shown(names[b], size, surface);
            int different = 0;
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x)
                    if (Contrast(first.pixel(x, y), second.pixel(x, y)) >= 1.5)
                        ++different;
            QVERIFY2(different * 10 >= size * size, qPrintable(names[a] + " and " + names[b]));
        }
    }
}

void TestResources::outline_icons_show_their_border_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVector<QPoint>>("on_the_line");
    QTest::addColumn<QVector<QPoint>>("off_the_line");

    const QPoint centre(16, 16);
    const QPoint top_left(5, 5);
    const QPoint bottom_left(5, 27);
    const QPoint bottom_right(27, 27);
    const QPoint left(4, 16);
    const QPoint top(16, 4);
    const QPoint bottom(16, 27);
    const QPoint on_the_roof(10, 10);
    using TPoints = QVector<QPoint>;
    QTest::newRow("square") << ":/gui/outline_square.png"
                            << TPoints{top_left, bottom_left, bottom_right, left, top, bottom}
                            << TPoints{centre, on_the_roof};
    QTest::newRow("ellipse") << ":/gui/outline_ellipse.png" << TPoints{left, top, bottom}
                             << TPoints{centre, top_left, bottom_left, bottom_right, on_the_roof};
    QTest::newRow("house") << ":/gui/outline_triangle.png"
                           << TPoints{top, on_the_roof, left, bottom_left, bottom_right, bottom}
                           << TPoints{centre, top_left};
    QTest::newRow("diamond") << ":/gui/outline_diamond.png"
                             << TPoints{top, on_the_roof, left, bottom}
                             << TPoints{centre, top_left, bottom_left, bottom_right};
}

void TestResources::outline_icons_show_their_border()
{
    QFETCH(QString, name);
    QFETCH(QVector<QPoint>, on_the_line);
    QFETCH(QVector<QPoint>, off_the_line);
    const QImage image(name);
    for (const QPoint& point : std::as_const(on_the_line))
        QVERIFY2(qAlpha(image.pixel(point)) > 200,
                 qPrintable(QString("%1, %2").arg(point.x()).arg(point.y())));
    for (const QPoint& point : std::as_const(off_the_line))
        QVERIFY2(qAlpha(image.pixel(point)) < 80,
                 qPrintable(QString("%1, %2").arg(point.x()).arg(point.y())));
}

void TestResources::every_listed_picture_has_its_source_beside_it()
{
    const QStringList files = Listed_Files();
    QCOMPARE(files.size(), 2 * All_Names().size());
    for (const QString& file : files) {
        const QString source = QString(file).remove("@2x").replace(".png", ".svg");
        QVERIFY2(QFileInfo::exists(c_source_root + "/resources/" + source), qPrintable(source));
    }
}

void TestResources::every_picture_in_the_tree_is_listed()
{
    const QString folder = c_source_root + "/resources/";
    QStringList found;
    QDirIterator it(folder, {"*.png"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found << it.next().mid(folder.size());
    found.sort();
    QCOMPARE(found, Listed_Files());
}

void TestResources::every_picture_matches_its_source()
{
    QProcess script;
    script.start(c_source_root + "/script/render-resources", {"--check"});
    QVERIFY(script.waitForFinished());
    QCOMPARE(script.readAllStandardError(), QByteArray());
    QCOMPARE(script.exitStatus(), QProcess::NormalExit);
    QCOMPARE(script.exitCode(), 0);
}

QTEST_MAIN(TestResources)
#include "test_resources.moc"
