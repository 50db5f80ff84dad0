#pragma once
#include <QString>

// The report of a failure: a box with the text and one OK button, no title of
// its own and no icon. The severity is accepted and has no effect.
void ErrorMessage(const QString& text, int severity = 48);
// A refused input, shown in red in lblWorking at once; no failure.
void DisplayError(const QString& text);
