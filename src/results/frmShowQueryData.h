#pragma once
#include <QString>
// "Query Results": area per colour of the last result.
void UpdateQueryDataForm();
QString CreateAreaDescription(int color);
void UnloadFrmShowQueryData();
