#pragma once

#include "oxa/grids/StringGridCheck.h"

#include <QList>
#include <QPixmap>

#include <array>
#include <vector>

namespace oxa {

// The DFCS_FLAT style of the platform's check boxes, kept as the grid's
// check-box drawing style.
inline constexpr int DFCS_FLAT = 0x4000;

class TStringGridCheck::Private
{
public:
    int FCheckRow = 0;
    int FFlatCheckbox = 0;
    int FASloupec = 0;
    QList<bool> FOznacene;
    std::array<QPixmap, 3> FSortImages; // indexed by TSortOrder
    TSortOrder FSortOrder = soNone;
    bool FSortingAllow = false;
    bool FCheckBoxAllow = false;
    bool FShowOrderMark = false;
    int MouseDownRow = -1;
    int MouseDownCol = -1;
};

// The partition sort over an index array: Indexy[L..R] is ordered so that
// the keys it points to compare ascending by sign(Compare) * Direction.
// The middle element is the pivot; I runs right while the product is
// negative, J left while it is positive, and they exchange while I <= J.
// The smaller part is sorted by recursion and the larger by the loop, so the
// stack stays logarithmic; the parts are disjoint, so the order is the one
// of recursing on the left part and looping on the right.
void QuickSort(int L, int R, int Direction, std::vector<int> &Indexy,
               const std::vector<QString> &Keys, const TStringGridSortCompare &SCompare);

// Applies a permutation in place: afterwards row r holds what row Indexy[r]
// held. Exchange(a, b) swaps two rows; every data row from First on is
// visited once, and the inverse array tells where a row has moved to.
void ApplyPermutation(int First, const std::vector<int> &Indexy,
                      const std::function<void(int, int)> &Exchange);

} // namespace oxa
