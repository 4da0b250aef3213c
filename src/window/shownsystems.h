#pragma once

#include <QList>

/// Which systems are on the plots, by their index in the list of systems: those that are displayed,
/// and those whose common detector is shown. A system can be in both lists. One of them is current:
/// the stabilisation buttons and the service tests address it.
class ShownSystems final
{
public:
    static constexpr int maxDisplayed = 50;

    /// In the order in which they were shown.
    const QList<int>& displayed() const { return displayedIndices; }
    const QList<int>& common() const { return commonIndices; }
    /// How many there are in both lists together.
    int count() const { return displayedIndices.size() + commonIndices.size(); }
    /// The displayed system if it is the only one; with none displayed the one whose common
    /// detector is shown, if that is the only one; -1 otherwise.
    int single() const;
    /// The only one on the plots; of several the one that was current before; of none the one that
    /// left last. It begins with 0, and no system need have that index.
    int current() const { return currentIndex; }

    /// False if the system is displayed already, or there is no room for it.
    bool display(int index);
    /// False if the system was not displayed.
    bool hide(int index);
    /// False if the common detector is shown already.
    bool showCommon(int index);
    /// The place in `common` that it left; -1 if it was not shown.
    int hideCommon(int index);
    /// No system is displayed any more. The current one stays.
    void hideAllDisplayed() { displayedIndices.clear(); }
    /// A system, which is in neither list any more, left the list of systems: those behind it move
    /// up. The first displayed one becomes current.
    void forget(int index);

private:
    void makeOnlyOneCurrent(int index);
    void chooseCurrent(int hiddenIndex);

    QList<int> displayedIndices;
    QList<int> commonIndices;
    int currentIndex = 0;
};
