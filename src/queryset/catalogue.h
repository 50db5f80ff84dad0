#pragma once
#include <QString>

class ComboBox;

void FillcboSelectQuery(ComboBox* combo);
bool isQueryPossible(const QString& queryName, QString& message);
bool isLayerExist(const QString& fileName, QString& message);
void HandleQuerySelect();
