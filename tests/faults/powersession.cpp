// An editing session for tests/faults/powerloss: opens a document, adds labels, imports a page,
// saves and loses the focus now and then. Meanwhile, images are encoded in the background. It ends
// without closing the document, like a power cut.
//
// Usage: powersession DOCUMENT IMAGE [large|linked]
//   large   reads images from the document's file when they are needed, as if it were large
//   linked  also gives the document a second name, so that saves overwrite it in place
//
// Needs tests/faults/faultlibrary.cpp preloaded, which records the session and moves the clock one
// second forward before each edit. Marks in the records: "edit N" after the N-th label, "safe N"
// when the first N labels have to survive any power cut.

#include "faultlibrary.h"

#include "core/bytesource.h"
#include "support/window.h"

#include <QApplication>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <iterator>
#include <unistd.h>

namespace {

constexpr int edits = 40;
constexpr int edits_per_save = 13;
constexpr int edits_per_pause = 9;
constexpr int import_at = 7;
/// The first results are stored in a log that refers to the opened file, the others as bytes.
constexpr int results_at[] = {3, 10};

template <typename TFunction>
TFunction* From_Library(const char* name)
{
    auto* const function = reinterpret_cast<TFunction*>(dlsym(RTLD_DEFAULT, name));
    if (!function)
        qFatal("the fault library is not preloaded");
    return function;
}

void Mark(const char* text, int edit)
{
    static const auto mark = From_Library<decltype(Quillet_Record_Mark)>("Quillet_Record_Mark");
    mark(qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(text)).arg(edit)));
}

void Lose_Focus(TOpenWindow* window)
{
    QApplication::setActiveWindow(window);
    QApplication::setActiveWindow(nullptr);
}

/// Waits until all images are encoded.
void Take_Results(const TOpenWindow& window)
{
    for (const TPageItem& page : window.d_data.Pages()) {
        while (page.image.Needs_Encoding())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void Edit(TOpenWindow* window, int edit)
{
    static const auto advance =
        From_Library<decltype(Quillet_Advance_Clock)>("Quillet_Advance_Clock");
    advance(1);
    window->Add_Item(QPointF(10 + 3 * edit, 20 + edit));
    Mark("edit", edit);
}

} // namespace

int main(int argument_count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argument_count, arguments);
    if (argument_count < 3)
        return 2;
    const QByteArray variant = argument_count > 3 ? arguments[3] : "";
    if (!variant.isEmpty())
        TByteSource::Smallest_Open_File = 0;
    const QByteArray document = arguments[1];
    if (variant == "linked" && link(document.constData(), (document + ".second").constData()) != 0)
        return 2;
    TOpenWindow window;
    window.show();
    window.Open_File(QFile::decodeName(document));
    for (int edit = 1; edit <= edits; ++edit) {
        if (edit == import_at)
            window.Import_Files({QFile::decodeName(arguments[2])});
        Edit(&window, edit);
        QCoreApplication::processEvents();
        if (std::find(std::begin(results_at), std::end(results_at), edit) != std::end(results_at))
            Take_Results(window);
        if (edit % edits_per_pause == 0)
            Lose_Focus(&window);
        if (edit % edits_per_save == 0)
            window.File_Save();
        if (edit % edits_per_pause == 0 || edit % edits_per_save == 0)
            Mark("safe", edit);
    }
    std::_Exit(0);
}
