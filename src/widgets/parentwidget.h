#pragma once

class QWidget;

/// Removes the const from a parent widget.
///
/// The constructors of the panels and dialogs take a const parent, but Qt needs a mutable one to
/// add the child to it. This is the only such cast.
inline QWidget* Parent_Widget(const QWidget* parent)
{
    return const_cast<QWidget*>(parent);
}
