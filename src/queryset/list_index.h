#pragma once
#include "mapping/controls.h"
#include "mapping/maperror.h"

// Setting a list index outside the list is a failure, as it was on the
// platform; inside it, the click handler runs at once.
inline void SetListIndex(ComboBox* combo, int index)
{
    if (index < 0 || index >= combo->ListCount()) throw MapError("list index out of range");
    combo->setListIndex(index);
}
