// Commands that edit documents: their settings and their pages.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "cli/translate.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

const char* const label_size_option = "label-size";
const char* const label_color_option = "label-color";

const char* const order_option = "order";
const char* const remove_option = "remove";
const char* const extract_option = "extract";
const char* const rename_option = "rename";
const char* const rotate_option = "rotate";

const std::array<const char*, 4> settings = {label_size_option, label_color_option,
                                             CommonOptions::Header_1, CommonOptions::Header_2};
const std::array<const char*, 5> edits = {order_option, remove_option, extract_option,
                                          rename_option, rotate_option};

/// Codes of rotations: the number of right angles clockwise.
constexpr std::array<TOptionValue, 5> rotations = {
    {{"left", 3}, {"right", 1}, {"90", 1}, {"180", 2}, {"270", 3}}};

template <typename TOptions>
bool Is_Any_Set(const TCommandLine& line, const TOptions& options)
{
    return std::any_of(options.cbegin(), options.cend(),
                       [&line](const char* option) { return line.Is_Set(option); });
}

/// Checks a text that the window shows on one line.
void Check_Line(const TCommandLine& line, const char* option, const QString& text)
{
    if (std::any_of(text.cbegin(), text.cend(),
                    [](QChar character) { return character.category() == QChar::Other_Control; }))
        line.Throw_Invalid_Value(option, Tr("one line of text without control characters"));
}

void Set_Color(const TCommandLine& line, TAppearance* appearance)
{
    constexpr int opaque = 255;
    const QColor color = TAppearance::Color(line.Text(label_color_option));
    if (!color.isValid() || color.alpha() != opaque)
        line.Throw_Invalid_Value(label_color_option, Tr("#rrggbb or the name of a colour"));
    appearance->color_name = color.name();
}

/// Changes the settings that the command line names.
void Apply_Settings(const TCommandLine& line, TAppearance* appearance)
{
    if (line.Is_Set(label_size_option))
        appearance->label_size =
            line.Number(label_size_option, TAppearance::Smallest_Label, TAppearance::Largest_Label);
    if (line.Is_Set(label_color_option))
        Set_Color(line, appearance);
    for (const auto& [option, text] : {std::pair{CommonOptions::Header_1, &appearance->header_1},
                                       std::pair{CommonOptions::Header_2, &appearance->header_2}}) {
        if (!line.Is_Set(option))
            continue;
        Check_Line(line, option, line.Text(option));
        *text = line.Text(option);
    }
}

/// Pages and what to do with them, as in "1-3=left".
struct TPageEdit
{
    std::vector<TPageRange> pages;
    QString value;
};

/// The values of an option that assigns something to pages.
std::vector<TPageEdit> Page_Edits(const TCommandLine& line, const char* option,
                                  const QString& expected)
{
    std::vector<TPageEdit> page_edits;
    const QStringList texts = line.Texts(option);
    for (const QString& text : texts) {
        const int separator = text.indexOf(QLatin1Char('='));
        const auto pages = PageRanges::Parse(text.left(separator));
        if (separator < 0 || !pages)
            line.Throw_Invalid_Value(option, text, expected);
        page_edits.push_back({*pages, text.mid(separator + 1)});
    }
    return page_edits;
}

/// What the options of `pages` say, before a document is read.
struct TEditPlan
{
    explicit TEditPlan(const TCommandLine& line);

    std::vector<TPageRange> order;
    std::vector<TPageRange> removed;
    std::vector<TPageRange> extracted;
    std::vector<TPageEdit> names;
    std::vector<TPageEdit> rotations;
};

TEditPlan::TEditPlan(const TCommandLine& line)
{
    const std::array<std::pair<const char*, std::vector<TPageRange>*>, 3> lists = {
        {{order_option, &order}, {remove_option, &removed}, {extract_option, &extracted}}};
    for (const auto& [option, pages] : lists) {
        if (line.Is_Set(option))
            *pages = line.Pages(option);
    }
    names = Page_Edits(line, rename_option, Tr("a page and its name such as 3=Cover"));
    const QString expected = Tr("pages and left, right, 90, 180 or 270, such as 1-3=left");
    rotations = Page_Edits(line, rotate_option, expected);
    for (const TPageEdit& edit : names)
        Check_Line(line, rename_option, edit.value);
    for (const TPageEdit& edit : rotations) {
        if (!TCommandLine::Find_Code(edit.value, ::rotations))
            line.Throw_Invalid_Value(rotate_option, edit.value, expected);
    }
}

/// The numbers of pages, all of which the document has, each once.
/// @param path  of the document.
std::vector<int> Numbers(const std::vector<TPageRange>& pages, const QString& path,
                         const TDocument& document)
{
    const int last_page = PageRanges::Last_Page(pages);
    if (last_page > static_cast<int>(document.pages.size()))
        throw TJobError{path, Tr("there is no page %1").arg(last_page)};
    std::vector<int> numbers = PageRanges::Numbers(pages);
    std::vector<int> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    const auto repeated = std::adjacent_find(sorted.cbegin(), sorted.cend());
    if (repeated != sorted.cend())
        throw TUsageError{Tr("Page %1 is named twice.").arg(*repeated)};
    return numbers;
}

/// All pages, those in `first` before the others.
std::vector<int> All_Pages(const std::vector<int>& first, const TDocument& document)
{
    std::vector<int> numbers(document.pages.size());
    std::iota(numbers.begin(), numbers.end(), 1);
    const auto is_first = [&first](int number) {
        return std::find(first.cbegin(), first.cend(), number) != first.cend();
    };
    numbers.erase(std::remove_if(numbers.begin(), numbers.end(), is_first), numbers.end());
    numbers.insert(numbers.begin(), first.cbegin(), first.cend());
    return numbers;
}

/// The numbers of the pages of the new document, in its order.
std::vector<int> Kept_Pages(const TEditPlan& plan, const QString& path, const TDocument& document)
{
    if (!plan.extracted.empty())
        return Numbers(plan.extracted, path, document);
    std::vector<int> kept = All_Pages(Numbers(plan.order, path, document), document);
    for (const int number : Numbers(plan.removed, path, document))
        kept.erase(std::find(kept.begin(), kept.end(), number));
    return kept;
}

void Rename_Pages(const TEditPlan& plan, const QString& path, TDocument* document)
{
    for (const TPageEdit& edit : plan.names) {
        for (const int number : Numbers(edit.pages, path, *document))
            document->pages[static_cast<std::size_t>(number) - 1].name = edit.value;
    }
}

void Rotate_Pages(const TEditPlan& plan, const QString& path, TDocument* document)
{
    TTerminalProgress progress(Tr("Rotating page %1 of %2"));
    for (const TPageEdit& edit : plan.rotations) {
        const std::vector<int> numbers = Numbers(edit.pages, path, *document);
        Files::Check_Images(path, *document, numbers);
        int count = 0;
        for (const int number : numbers) {
            progress.Begin_Part(++count, static_cast<int>(numbers.size()));
            if (!document->Turn_Page(number, *TCommandLine::Find_Code(edit.value, rotations)))
                throw TJobError{path, Tr("page %1 has no image").arg(number)};
        }
    }
}

void List_Pages(const TDocument& document, bool is_json)
{
    QJsonArray list;
    int number = 0;
    for (const TNamedPage& page : document.pages) {
        const auto labels = static_cast<int>(document.Content(page).data_items.size());
        ++number;
        if (is_json)
            list.append(QJsonObject{{QStringLiteral("number"), number},
                                    {QStringLiteral("name"), page.name},
                                    {QStringLiteral("labels"), labels}});
        else // The name comes last and is appended: it may contain "%1" or commas.
            Terminal::Print(Tr("%1: labels: %2, ").arg(number).arg(labels) + page.name);
    }
    if (is_json)
        Terminal::Print_Text(QJsonDocument(list).toJson());
}

void Add_Page_Options(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(order_option, QStringLiteral("PAGES"),
                     Tr("Put these pages first, in this order, such as 3,1-2."));
    line->Add_Option(remove_option, QStringLiteral("PAGES"), Tr("Remove these pages."));
    line->Add_Option(extract_option, QStringLiteral("PAGES"),
                     Tr("Write only these pages, in this order."));
    line->Add_Option(rename_option, QStringLiteral("N=NAME"),
                     Tr("Rename page N; may be repeated."));
    line->Add_Option(rotate_option, QStringLiteral("PAGES=ANGLE"),
                     Tr("Rotate these pages with their labels: left, right, or 90, 180 or 270 "
                        "degrees clockwise; may be repeated."));
    line->Add_Flag(CommonOptions::Json, Tr("Print the list of pages as JSON."));
    line->Add_Option(CommonOptions::Output, QStringLiteral("FILE"),
                     Tr("The project to write (required if pages are edited)."));
    line->Add_Force_Flag();
}

void Edit_Pages(const TCommandLine& line)
{
    const TEditPlan plan(line);
    const QString path = line.Argument();
    const QString target = line.Text(CommonOptions::Output);
    // An extract in place of the document would lose the other pages.
    if (plan.extracted.empty())
        Files::Check_Is_No_Legacy_Input(target, path);
    else
        Files::Check_Is_No_Input(target, {path});
    const TOutput output(line, CommonOptions::Output, TOutput::TContent::Project);
    TDocument document = Files::Load(path);
    const std::vector<int> kept = Kept_Pages(plan, path, document);
    Rename_Pages(plan, path, &document);
    Rotate_Pages(plan, path, &document);
    document.Keep_Pages(kept);
    Files::Save(output.Path(), document);
    output.Finish();
}

} // namespace

void Commands::Set(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The document."));
    line->Add_Option(label_size_option, QStringLiteral("N"),
                     Tr("Width and height of the labels in pixels of the pages, from %1 to %2.")
                         .arg(TAppearance::Smallest_Label)
                         .arg(TAppearance::Largest_Label));
    line->Add_Option(label_color_option, QStringLiteral("COLOR"),
                     Tr("Colour of the labels: #rrggbb or a name such as red."));
    line->Add_Option(CommonOptions::Header_1, QStringLiteral("TEXT"),
                     Tr("First header line of reports."));
    line->Add_Option(CommonOptions::Header_2, QStringLiteral("TEXT"),
                     Tr("Second header line of reports."));
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("FILE"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    if (!Is_Any_Set(*line, settings))
        throw TUsageError{Tr("Missing option 'label-size', 'label-color', 'header-1' or "
                             "'header-2'.")};
    TAppearance checked;
    Apply_Settings(*line, &checked); // throws for invalid values
    Files::Check_Is_No_Legacy_Input(line->Text(CommonOptions::Output), line->Argument());
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    TDocument document = Files::Load(line->Argument());
    Apply_Settings(*line, &document.appearance);
    Files::Save(output.Path(), document);
    output.Finish();
}

void Commands::Pages(TCommandLine* line)
{
    Add_Page_Options(line);
    if (!line->Parse())
        return;

    if (Is_Any_Set(*line, edits)) {
        line->Exclude(extract_option, order_option);
        line->Exclude(extract_option, remove_option);
        line->Require(CommonOptions::Output);
        for (const char* const edit : edits)
            line->Exclude(CommonOptions::Json, edit);
        Edit_Pages(*line);
        return;
    }
    if (line->Is_Set(CommonOptions::Output))
        throw TUsageError{Tr("Option 'output' needs 'order', 'remove', 'extract', 'rename' or "
                             "'rotate'.")};
    List_Pages(Files::Load(line->Argument()), line->Is_Set(CommonOptions::Json));
}

void Commands::Merge(TCommandLine* line)
{
    line->Add_Argument(QStringLiteral("FILE"), Tr("The documents, in the order of their pages."),
                       TCommandLine::TCount::One_Or_More);
    line->Add_Output_Option(CommonOptions::Output, QStringLiteral("PROJECT"),
                            Tr("The project to write (required)."));
    if (!line->Parse())
        return;

    const QStringList paths = line->Arguments();
    Files::Check_Is_No_Input(line->Text(CommonOptions::Output), paths);
    const TOutput output(*line, CommonOptions::Output, TOutput::TContent::Project);
    std::vector<TDocument> parts;
    for (const QString& path : paths)
        parts.push_back(Files::Load(path));
    // The latest document is the only one to which pages may be added.
    TDocument merged;
    merged.appearance = parts.front().appearance;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const QString& path = paths.at(static_cast<int>(index));
        if (!(parts[index].appearance == merged.appearance))
            Terminal::Print_Warning(path, Tr("label size, colour and header lines are taken from "
                                             "the first document"));
        const std::size_t first = merged.pages.size() + 1;
        merged.Append(parts[index]);
        Terminal::Print_Detail(path, Tr("pages %1 to %2").arg(first).arg(merged.pages.size()));
    }
    Files::Save(output.Path(), merged);
    output.Finish();
}
