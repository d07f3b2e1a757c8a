// Random sessions in which other processes truncate, overwrite, replace, rename and delete the file
// of the open document, whose images are read from it when they are needed.
//
// The environment variables QUILLET_SESSIONS and QUILLET_SESSION_SEED set the number of sessions
// and the seed of the first one; each of the others has the next seed. QUILLET_SESSION_TRACE prints
// every action. QUILLET_SESSION_TABLE names a file that gets a line: sessions, actions, actions of
// other processes, saves, checked pages and those with a placeholder, separated by tabs.

#include "support/modal.h"
#include "support/pages.h"
#include "support/project.h"
#include "support/support.h"
#include "support/window.h"
#include "support/worklogs.h"

#include "core/bytesource.h"
#include "src/displaywidget.h"
#include "src/export/printedpdf.h"
#include "src/model/pixelstore.h"
#include "src/pagewidget.h"
#include "src/safety/safetynet.h"
#include "src/undo/undohistory.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <sys/stat.h>

namespace {

constexpr int default_sessions = 40;
constexpr unsigned int default_seed = 20240229;
constexpr int actions_per_session = 16;
constexpr int page_count = 4;
/// Labels stay below these rows, which show the picture in an export, too.
constexpr int rows_above_labels = 40;
const QSize picture_size(90, 120);

/// The test's copy of a page.
struct TPlainPage
{
    int picture = -1;   ///< which of the test's pictures; -1 for none
    QStringList labels; ///< value, text and position
};
using TPlainPages = std::vector<TPlainPage>;

bool Have_Same_Labels(const TPlainPage& left, const TPlainPage& right)
{
    return left.labels == right.labels;
}

QString Label_Text(int value, const QString& text, const QPointF& position)
{
    return QStringLiteral("%1 '%2' at %3,%4")
        .arg(QString::number(value), text, QString::number(position.x()),
             QString::number(position.y()));
}

/// Each picture has a color of its own and a pattern.
QImage Picture(int number)
{
    QImage image(picture_size, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y, QColor::fromHsv(number * 80, 200, 100 + (x + 2 * y) % 100));
    }
    return image;
}

/// PNG files of all pictures have the same size, so that each of them can be read in place of
/// another one. Decoders ignore what follows the end of the image. As in other PNG files, the last
/// bytes differ: recovered work recognizes an image by them.
QByteArray Padded_Png(int number)
{
    constexpr int size = 40'000;
    const QByteArray png = Support::Png(Picture(number));
    return png + QByteArray(size - png.size(), char('a' + number));
}

/// A document of another program or window: pictures in another order, and other labels.
/// @param shift  0 for the document that is opened first.
QByteArray Document(int shift)
{
    QByteArray bytes = Support::Header(32, "#f79741", "", "", page_count);
    for (int page = 0; page < page_count; ++page)
        bytes += Support::Page_Record(
            "p" + QByteArray::number(page), Padded_Png((page + shift) % page_count),
            Support::Item_List(Support::Item_Element(
                "1", QByteArray::number(100 * shift + page + 10), "", "2", "40.00,70.00")));
    return bytes;
}

/// The number of a picture; -1 for no image or the placeholder, nothing for another image.
/// @param rows  number of rows that are compared.
std::optional<int> Picture_In(const QImage& image, int rows = picture_size.height())
{
    if (image.isNull())
        return -1;
    const QRect part(0, 0, picture_size.width(), rows);
    for (int number = 0; number < page_count; ++number) {
        if (image.size() == picture_size &&
            Support::Difference(image.copy(part), Picture(number).copy(part)).isEmpty())
            return number;
    }
    const bool is_placeholder = image.pixelColor(image.width() / 2, 2) == QColor(Qt::lightGray) &&
                                image.pixelColor(1, 1) == QColor(Qt::gray);
    return is_placeholder ? std::optional<int>(-1) : std::nullopt;
}

/// The labels of an item-list document; nothing if it is not one.
std::optional<QStringList> Labels_In(const QByteArray& items)
{
    QStringList labels;
    QMap<QString, QString> texts;
    QXmlStreamReader xml(items);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("Item")) {
            texts.clear();
        } else if (xml.isStartElement() && xml.name() != QLatin1String("Quillet_Data")) {
            const QString name = xml.name().toString();
            texts[name] = xml.readElementText();
        } else if (xml.isEndElement() && xml.name() == QLatin1String("Item")) {
            const QStringList position = texts["Position"].split(',');
            labels += Label_Text(texts["Value"].toInt(), texts["Text"],
                                 {position.value(0).toDouble(), position.value(1).toDouble()});
        }
    }
    return xml.hasError() ? std::nullopt : std::optional<QStringList>(labels);
}

/// Reads length, content, length, content.
class TFields
{
public:
    explicit TFields(const QByteArray& bytes)
        : d_bytes(bytes)
    {
    }

    bool Is_Valid() const { return d_is_valid; }
    bool Is_At_End() const { return d_is_valid && d_position == d_bytes.size(); }

    int Number()
    {
        int number = 0;
        const QByteArray bytes = Next(sizeof(number));
        if (d_is_valid)
            std::memcpy(&number, bytes.constData(), sizeof(number));
        return number;
    }

    QByteArray Field() { return Next(Number()); }

private:
    QByteArray Next(int length)
    {
        d_is_valid = d_is_valid && length >= 0 && length <= d_bytes.size() - d_position;
        if (!d_is_valid)
            return QByteArray();
        d_position += length;
        return d_bytes.mid(d_position - length, length);
    }

    QByteArray d_bytes;
    int d_position = 0;
    bool d_is_valid = true;
};

/// The pages of a complete document; nothing if it is not one, or if a page has an image that is
/// none of the pictures.
std::optional<TPlainPages> Pages_In(const QByteArray& document)
{
    TFields fields(document);
    if (Support::Number(static_cast<quint32>(fields.Number())) != Support::Magic())
        return std::nullopt;
    fields.Number();
    for (int text = 0; text < 3; ++text)
        fields.Field();
    TPlainPages pages;
    const int count = fields.Number();
    for (int page = 0; page < count && fields.Is_Valid(); ++page) {
        fields.Field();
        const std::optional<int> picture = Picture_In(QImage::fromData(fields.Field()));
        const std::optional<QStringList> labels = Labels_In(fields.Field());
        if (!picture || !labels)
            return std::nullopt;
        pages.push_back({*picture, *labels});
    }
    return fields.Is_At_End() ? std::optional<TPlainPages>(pages) : std::nullopt;
}

/// Makes the next use of each image read its bytes.
void Empty_Pixel_Store()
{
    TPixelStore& store = TPixelStore::Shared();
    store.Insert(&store, QImage(8192, 8192, QImage::Format_RGB32));
    store.Remove(&store);
}

ino_t Inode_Of(const QString& path)
{
    struct stat state = {};
    return stat(qPrintable(path), &state) == 0 ? state.st_ino : 0;
}

/// What another process does to a file: a shell script.
struct THostileAction
{
    const char* name;
    /// $1 is the file, $2 another document of the same size, $3 a number of bytes, $4 a free name.
    const char* script;
    bool is_in_place; ///< changes the content of the file
};

const THostileAction hostile_actions[] = {
    {"truncates", "truncate -s $3 \"$1\"", true},
    {"empties", ": >\"$1\"", true},
    {"appends", "echo appended >>\"$1\"", true},
    {"overwrites", "dd if=\"$2\" of=\"$1\" conv=notrunc status=none", true},
    {"overwrites a part", "tail -c $3 \"$2\" | dd of=\"$1\" conv=notrunc status=none", true},
    {"empties and writes", "cat \"$2\" >\"$1\"", true},
    {"replaces", "cp \"$2\" \"$1.new\" && mv \"$1.new\" \"$1\"", false},
    {"creates again", "rm -f \"$1\" && cp \"$2\" \"$1\"", false},
    {"deletes", "rm -f \"$1\"", false},
    {"renames", "mv \"$1\" \"$4\"", false},
    {"renames and restores", "mv \"$1\" \"$4\" && mv \"$4\" \"$1\"", false},
    {"links", "ln \"$1\" \"$4\"", false},
    {"makes a link of", "mv \"$1\" \"$4\" && ln -s \"$4\" \"$1\"", false},
    {"protects", "chmod 444 \"$1\"", false},
    {"makes a folder of", "rm -f \"$1\" && mkdir \"$1\"", false},
};

} // namespace

class TestHostileSessions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void other_processes_cause_no_wrong_picture_and_no_lost_label();

private:
    using TAction = void (TestHostileSessions::*)();
    struct TChoice
    {
        const char* name;
        int weight;
        TAction run;
    };
    struct TCounts
    {
        int actions = 0;
        int hostile = 0;
        int saves = 0;
        int pages = 0;
        int placeholders = 0;
    };

    int Number_Below(int limit) { return static_cast<int>(d_random() % unsigned(limit)); }
    void Run_Session(unsigned int seed);
    void Run_Action();
    void Fail(const QString& problem);
    void Check(bool is_right, const QString& problem)
    {
        if (!is_right)
            Fail(problem);
    }
    QString In(const QString& name) const { return d_folder->filePath(name); }
    QString Free_Name() { return In(QStringLiteral("file%1").arg(++d_names)); }
    int Page_Id(int page) const { return d_window->d_page_widget->Page_Ids()[page]; }
    int Shown_Page() const;
    bool Is_Possible(int page, std::optional<int> picture) const;
    void Check_Image(int page, const QImage& image, const QString& where,
                     int rows = picture_size.height());
    void Check_Labels();
    void Check_Saved();
    void Check_Foreign_Versions();
    void Start_With(const QByteArray& document);
    void Set_Own_Version(const QByteArray& version);
    void Remember();

    void Show_Page();
    void Add_Label();
    void Change_Text();
    void Undo();
    void Redo();
    void Save();
    void Save_To_New_File();
    void Open();
    void Export_Images();
    void Export_Report();
    void Recover();
    void Check_Pictures();
    void Drop_Pixels();
    void Act_As_Other_Process();

    static const TChoice choices[];

    std::mt19937 d_random;
    std::unique_ptr<QTemporaryDir> d_folder;
    std::unique_ptr<TOpenWindow> d_window;
    TPlainPages d_pages;
    std::vector<TPlainPages> d_states; ///< for undo
    std::size_t d_state = 0;
    QString d_path;                     ///< of the document
    ino_t d_image_inode = 0;            ///< of the file that contains the images; 0 if it is safe
    std::vector<bool> d_may_be_lost;    ///< for each page, whether its image was overwritten
    QByteArray d_own_version;           ///< that the window opened or saved last
    ino_t d_own_inode = 0;              ///< of that version
    bool d_is_own_overwritten = false;  ///< that version
    std::vector<QByteArray> d_replaced; ///< by saves, versions of other processes
    int d_names = 0;
    QStringList d_trace;
    QString d_problem;
    TCounts d_counts;
};

const TestHostileSessions::TChoice TestHostileSessions::choices[] = {
    {"show a page", 10, &TestHostileSessions::Show_Page},
    {"add a label", 14, &TestHostileSessions::Add_Label},
    {"change a text", 6, &TestHostileSessions::Change_Text},
    {"undo", 6, &TestHostileSessions::Undo},
    {"redo", 3, &TestHostileSessions::Redo},
    {"save", 10, &TestHostileSessions::Save},
    {"save to a new file", 3, &TestHostileSessions::Save_To_New_File},
    {"open", 4, &TestHostileSessions::Open},
    {"export images", 2, &TestHostileSessions::Export_Images},
    {"export a report", 1, &TestHostileSessions::Export_Report},
    {"recover", 4, &TestHostileSessions::Recover},
    {"check the pictures", 6, &TestHostileSessions::Check_Pictures},
    {"drop pixels", 8, &TestHostileSessions::Drop_Pixels},
    {"another process", 24, &TestHostileSessions::Act_As_Other_Process},
};

void TestHostileSessions::initTestCase()
{
    TByteSource::Smallest_Open_File = 0;
    for (int number = 0; number < page_count; ++number) {
        QCOMPARE(Picture_In(Picture(number)), std::optional<int>(number));
        const std::optional<TPlainPages> pages = Pages_In(Document(number));
        QVERIFY(pages && pages->size() == page_count);
        QCOMPARE(pages->front().picture, number);
        QVERIFY(!Pages_In(Document(number).chopped(1)));
    }
}

void TestHostileSessions::other_processes_cause_no_wrong_picture_and_no_lost_label()
{
    bool is_given = false;
    const int given = qEnvironmentVariableIntValue("QUILLET_SESSION_SEED", &is_given);
    const unsigned int first_seed = is_given ? static_cast<unsigned int>(given) : default_seed;
    const int given_sessions = qEnvironmentVariableIntValue("QUILLET_SESSIONS", &is_given);
    const int sessions = is_given ? given_sessions : default_sessions;
    for (int session = 0; session < sessions; ++session) {
        const unsigned int seed = first_seed + static_cast<unsigned int>(session);
        Run_Session(seed);
        QVERIFY2(d_problem.isEmpty(),
                 qPrintable(QStringLiteral("seed %1: %2\n%3")
                                .arg(QString::number(seed), d_problem, d_trace.join('\n'))));
    }
    QVERIFY(d_counts.hostile >= 2 * sessions);
    QVERIFY(d_counts.saves >= sessions);
    QVERIFY(d_counts.placeholders >= sessions / 10);
    QFile table(QFile::decodeName(qgetenv("QUILLET_SESSION_TABLE")));
    if (table.open(QIODevice::WriteOnly))
        table.write(QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                        .arg(sessions)
                        .arg(d_counts.actions)
                        .arg(d_counts.hostile)
                        .arg(d_counts.saves)
                        .arg(d_counts.pages)
                        .arg(d_counts.placeholders)
                        .toUtf8());
}

void TestHostileSessions::Run_Session(unsigned int seed)
{
    d_random.seed(seed);
    d_folder = std::make_unique<QTemporaryDir>();
    d_window = std::make_unique<TOpenWindow>();
    d_window->show();
    const auto close = qScopeGuard([this] {
        d_window->d_safety_net->Discard();
        d_window.reset();
        QDir(QDir::homePath() + "/.quillet").removeRecursively();
    });
    d_replaced.clear();
    d_trace.clear();
    d_path = In("document");
    Support::Write_File(d_path, Document(0));
    Start_With(Document(0));
    for (int action = 0; action < actions_per_session && d_problem.isEmpty(); ++action)
        Run_Action();
    // What remains of the document can be saved.
    if (d_problem.isEmpty())
        Check_Pictures();
    if (d_problem.isEmpty())
        Save_To_New_File();
}

void TestHostileSessions::Run_Action()
{
    std::vector<int> weights;
    for (const TChoice& choice : choices)
        weights.push_back(choice.weight);
    std::discrete_distribution<int> distribution(weights.begin(), weights.end());
    const TChoice& choice = choices[distribution(d_random)];
    d_trace += choice.name;
    if (qEnvironmentVariableIsSet("QUILLET_SESSION_TRACE"))
        qInfo("%s", choice.name);
    ++d_counts.actions;
    d_window->d_history->Finish_Step();
    (this->*choice.run)();
    Check_Labels();
}

/// Keeps the first problem of a session.
void TestHostileSessions::Fail(const QString& problem)
{
    if (d_problem.isEmpty())
        d_problem = problem;
}

/// Opens the document, which is in the file.
void TestHostileSessions::Start_With(const QByteArray& document)
{
    d_window->Open_File(d_path);
    d_window->Update_Document_Actions();
    Set_Own_Version(document);
    d_image_inode = d_own_inode;
    d_pages = Pages_In(document).value_or(TPlainPages());
    d_states = {d_pages};
    d_state = 0;
    d_may_be_lost.assign(d_pages.size(), false);
}

/// Call this when the window has opened or saved the document.
void TestHostileSessions::Set_Own_Version(const QByteArray& version)
{
    d_own_version = version;
    d_own_inode = Inode_Of(d_path);
    d_is_own_overwritten = false;
}

/// Call this after a change of the document. Removes the undone states and adds the new one.
void TestHostileSessions::Remember()
{
    d_states.resize(d_state + 1);
    d_states.push_back(d_pages);
    ++d_state;
}

/// The page with labels that can be edited; -1 without.
int TestHostileSessions::Shown_Page() const
{
    const int page = d_window->d_page_widget->Page_Ids().indexOf(d_window->d_data.Active_Page());
    return page >= 0 && d_pages[std::size_t(page)].picture >= 0 ? page : -1;
}

/// Whether a page may have this picture: its own one, or the placeholder if it is lost.
bool TestHostileSessions::Is_Possible(int page, std::optional<int> picture) const
{
    return picture == d_pages[std::size_t(page)].picture ||
           (picture == -1 && d_may_be_lost[std::size_t(page)]);
}

void TestHostileSessions::Check_Image(int page, const QImage& image, const QString& where, int rows)
{
    const std::optional<int> picture = Picture_In(image, rows);
    ++d_counts.pages;
    d_counts.placeholders += picture == -1 ? 1 : 0;
    Check(Is_Possible(page, picture), QStringLiteral("page %1 has picture %2 %3")
                                          .arg(page)
                                          .arg(picture.value_or(page_count))
                                          .arg(where));
}

/// Compares the labels in the window with those that the session has made.
void TestHostileSessions::Check_Labels()
{
    const std::vector<TPageItem>& pages = d_window->d_data.Pages();
    Check(pages.size() == d_pages.size(), QStringLiteral("%1 pages").arg(pages.size()));
    for (std::size_t page = 0; page < qMin(pages.size(), d_pages.size()); ++page) {
        QStringList labels;
        for (const TDataItem& item : pages[page].data_items)
            labels += Label_Text(item.value, item.text, item.position);
        Check(labels == d_pages[page].labels,
              QStringLiteral("page %1 has the labels %2 instead of %3")
                  .arg(QString::number(page), labels.join("; "), d_pages[page].labels.join("; ")));
    }
}

void TestHostileSessions::Show_Page()
{
    const int page = Number_Below(int(d_pages.size()));
    Support::Show_Page(d_window.get(), Page_Id(page));
    if (d_pages[std::size_t(page)].picture >= 0)
        Check_Image(page, d_window->d_display_widget->Background_Pixmap().toImage(), "in the view");
}

void TestHostileSessions::Add_Label()
{
    const int page = Shown_Page();
    if (page < 0)
        return;
    const QPointF point(30 + Number_Below(30), rows_above_labels + 25 + Number_Below(30));
    d_window->Add_Item(point);
    const TDataItem added = d_window->d_data.Item(d_window->d_data.Item_Count() - 1);
    d_pages[std::size_t(page)].labels += Label_Text(added.value, QString(), point);
    Remember();
}

void TestHostileSessions::Change_Text()
{
    const int page = Shown_Page();
    if (page < 0 || d_pages[std::size_t(page)].labels.isEmpty())
        return;
    QStringList& labels = d_pages[std::size_t(page)].labels;
    const int index = Number_Below(labels.size());
    const TDataItem item = d_window->d_data.Item(index);
    const QString text = QStringLiteral("text %1").arg(Number_Below(1000));
    if (text == item.text)
        return;
    d_window->Change_Item_Text(item.id, text);
    labels[index] = Label_Text(item.value, text, item.position);
    Remember();
}

void TestHostileSessions::Undo()
{
    QApplication::setActiveWindow(d_window.get());
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Z, Qt::ControlModifier);
    if (d_state > 0)
        d_pages = d_states[--d_state];
}

void TestHostileSessions::Redo()
{
    QApplication::setActiveWindow(d_window.get());
    QTest::keyClick(d_window->d_display_widget, Qt::Key_Y, Qt::ControlModifier);
    if (d_state + 1 < d_states.size())
        d_pages = d_states[++d_state];
}

/// Checks the file that the window has just saved.
void TestHostileSessions::Check_Saved()
{
    ++d_counts.saves;
    Set_Own_Version(Support::Read_File(d_path));
    const std::optional<TPlainPages> saved = Pages_In(d_own_version);
    Check(saved && saved->size() == d_pages.size(), "the saved document is damaged");
    if (!d_problem.isEmpty())
        return;
    for (std::size_t page = 0; page < saved->size(); ++page) {
        const TPlainPage& actual = (*saved)[page];
        Check(Is_Possible(int(page), actual.picture),
              QStringLiteral("page %1 was saved with picture %2").arg(page).arg(actual.picture));
        Check(actual.labels == d_pages[page].labels,
              QStringLiteral("page %1 was saved with %2").arg(page).arg(actual.labels.join("; ")));
    }
    Check_Foreign_Versions();
}

/// Looks for the replaced versions of other processes among the separate backups.
void TestHostileSessions::Check_Foreign_Versions()
{
    const QDir backups(QDir::homePath() + "/.quillet/backup");
    QList<QByteArray> contents;
    for (const QString& name : backups.entryList({"*-*.quillet"}))
        contents += Support::Read_File(backups.filePath(name));
    for (const QByteArray& version : d_replaced)
        Check(contents.contains(version), "the version of another process is lost");
}

void TestHostileSessions::Save()
{
    const QByteArray replaced = Support::Read_File(d_path);
    const ino_t inode = Inode_Of(d_path);
    const bool is_folder = QFileInfo(d_path).isDir();
    std::vector<Support::TAnswer> answers;
    if (is_folder)
        answers.push_back(Support::Press(QMessageBox::Ok));
    const QString difference =
        Support::Run_Answering([this] { d_window->d_action_save->trigger(); }, std::move(answers));
    Check(difference.isEmpty(), difference);
    if (is_folder)
        return;
    if (!replaced.isEmpty() && replaced != d_own_version)
        d_replaced.push_back(replaced);
    Check_Saved();
    // Before a file is overwritten in place, its images are copied.
    if (inode == d_image_inode && Inode_Of(d_path) == inode)
        d_image_inode = 0;
}

void TestHostileSessions::Save_To_New_File()
{
    d_path = Free_Name();
    const QString difference =
        Support::Run_Answering([this] { d_window->d_action_save_as->trigger(); },
                               {Support::Choose({d_path + ".quillet"})});
    d_path += ".quillet";
    Check(difference.isEmpty(), difference);
    Check_Saved();
}

/// Opens the file at the document's path if it is complete, whoever wrote it.
void TestHostileSessions::Open()
{
    const QByteArray bytes = Support::Read_File(d_path);
    if (Pages_In(bytes))
        Start_With(bytes);
}

void TestHostileSessions::Export_Images()
{
    QDir(In("images")).removeRecursively();
    QDir(d_folder->path()).mkdir("images");
    const QList<int> ids = d_window->d_page_widget->Page_Ids();
    Check(d_window->Export_Images(In("images"), ids), "the images are not exported");
    for (int page = 0; page < ids.size(); ++page) {
        const QStringList names =
            QDir(In("images")).entryList({QStringLiteral("*p%1*").arg(page)}, QDir::Files);
        if (d_pages[std::size_t(page)].picture >= 0)
            Check_Image(page, QImage(In("images/" + names.value(0))), "in its exported image",
                        rows_above_labels);
    }
}

void TestHostileSessions::Export_Report()
{
    const bool is_written = d_window->Export_PDF(
        In("report.pdf"), d_window->d_page_widget->Page_Ids(), {0, 1, QString(), QString()});
    Check(is_written && PrintedPdf::Is_Complete(In("report.pdf")), "the report is not exported");
}

/// Checks what would be recovered if the program were killed now.
void TestHostileSessions::Recover()
{
    d_window->Flush_Work();
    const QDir folder(QDir::homePath() + "/.quillet/recovery");
    const QStringList logs = folder.entryList({"*.log"});
    const std::optional<TPlainPages> own = Pages_In(d_own_version);
    const bool is_saved = own && std::equal(own->begin(), own->end(), d_pages.begin(),
                                            d_pages.end(), Have_Same_Labels);
    Check(is_saved || logs.size() == 1, "there is no work log");
    if (logs.isEmpty())
        return;
    const std::optional<TPlainPages> recovered =
        Pages_In(Support::Recovered(folder.filePath(logs.first())));
    Check(recovered && recovered->size() == d_pages.size(), "the work is not recovered");
    if (!d_problem.isEmpty())
        return;
    for (std::size_t page = 0; page < d_pages.size(); ++page) {
        const TPlainPage& actual = (*recovered)[page];
        // Images that are only in the overwritten file are stored again bit by bit.
        const bool is_missing = actual.picture == -1 && d_is_own_overwritten;
        Check(
            is_missing || Is_Possible(int(page), actual.picture),
            QStringLiteral("page %1 was recovered with picture %2").arg(page).arg(actual.picture));
        Check(actual.labels == d_pages[page].labels,
              QStringLiteral("page %1 was recovered with the labels %2")
                  .arg(QString::number(page), actual.labels.join("; ")));
    }
}

void TestHostileSessions::Check_Pictures()
{
    for (int page = 0; page < int(d_pages.size()); ++page)
        Check_Image(page, d_window->d_data.Page(Page_Id(page)).image, "in the document");
}

void TestHostileSessions::Drop_Pixels()
{
    Empty_Pixel_Store();
}

void TestHostileSessions::Act_As_Other_Process()
{
    const THostileAction& action =
        hostile_actions[Number_Below(static_cast<int>(std::size(hostile_actions)))];
    const QString other = In("other");
    Support::Write_File(other, Document(1 + Number_Below(page_count - 1)));
    const int bytes = Number_Below(Document(0).size());
    // Mostly the document, sometimes another file of the session.
    QStringList paths = QDir(d_folder->path()).entryList({"file*"}, QDir::Files);
    const QString path =
        !paths.isEmpty() && Number_Below(4) == 0 ? In(paths[Number_Below(paths.size())]) : d_path;
    const ino_t inode = Inode_Of(path);
    d_trace.last() += QStringLiteral(" %1 %2 (%3)").arg(action.name, path).arg(bytes);
    // A change within a clock tick would leave the file's time as it is.
    const QString script =
        QStringLiteral("sleep 0.012; [ ! -d \"$1\" ] || rmdir \"$1\"; ") + action.script;
    QProcess process;
    process.start("/bin/sh",
                  {"-c", script, "sh", path, other, QString::number(bytes), Free_Name()});
    Check(process.waitForFinished(), "the other process does not end");
    ++d_counts.hostile;
    if (action.is_in_place && inode == d_image_inode && inode != 0)
        d_may_be_lost.assign(d_pages.size(), true);
    if (action.is_in_place && inode == d_own_inode)
        d_is_own_overwritten = true;
}

QTEST_MAIN(TestHostileSessions)
#include "test_hostilesessions.moc"
