#pragma once

#include <QString>

/// What a step does.
enum class TStepKind {
    Add_Label,
    Remove_Labels,
    Change_Value,
    Change_Text,
    Change_Border,
    Move_Label,
    Nudge_Labels,
    Cut_Labels,
    Paste_Labels,
    Duplicate_Labels,
    Renumber,
    Add_Page,
    Remove_Pages,
    Rename_Page,
    Move_Pages,
    Import,
    Insert_Pages,
    Rotate_Pages,
    Duplicate_Pages,
    Change_Size,
    Change_Color
};

namespace StepKind {

/// What a step is called in messages: "add label", "remove 2 labels".
/// @param count  how many labels, pages or images the step affects.
QString Name(TStepKind kind, int count);

/// Whether further changes of the same kind to the same subject belong to the same step.
bool May_Continue(TStepKind kind);

/// Whether a step marks the document as changed, so that the program asks before it is lost.
bool Marks_Document(TStepKind kind);

} // namespace StepKind
