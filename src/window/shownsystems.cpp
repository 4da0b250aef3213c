#include "window/shownsystems.h"

#include <algorithm>

int ShownSystems::single() const
{
    const QList<int>& shown = displayedIndices.isEmpty() ? commonIndices : displayedIndices;
    return shown.size() == 1 ? shown.first() : -1;
}

bool ShownSystems::display(int index)
{
    // A displayed system keeps its place.
    if (displayedIndices.contains(index) || displayedIndices.size() >= maxDisplayed)
        return false;
    displayedIndices.append(index);
    makeOnlyOneCurrent(index);
    return true;
}

bool ShownSystems::showCommon(int index)
{
    if (commonIndices.contains(index))
        return false;
    commonIndices.append(index);
    makeOnlyOneCurrent(index);
    return true;
}

void ShownSystems::makeOnlyOneCurrent(int index)
{
    if (count() == 1)
        currentIndex = index;
}

bool ShownSystems::hide(int index)
{
    if (!displayedIndices.removeOne(index))
        return false;
    chooseCurrent(index);
    return true;
}

int ShownSystems::hideCommon(int index)
{
    const int place = commonIndices.indexOf(index);
    if (place >= 0) {
        commonIndices.removeAt(place);
        chooseCurrent(index);
    }
    return place;
}

/// The only one that is left on the plots, or else the last one that was there.
void ShownSystems::chooseCurrent(int hiddenIndex)
{
    if (count() > 1)
        return;
    const QList<int> left = displayedIndices + commonIndices;
    currentIndex = left.isEmpty() ? hiddenIndex : left.first();
}

void ShownSystems::forget(int index)
{
    const auto moveUp = [index](int& each) {
        if (each > index)
            --each;
    };
    std::for_each(displayedIndices.begin(), displayedIndices.end(), moveUp);
    std::for_each(commonIndices.begin(), commonIndices.end(), moveUp);
    moveUp(currentIndex);
    if (!displayedIndices.isEmpty())
        currentIndex = displayedIndices.first();
}
