#pragma once

#include "support/window.h"

#include <QColor>
#include <QImage>
#include <QStringList>

#include <memory>
#include <vector>

/// Documents for window tests, created without user actions.
namespace Support {

/// Adds a page to the document and to the page list without showing it; returns its id.
/// @param image  may be null.
int Add_Page(TOpenWindow* window, const QImage& image, const std::vector<TDataItem>& items = {});

/// Selects a page in the page list, which shows it.
void Show_Page(TOpenWindow* window, int page_id);

/// A visible window without pages or changes, whose labels have this size and colour.
std::unique_ptr<TOpenWindow> New_Window(int label_size, const QColor& label_color);

/// Describes what the view shows: a line for the page image and one for each label in order.
QStringList View_In_Words(const TOpenWindow& window);

} // namespace Support
