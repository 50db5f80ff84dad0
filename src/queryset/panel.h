#pragma once

void SetQueryInputControls();
void SetQueryListbox();
