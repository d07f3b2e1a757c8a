#pragma once

#include "src/undo/documentstep.h"

#include <QCoreApplication>
#include <QString>
#include <QUndoStack>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// What a step of the work does, as the program tells when it is taken back.
enum class TStepKind {
    Add_Label,
    Remove_Labels,
    Change_Value,
    Change_Text,
    Change_Border,
    Move_Label,
    Nudge_Labels,
    Renumber,
    Add_Page,
    Remove_Pages,
    Rename_Page,
    Move_Pages,
    Import,
    Change_Size,
    Change_Color
};

/// What is shown and selected. It is no part of the document, but people look there for what they
/// did.
struct TShownState
{
    QVector<int> pages;  ///< ids of the selected pages; a page that is selected alone is shown
    QVector<int> labels; ///< ids of the selected labels
    int next_value = 0;  ///< of the next new label
    int idle_value = 0;  ///< what the value editor shows when nothing is selected
};

/// What is to be shown after a step was taken back or done again.
struct TStepOutcome
{
    TDocumentFacts facts;
    TShownState shown;        ///< as it was before the step, or after it
    bool sets_values = false; ///< whether the step had changed the values of shown
    std::vector<int> pages; ///< that the step touched, be they there now or not; none when it only
                            ///< put them in another order
    QString message;        ///< tells what happened
};

/// The steps of the work on one document: each can be taken back, and done again.
///
/// This is the one place that records. A step begins before anything is changed and ends when all
/// of it is; in between the model notes what changes, and what the model does not know of is
/// compared. The history knows the model and plain values, never the widgets: whoever asks for a
/// step to be taken back shows the document afterwards.
///
/// Keystrokes in one editor on one label become one step, as do the changes of several labels to
/// one border; what changes nothing is no step. There may be as many steps as memory holds, and
/// each takes memory for what it changed.
class TUndoHistory
{
    Q_DECLARE_TR_FUNCTIONS(TUndoHistory)

public:
    /// Tells what is shown and selected now.
    using TShown = std::function<TShownState()>;

    /// @param data   the model; not owned.
    /// @param shown  is called when a step begins and when it has ended.
    TUndoHistory(TData* data, TShown shown);
    ~TUndoHistory();

    /// A step begins.
    /// @param subject     what it is about: the id of a label or a page, a border; 0 when the kind
    ///                    says it all. A step goes on with the last one when kind and subject are
    ///                    the same.
    /// @param count       how many labels, pages or images it is about.
    /// @param look  how labels look before it.
    void Begin(TStepKind kind, int subject, int count, const TLabelLook& look);
    /// The page list has changed since the step began.
    void Note_Rows(const TPageRows& before, const TPageRows& after);
    /// The step has ended; returns whether it changed anything.
    bool End(const TLabelLook& look);

    /// The next step does not go on with the last one, whatever it is.
    void Break();
    /// Another document takes the place of this one: forgets all steps.
    void Clear();

    bool Can_Undo() const { return d_stack.canUndo(); }
    bool Can_Redo() const { return d_stack.canRedo(); }
    /// Takes the last step back in the model; empty when there is none.
    /// @param facts  what belongs to the document besides the model.
    std::optional<TStepOutcome> Undo(const TDocumentFacts& facts);
    /// Does the step again that was taken back last; empty when there is none.
    std::optional<TStepOutcome> Redo(const TDocumentFacts& facts);

private:
    class TCommand;

    static TStepOutcome Outcome_Of(const TCommand& command, const TShownState& shown,
                                   const TDocumentFacts& facts);
    TShownState Shown_Now();
    void Go(void (QUndoStack::*way)(), TDocumentFacts* facts);
    TCommand* Present() const;
    void Drop_Last();

    TData* d_data;
    TShown d_shown;
    TShownState d_seen; ///< what was shown when that was last asked
    QUndoStack d_stack;
    /// A step that has begun and changed nothing yet; null while d_last is continued.
    std::unique_ptr<TCommand> d_new;
    TCommand* d_last = nullptr;        ///< on the stack; what may be continued, null if nothing may
    TLabelLook d_look;                 ///< when the step began
    TDocumentFacts* d_facts = nullptr; ///< what the stack works on while it goes to another state
};
