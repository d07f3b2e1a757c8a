#pragma once

class QWidget;

/// The parent of a new widget as the toolkit wants it.
///
/// The constructors of the panels and dialogs promise that they leave their parent alone, and so
/// they take it as const. The toolkit enters each child in its parent's list of children and takes
/// a parent that is not const, so this one cast is where the promise meets the toolkit.
inline QWidget* Parent_Widget(const QWidget* parent)
{
    return const_cast<QWidget*>(parent);
}
