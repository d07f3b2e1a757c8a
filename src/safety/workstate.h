#pragma once

#include "src/model/appearance.h"
#include "src/model/namedpage.h"

#include <functional>
#include <vector>

class TData;

/// The document at one moment. Valid until the document changes.
struct TWorkState
{
    TAppearance appearance;
    std::vector<TNamedPage> pages; ///< the rows of the page list
    const TData* data = nullptr;
};

/// Reads the document as it is now.
using TReadState = std::function<TWorkState()>;
