#pragma once
#include <QString>
#include "mapping/geometry.h"

void wind_class_x_or_better();
void solar_x_kwhm2_or_better();
void best_solar_off_grid_systems();

void wind_minus_protected_areas();
void Wind_ProtectedArea_Overlay();
void wind_with_land_use();
void Wind_Landuse_Overlay();
PolygonPtr create_line_buffers(const QString& sLayerFile, float sngDistance);
void wind_with_roads();
void wind_with_transmission();
void Wind_Buffer_Overlay(const PolygonPtr& oBuffer);
void wind_all();
void Wind_All_Overlay(const PolygonPtr& oProximity);
