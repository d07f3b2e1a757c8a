#include "src/undo/stepkind.h"

#include <QCoreApplication>

#include <cstddef>

namespace {

struct TEntry
{
    TStepKind kind;
    bool may_continue;
    bool marks_document;
    const char* one;
    const char* several; ///< null if there is only ever one
};

/// In the order of TStepKind.
const TEntry entries[] = {
    {TStepKind::Add_Label, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "add label"), nullptr},
    {TStepKind::Remove_Labels, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "remove 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "remove %1 labels")},
    {TStepKind::Change_Value, true, true, QT_TRANSLATE_NOOP("TUndoHistory", "change value"),
     nullptr},
    {TStepKind::Change_Text, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "change text"),
     nullptr},
    {TStepKind::Change_Border, true, true, QT_TRANSLATE_NOOP("TUndoHistory", "change border"),
     nullptr},
    {TStepKind::Move_Label, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "move label"), nullptr},
    {TStepKind::Nudge_Labels, true, true, QT_TRANSLATE_NOOP("TUndoHistory", "move 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "move %1 labels")},
    {TStepKind::Cut_Labels, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "cut 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "cut %1 labels")},
    {TStepKind::Paste_Labels, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "paste 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "paste %1 labels")},
    {TStepKind::Duplicate_Labels, false, true,
     QT_TRANSLATE_NOOP("TUndoHistory", "duplicate 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "duplicate %1 labels")},
    {TStepKind::Renumber, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "renumber labels"),
     nullptr},
    {TStepKind::Add_Page, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "add page"), nullptr},
    {TStepKind::Remove_Pages, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "remove 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "remove %1 pages")},
    {TStepKind::Rename_Page, true, false, QT_TRANSLATE_NOOP("TUndoHistory", "rename page"),
     nullptr},
    {TStepKind::Move_Pages, false, false, QT_TRANSLATE_NOOP("TUndoHistory", "move 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "move %1 pages")},
    {TStepKind::Import, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "import 1 image"),
     QT_TRANSLATE_NOOP("TUndoHistory", "import %1 images")},
    {TStepKind::Insert_Pages, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "insert 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "insert %1 pages")},
    {TStepKind::Rotate_Pages, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "rotate 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "rotate %1 pages")},
    {TStepKind::Duplicate_Pages, false, true, QT_TRANSLATE_NOOP("TUndoHistory", "duplicate 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "duplicate %1 pages")},
    {TStepKind::Change_Size, true, true, QT_TRANSLATE_NOOP("TUndoHistory", "change label size"),
     nullptr},
    {TStepKind::Change_Color, false, false, QT_TRANSLATE_NOOP("TUndoHistory", "change label color"),
     nullptr},
};

const TEntry& Entry(TStepKind kind)
{
    return entries[static_cast<std::size_t>(kind)];
}

} // namespace

QString StepKind::Name(TStepKind kind, int count)
{
    const TEntry& entry = Entry(kind);
    return count > 1 && entry.several
               ? QCoreApplication::translate("TUndoHistory", entry.several).arg(count)
               : QCoreApplication::translate("TUndoHistory", entry.one);
}

bool StepKind::May_Continue(TStepKind kind)
{
    return Entry(kind).may_continue;
}

bool StepKind::Marks_Document(TStepKind kind)
{
    return Entry(kind).marks_document;
}
