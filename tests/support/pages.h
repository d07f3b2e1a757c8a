#pragma once

#include "support/window.h"

#include <QImage>
#include <QStringList>

#include <vector>

/// Documents for window tests, made without user actions.
namespace Support {

/// Adds a page to the document and to the page list without showing it; returns its id.
/// @param image  may be null.
int Add_Page(TOpenWindow* window, const QImage& image, const std::vector<TDataItem>& items = {});

/// Describes what the view shows: a line for the page image and one for each label in order.
QStringList View_In_Words(const TOpenWindow& window);

} // namespace Support
