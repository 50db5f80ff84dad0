// Placeholder until this module is written.
#include "queryset/panel.h"

void SetQueryInputControls() {}
void SetQueryListbox() {}
