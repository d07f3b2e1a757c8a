#pragma once

#include "core/progressreport.h"
#include "src/findings/findings.h"
#include "src/model/appearance.h"
#include "src/model/pageimage.h"

#include <QString>

#include <vector>

class QIODevice;
class TData;

/// What a web page shows.
struct TWebPage
{
    QString title;
    QString subtitle;       ///< may be empty
    TAppearance appearance; ///< of the labels
    TFindings findings;
    std::vector<TPageImage> images; ///< one for each page of the findings
    int max_width = 0; ///< wider images are scaled down to this many pixels; 0 for no limit
};

/// Writes the pages of a document with their labels and the list of findings into one HTML file,
/// which loads nothing else. A Content-Security-Policy allows its own script and style by their
/// hashes, and embedded images.
namespace WebPage {

/// The web page of a document, named after its first header line.
/// @param findings  of the document.
/// @param title     for a document without that header line.
TWebPage Of(const TData& data, const TAppearance& appearance, const TFindings& findings,
            const QString& title);

/// Writes the web page; false when the device does not accept all of it. Needs a QGuiApplication to
/// measure texts.
/// @param report  called before each page; may be empty.
bool Write(const TWebPage& page, const TProgressReport& report, QIODevice* device);

/// Replaces a file with the web page. On failure, returns false and the file is unchanged.
/// @param problem  receives the reason on failure; may be null.
bool Save(const TWebPage& page, const TProgressReport& report, const QString& path,
          QString* problem = nullptr);

} // namespace WebPage
