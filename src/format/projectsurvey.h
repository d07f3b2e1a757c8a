#pragma once

#include "core/bytesource.h"
#include "core/progressreport.h"
#include "src/format/filecontent.h"
#include "src/format/itemsurvey.h"
#include "src/model/appearance.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// A page of a project file, as far as it can be read.
struct TSurveyedPage : TFilePage
{
    bool is_whole = true;       ///< false when the page has a defect
    bool is_image_whole = true; ///< false when the image was checked and is damaged
};

/// Everything that can be read of a project file, and all its defects.
struct TProjectSurvey
{
    TAppearance appearance; ///< with values that the window can display
    std::vector<TSurveyedPage> pages;
    std::vector<TProjectDefect> defects; ///< by ascending offset within the file
};

/// Reports each defect of a project file with its byte offset, and reads everything readable.
///
/// ProjectFile::Read stops at the first fault, or fails an assertion. A survey accepts any bytes:
/// it continues after a damaged length, finds the next page and keeps every label that is
/// well-formed. Time and memory grow linearly with the number of bytes.
///
/// For a file without defects, ProjectFile::Read returns the same document. Anything that a reader
/// would drop or change silently is a defect: a page beyond the page count, a name cut at a zero
/// byte, a label whose id another one has.
namespace ProjectSurvey {

enum class TImages {
    Check,      ///< decode every image; one that cannot be decoded to its end is a defect
    Leave_Alone ///< do not look at images
};

/// @param file    the whole file; the images keep it alive.
/// @param report  is called before each page. Its total is a lower bound: the page count may be
///                damaged.
TProjectSurvey Survey(const TByteSource& file, TImages images = TImages::Leave_Alone,
                      const TProgressReport& report = nullptr);

} // namespace ProjectSurvey
