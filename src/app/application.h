#pragma once

// What every start of the program sets up after making the QApplication: its
// name (the title of every message box), its version and its font, and the
// twips-to-pixel factor of the forms, which follows that font.
void InitApplication();

