#include "oxa/toolkit/FocusNavigation.h"

namespace oxa {

bool FocusDirectionOfKey(Word key, TFocusDirection &direction)
{
    switch (key) {
    case VK_LEFT:
        direction = fdLeft;
        return true;
    case VK_UP:
        direction = fdUp;
        return true;
    case VK_RIGHT:
        direction = fdRight;
        return true;
    case VK_DOWN:
        direction = fdDown;
        return true;
    default:
        return false;
    }
}

} // namespace oxa
