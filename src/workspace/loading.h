#pragma once
#include <QString>

class Map;
class Legend;

void LoadProject(const QString& fileTitle, const QString& fileName, Map* map, Legend* legendControl);
bool StandardFile(const QString& fileName);
