#pragma once
#include <QString>

class Map;

QString CalculateScale(Map* map);
double DegreesToMiles(Map* map, double& lon1, double& lat1, double& lon2, double& lat2);
double DegToRad(double degrees);
