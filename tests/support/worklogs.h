#pragma once

#include "src/format/document.h"
#include "src/safety/basefile.h"
#include "src/safety/workstate.h"

#include <QByteArray>
#include <QString>

/// Documents with unsaved changes, and what their work logs contain.
namespace Support {

TWorkState State_Of(const TDocument& document);

/// The project file that a work log of this document must be converted to.
QByteArray Project_Of(const TDocument& document);

/// A page with an image and some labels.
int Add_Page(TDocument* document, const QString& name, const TPageImage& image, int labels);

/// A saved document as a file.
QByteArray Saved(const TDocument& document, TFilePlaces* places);

/// Saves a document.
/// @return the saved file.
TBaseFile Save_As_Base(const TDocument& document, const QString& path);

/// The project file that a work log would be converted to now; empty on failure. The log may be in
/// use.
/// @param missing_images  receives the number of missing images; may be null.
QByteArray Recovered(const QString& log_path, int* missing_images = nullptr);

} // namespace Support
