// Placeholder until this module is written.
#include "engine/expressions.h"

QString CreateWindSelectExpression() { return {}; }
QString CreateSolarSelectExpression() { return {}; }
void GetSolarLayerChosen() {}
