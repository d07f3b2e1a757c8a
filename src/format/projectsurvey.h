#pragma once

#include "core/stepreport.h"
#include "src/format/itemsurvey.h"
#include "src/model/pageimage.h"
#include "src/model/pageitem.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// A page of a project file, as far as it can be read.
struct TSurveyedPage
{
    QString name;
    TPageImage image; ///< may be undecodable; shares the file's bytes
    std::vector<TDataItem> items;
    bool is_whole = true; ///< false when one of the defects lies in this page
};

/// Everything that can be read of a project file, and everything that is wrong with it.
struct TProjectSurvey
{
    int label_size = 32; ///< brought into the range that a label can have
    QString color_name = QStringLiteral("#f79741"); ///< as it stands there, also when unknown
    QString header_1;
    QString header_2;
    std::vector<TSurveyedPage> pages;
    std::vector<TProjectDefect> defects; ///< in the order of their offsets within the file
};

/// Looks through a project file without taking anything for granted.
///
/// The window opens a file strictly: it stops at a damaged length, also by an assertion. A survey
/// goes on, finds the following pages again, and keeps every label that is readable by itself. No
/// bytes whatsoever stop it or cost more time and memory than their number says.
///
/// No defects mean that the window opens the file whole and shows the same document. What counts as
/// a defect is what the window would not show as it was meant, also where it opens the file without
/// a word: a page that the count leaves out, a name cut at a zero byte, a label that it drops.
namespace ProjectSurvey {

enum class TImages {
    Decode,     ///< every image is decoded, and a defect when it cannot be
    Leave_Alone ///< images are taken for good; costs next to nothing
};

/// @param report  is called before each page. Its total is a lower bound: the page count in the
/// file
///                may be damaged.
TProjectSurvey Survey(const QByteArray& bytes, TImages images = TImages::Leave_Alone,
                      const TStepReport& report = nullptr);

} // namespace ProjectSurvey
