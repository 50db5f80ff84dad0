#pragma once

// What every start of the program sets up after making the QApplication: its
// name (the title of every message box), its version and its font, and the
// twips-to-pixel factor of the forms, which follows that font.
void InitApplication();

// Starts the program anew with the heap on transparent huge pages, unless the
// environment already says how the allocator is to work. A large dataset is
// hundreds of thousands of small objects; with 4 KiB pages their first touch
// costs a tenth of the loading time. Returns only when no restart happened.
void RestartWithLargePages(char** argv);
