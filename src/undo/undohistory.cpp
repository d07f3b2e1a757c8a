#include "src/undo/undohistory.h"

#include <QUndoCommand>

#include <utility>

namespace {

/// How the program speaks of a step, about one thing and about several.
struct TStepName
{
    TStepKind kind;
    const char* one;
    const char* several;
    bool may_continue; ///< whether a further step of the same kind and subject is part of it
};

const TStepName step_names[] = {
    {TStepKind::Add_Label, QT_TRANSLATE_NOOP("TUndoHistory", "add label"), nullptr, false},
    {TStepKind::Remove_Labels, QT_TRANSLATE_NOOP("TUndoHistory", "remove 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "remove %1 labels"), false},
    {TStepKind::Change_Value, QT_TRANSLATE_NOOP("TUndoHistory", "change value"), nullptr, true},
    {TStepKind::Change_Text, QT_TRANSLATE_NOOP("TUndoHistory", "change text"), nullptr, false},
    {TStepKind::Change_Border, QT_TRANSLATE_NOOP("TUndoHistory", "change border"), nullptr, true},
    {TStepKind::Move_Label, QT_TRANSLATE_NOOP("TUndoHistory", "move label"), nullptr, false},
    {TStepKind::Nudge_Labels, QT_TRANSLATE_NOOP("TUndoHistory", "move 1 label"),
     QT_TRANSLATE_NOOP("TUndoHistory", "move %1 labels"), true},
    {TStepKind::Renumber, QT_TRANSLATE_NOOP("TUndoHistory", "renumber labels"), nullptr, false},
    {TStepKind::Add_Page, QT_TRANSLATE_NOOP("TUndoHistory", "add page"), nullptr, false},
    {TStepKind::Remove_Pages, QT_TRANSLATE_NOOP("TUndoHistory", "remove 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "remove %1 pages"), false},
    {TStepKind::Rename_Page, QT_TRANSLATE_NOOP("TUndoHistory", "rename page"), nullptr, true},
    {TStepKind::Move_Pages, QT_TRANSLATE_NOOP("TUndoHistory", "move 1 page"),
     QT_TRANSLATE_NOOP("TUndoHistory", "move %1 pages"), false},
    {TStepKind::Import, QT_TRANSLATE_NOOP("TUndoHistory", "import 1 image"),
     QT_TRANSLATE_NOOP("TUndoHistory", "import %1 images"), false},
    {TStepKind::Change_Size, QT_TRANSLATE_NOOP("TUndoHistory", "change label size"), nullptr, true},
    {TStepKind::Change_Color, QT_TRANSLATE_NOOP("TUndoHistory", "change label color"), nullptr,
     false},
};

const TStepName& Name_Of(TStepKind kind)
{
    return step_names[static_cast<std::size_t>(kind)];
}

} // namespace

/// One step on the stack. What it does when its way is gone is to exchange two states.
class TUndoHistory::TCommand : public QUndoCommand
{
public:
    TCommand(TUndoHistory* history, TStepKind step_kind, int step_subject, int count)
        : kind(step_kind)
        , subject(step_subject)
        , d_history(history)
    {
        const TStepName& name = Name_Of(kind);
        setText(count > 1 && name.several ? tr(name.several).arg(count) : tr(name.one));
    }

    void undo() override { step.Swap(d_history->d_data, d_history->d_facts); }

    void redo() override
    {
        // The stack wants a step done that is put on it, but what is recorded has been done.
        if (std::exchange(d_was_done, true))
            step.Swap(d_history->d_data, d_history->d_facts);
    }

    const TStepKind kind;
    const int subject;
    TDocumentStep step;
    TShownState before;
    TShownState after;

private:
    TUndoHistory* d_history;
    bool d_was_done = false;
};

TUndoHistory::TUndoHistory(TData* data, TShown shown)
    : d_data(data)
    , d_shown(std::move(shown))
{
}

TUndoHistory::~TUndoHistory() = default;

void TUndoHistory::Begin(TStepKind kind, int subject, int count, const TLabelLook& look)
{
    const TCommand* const present = Present();
    const bool continues = present && present->kind == kind && present->subject == subject &&
                           Name_Of(kind).may_continue;
    if (!continues) {
        Break();
        d_new = std::make_unique<TCommand>(this, kind, subject, count);
        d_new->before = Shown_Now();
    }
    d_look = look;
    d_data->Set_Record(&Present()->step.data);
}

void TUndoHistory::Note_Rows(const TPageRows& before, const TPageRows& after)
{
    Present()->step.Note_Rows(before, after);
}

bool TUndoHistory::End(const TLabelLook& look)
{
    d_data->Set_Record(nullptr);
    TDocumentStep& step = Present()->step;
    step.Note_Look(d_look, look);
    const bool is_void = step.Is_Void(*d_data, look);
    if (!d_new) {
        if (is_void)
            Drop_Last();
        return true;
    }
    // A step that has changed nothing so far may be gone on with all the same. Without that, each
    // of thousands of labels that have the chosen border already would ask what is selected.
    if (is_void)
        return false;
    std::unique_ptr<TCommand> ended = std::move(d_new);
    ended->after = Shown_Now();
    d_last = ended.get();
    d_stack.push(ended.release());
    return true;
}

void TUndoHistory::Break()
{
    // A step that nothing will be added to needs less room.
    if (d_last)
        d_last->step.data.Close();
    d_last = nullptr;
    d_new.reset();
}

void TUndoHistory::Clear()
{
    Break();
    d_seen = {};
    d_stack.clear();
}

/// What is shown. Steps share lists that did not change in between: ten thousand selected labels
/// cost a step nothing that has nothing to do with them.
TShownState TUndoHistory::Shown_Now()
{
    TShownState shown = d_shown();
    if (shown.pages == d_seen.pages)
        shown.pages = d_seen.pages;
    if (shown.labels == d_seen.labels)
        shown.labels = d_seen.labels;
    d_seen = shown;
    return shown;
}

/// The step that is going on, or may be gone on with; null when there is none.
TUndoHistory::TCommand* TUndoHistory::Present() const
{
    return d_new ? d_new.get() : d_last;
}

/// The last step has been continued to where it began.
void TUndoHistory::Drop_Last()
{
    d_last->setObsolete(true);
    d_last = nullptr;
    // The stack lets go of an obsolete step instead of undoing it.
    d_stack.undo();
}

std::optional<TStepOutcome> TUndoHistory::Undo(const TDocumentFacts& facts)
{
    if (!d_stack.canUndo())
        return std::nullopt;
    const auto* const command = static_cast<const TCommand*>(d_stack.command(d_stack.index() - 1));
    TStepOutcome outcome = Outcome_Of(*command, command->before, facts);
    outcome.message = tr("Taken back: %1").arg(command->text());
    Go(&QUndoStack::undo, &outcome.facts);
    return outcome;
}

std::optional<TStepOutcome> TUndoHistory::Redo(const TDocumentFacts& facts)
{
    if (!d_stack.canRedo())
        return std::nullopt;
    const auto* const command = static_cast<const TCommand*>(d_stack.command(d_stack.index()));
    TStepOutcome outcome = Outcome_Of(*command, command->after, facts);
    outcome.message = tr("Done again: %1").arg(command->text());
    Go(&QUndoStack::redo, &outcome.facts);
    return outcome;
}

TStepOutcome TUndoHistory::Outcome_Of(const TCommand& command, const TShownState& shown,
                                      const TDocumentFacts& facts)
{
    TStepOutcome outcome;
    outcome.facts = facts;
    outcome.shown = shown;
    outcome.sets_values = command.before.next_value != command.after.next_value ||
                          command.before.idle_value != command.after.idle_value;
    // What moves in the list is what is selected there. That it moved, and not those that it
    // passed, cannot be told from the two orders.
    if (command.kind != TStepKind::Move_Pages)
        outcome.pages = command.step.Touched_Pages();
    return outcome;
}

void TUndoHistory::Go(void (QUndoStack::*way)(), TDocumentFacts* facts)
{
    Break();
    d_facts = facts;
    (d_stack.*way)();
    d_facts = nullptr;
}
