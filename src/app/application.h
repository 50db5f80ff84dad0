#pragma once

// What every start of the program sets up after making the QApplication: its
// name (the title of every message box), its version and its font. The forms
// are laid out in twips for an 8-point dialog font; a larger one would not fit.
void InitApplication();

