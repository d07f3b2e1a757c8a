#include "src/format/projectsurvey.h"

#include "src/format/projectlayout.h"
#include "src/format/recordfinder.h"
#include "src/model/imagecheck.h"

#include <QColor>
#include <QCoreApplication>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

using ProjectLayout::Integer_Size;
using ProjectLayout::Minimum_Page;

constexpr qint64 size_offset = Integer_Size;                 ///< of the label size
constexpr qint64 color_offset = ProjectLayout::Minimum_File; ///< of the colour's length
constexpr qint64 color_begin = color_offset + Integer_Size;
constexpr qint64 color_length = 7; ///< of "#rrggbb"

bool Is_Color(const QByteArray& name)
{
    return QColor::isValidColor(QString::fromLatin1(name));
}

class TSurveyor
{
    Q_DECLARE_TR_FUNCTIONS(ProjectSurvey)

public:
    TSurveyor(const TByteSource& file, ProjectSurvey::TImages images, const TProgressReport& report)
        : d_file(file)
        , d_images(images)
        , d_report(report)
        , d_finder(file)
    {
    }

    TProjectSurvey Survey();

private:
    bool Read_Start();
    bool Read_Header();
    bool Read_Color(qint64* offset);
    bool Read_Header_Line(const QString& what, QString* line, qint64* offset);
    bool Read_Page_Count(qint64 offset);
    bool Are_Lengths_Wrong() const;
    void Read_Pages(bool begin_is_sure);
    void Read_Record(const TPageRecord& record);
    void Check_Page_Count();
    bool Check_Length(const QString& what, qint64 offset, const std::optional<TFileField>& field);
    void Check_Record(const TPageRecord& record);
    QString Text(const QString& what, const TFileField& field);
    void Read_Image(const TFileField& field, TSurveyedPage* page);
    void Read_Items(const TFileField& field, TSurveyedPage* page);

    QByteArray Content(const TFileField& field) const
    {
        return d_file.Read(field.begin, field.length);
    }
    /// Reports a defect.
    void Report(qint64 offset, const QString& what, bool is_harmless = false)
    {
        const QString prefix = d_page == 0 ? QString() : tr("page %1: ").arg(d_page);
        d_survey.defects.push_back({offset, prefix + what, d_page, is_harmless});
    }

    const TByteSource d_file;
    const ProjectSurvey::TImages d_images;
    const TProgressReport d_report;
    const TRecordFinder d_finder;
    TProjectSurvey d_survey;
    int d_page = 0; ///< number of the current page from 1; 0 outside of the pages
    std::optional<int> d_page_count;
    qint64 d_count_offset = 0;
    int d_record_count = 0;
    qint64 d_position = color_begin; ///< of the next page record
};

TProjectSurvey TSurveyor::Survey()
{
    if (Read_Start()) {
        const bool is_header_sound = Read_Header();
        Read_Pages(is_header_sound);
        Check_Page_Count();
    }
    std::stable_sort(d_survey.defects.begin(), d_survey.defects.end(),
                     [](const TProjectDefect& left, const TProjectDefect& right) {
                         return left.offset < right.offset;
                     });
    return std::move(d_survey);
}

/// Whether the file is a project, or contains at least one page record.
bool TSurveyor::Read_Start()
{
    if (d_file.Size() < color_offset) {
        Report(0, tr("the file is too short to be a project file: %1 bytes").arg(d_file.Size()));
        return false;
    }
    if (d_finder.Integer_At(0) == ProjectLayout::Magic)
        return true;
    Report(0, tr("the file does not begin with the magic number of a project file"));
    // For any other file, report nothing else.
    return d_finder.Has_Record_After(color_offset);
}

/// Reads the header; false when it is not certain where the pages begin.
bool TSurveyor::Read_Header()
{
    const int size = *d_finder.Integer_At(size_offset);
    int* const label_size = &d_survey.appearance.label_size;
    *label_size = qBound(TAppearance::Smallest_Label, size, TAppearance::Largest_Label);
    if (*label_size != size)
        Report(size_offset,
               tr("the label size %1 is not between %2 and %3")
                   .arg(size)
                   .arg(TAppearance::Smallest_Label)
                   .arg(TAppearance::Largest_Label),
               true);
    qint64 offset = color_offset;
    return Read_Color(&offset) &&
           Read_Header_Line(tr("header line 1"), &d_survey.appearance.header_1, &offset) &&
           Read_Header_Line(tr("header line 2"), &d_survey.appearance.header_2, &offset) &&
           Read_Page_Count(offset);
}

bool TSurveyor::Read_Color(qint64* offset)
{
    std::optional<TFileField> field = d_finder.Field_At(*offset);
    const bool is_good = field && Is_Color(Content(*field));
    // If a valid name of the usual length is there, only the stored length is damaged.
    const TFileField usual{color_begin, color_length};
    if (!is_good && d_file.Size() >= usual.End() && Is_Color(Content(usual)))
        field = usual;
    Check_Length(tr("the colour name"), *offset, field);
    if (!field)
        return false;
    *offset = field->End();
    const QString name = Text(tr("the colour name"), *field);
    const QColor color = TAppearance::Color(name);
    if (!color.isValid())
        Report(field->begin, tr("unknown colour \"%1\"").arg(name));
    d_survey.appearance.color_name = color.name();
    return true;
}

bool TSurveyor::Read_Header_Line(const QString& what, QString* line, qint64* offset)
{
    const std::optional<TFileField> field = d_finder.Field_At(*offset);
    if (!Check_Length(what, *offset, field))
        return false;
    *line = Text(what, *field);
    *offset = field->End();
    return true;
}

bool TSurveyor::Read_Page_Count(qint64 offset)
{
    d_count_offset = offset;
    d_position = offset + Integer_Size;
    d_page_count = d_finder.Integer_At(offset);
    if (!d_page_count) {
        Report(offset, tr("the file ends where the page count should be"));
        return true;
    }
    if (!Are_Lengths_Wrong())
        return true;
    Report(color_offset, tr("the lengths in the header do not lead to the first page"));
    d_page_count.reset();
    return false;
}

/// Whether the lengths in the header lead near or past the first page, but not to it.
bool TSurveyor::Are_Lengths_Wrong() const
{
    if (d_finder.Is_Boundary(d_position) || !d_finder.Has_Record_After(color_begin))
        return false;
    const TPageRecord first = d_finder.Find_After(color_begin);
    return first.name && first.begin != d_position && first.begin < d_position + Minimum_Page;
}

void TSurveyor::Read_Pages(bool begin_is_sure)
{
    bool is_sure = begin_is_sure;
    if (!is_sure)
        d_position = color_begin;
    while (d_position < d_finder.Size() &&
           ((is_sure && d_record_count < d_page_count.value_or(0)) ||
            d_finder.Has_Record_After(d_position))) {
        is_sure = is_sure || d_finder.Is_Boundary(d_position);
        const TPageRecord record =
            is_sure ? d_finder.Find(d_position) : d_finder.Find_After(d_position);
        Read_Record(record);
        d_position = record.end;
        is_sure = record.is_end_sure;
    }
}

void TSurveyor::Read_Record(const TPageRecord& record)
{
    d_page = ++d_record_count;
    if (d_report)
        d_report(d_record_count, qMax(d_record_count, d_page_count.value_or(0)));
    const auto defect_count = static_cast<std::ptrdiff_t>(d_survey.defects.size());
    Check_Record(record);
    if (!record.name && !record.image && !record.items)
        return;
    TSurveyedPage page;
    if (record.name)
        page.name = Text(tr("the name"), *record.name);
    if (record.image)
        Read_Image(*record.image, &page);
    if (record.items)
        Read_Items(*record.items, &page);
    page.is_whole = std::all_of(d_survey.defects.cbegin() + defect_count, d_survey.defects.cend(),
                                [](const TProjectDefect& defect) { return defect.is_harmless; });
    d_survey.pages.push_back(page);
}

/// Reports each length of a record that does not match its field, up to the first missing field.
void TSurveyor::Check_Record(const TPageRecord& record)
{
    qint64 offset = record.begin;
    const auto check = [&](const QString& what, const std::optional<TFileField>& field) {
        Check_Length(what, field ? field->Length_Offset() : offset, field);
        offset = field ? field->End() : offset;
        return field.has_value();
    };
    if (!check(tr("the name"), record.name) && !record.image && !record.items)
        Report(record.begin, tr("%1 bytes cannot be read").arg(record.end - record.begin));
    else if (record.name && check(tr("the image"), record.image))
        check(tr("the label document"), record.items);
}

/// Whether the length at an offset is that of a field. If not, reports why.
/// @param field  the field that was found, if any.
bool TSurveyor::Check_Length(const QString& what, qint64 offset,
                             const std::optional<TFileField>& field)
{
    const std::optional<int> length = d_finder.Integer_At(offset);
    if (length && field && *length == field->length)
        return true;
    if (!length)
        Report(qMin(offset, d_finder.Size()),
               tr("the file ends where the length of %1 should be").arg(what));
    else if (*length < 0)
        Report(offset, tr("the length of %1 is negative: %2").arg(what).arg(*length));
    else if (*length > d_finder.Size() - offset - Integer_Size)
        Report(offset,
               tr("the length of %1 points past the end of the file: %2").arg(what).arg(*length));
    else if (field)
        Report(offset, tr("the length of %1 is %2, but it has %3 bytes")
                           .arg(what)
                           .arg(*length)
                           .arg(field->length));
    else
        Report(offset, tr("the length of %1 is wrong: %2").arg(what).arg(*length));
    return false;
}

void TSurveyor::Check_Page_Count()
{
    d_page = 0;
    if (!d_page_count)
        return;
    const int count = *d_page_count;
    if (count > d_record_count)
        Report(d_finder.Size(),
               tr("the file ends after %1 of %2 pages").arg(d_record_count).arg(count));
    else if (count < d_record_count)
        Report(d_count_offset,
               tr("the page count is %1, but there are %2 pages").arg(count).arg(d_record_count));
    if (d_position < d_finder.Size())
        Report(d_position, tr("%1 bytes follow the last page").arg(d_finder.Size() - d_position),
               true);
}

/// The text of a field, cut at its first zero byte as by TProjectReader.
QString TSurveyor::Text(const QString& what, const TFileField& field)
{
    const QByteArray content = Content(field);
    const int zero = content.indexOf('\0');
    if (zero < 0)
        return QString::fromLatin1(content);
    Report(field.begin + zero, tr("%1 is cut off at a zero byte").arg(what));
    return QString::fromLatin1(content.left(zero));
}

void TSurveyor::Read_Image(const TFileField& field, TSurveyedPage* page)
{
    page->image = TPageImage::From_Bytes(d_file.Part(field.begin, field.length));
    // A page without an image is written with a length of 0.
    if (field.length == 0 || d_images == ProjectSurvey::TImages::Leave_Alone)
        return;
    const QString fault = ImageCheck::Fault(page->image.Source_Bytes());
    page->is_image_whole = fault.isEmpty();
    if (!fault.isEmpty())
        Report(field.begin, fault);
}

void TSurveyor::Read_Items(const TFileField& field, TSurveyedPage* page)
{
    const TItemSurvey found = ItemSurvey::Survey(Content(field));
    page->items = found.items;
    PageTexts::Restore(found.texts.name, &page->name);
    if (d_record_count == 1) {
        PageTexts::Restore(found.texts.header_1, &d_survey.appearance.header_1);
        PageTexts::Restore(found.texts.header_2, &d_survey.appearance.header_2);
    }
    for (const TProjectDefect& defect : found.defects)
        Report(field.begin + defect.offset, defect.what, defect.is_harmless);
}

} // namespace

TProjectSurvey ProjectSurvey::Survey(const TByteSource& file, TImages images,
                                     const TProgressReport& report)
{
    return TSurveyor(file, images, report).Survey();
}
