#include "presentation/layer_properties.h"

#include "app/messages.h"
#include "presentation/renderers.h"

// The file name is compared exactly: a name that differs in case was loaded
// but is left without style.
void SetLayerProperties(const MapLayerPtr& layer, const QString& fileName, const QString& displayName)
{
    try {
        if (!layer || !layer->Symbol) throw MapError("no layer");
        QVariant unused;
        // Only the solar layers take a display name from the caller.
        auto solarName = [&](const char* fixed) {
            return displayName.isEmpty() ? QString::fromLatin1(fixed) : displayName;
        };

        if (fileName == "01_elevation.shp") {
            LayerRenderer(layer, "Elev_m", unused);
            layer->Name = "Elevation (meters)";
        } else if (fileName == "02_landuse.shp") {
            LayerRenderer(layer, "LAND_USE", unused);
            layer->Name = "Land Use";
        } else if (fileName == "11_solar_direct.shp" || fileName == "15_solar_direct.shp" ||
                   fileName == "17_solar_direct.shp") {
            LayerRenderer(layer, "ANNDIR", unused);
            layer->Name = solarName("40 km Solar Concentrators Annual Average(KWH/M2/DAY)");
        } else if (fileName == "15_solar_glo.shp") {
            LayerRenderer(layer, "ANNGLO", unused);
            layer->Name = solarName("40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
        } else if (fileName == "13_solar_direct.shp") {
            LayerRenderer(layer, "ANNDIR", unused);
            layer->Name = solarName("10 KM Solar Concentrators Annual Average(KWH/M2/DAY)");
        } else if (fileName == "14_solar_glo.shp") {
            LayerRenderer(layer, "ANNGLO", unused);
            layer->Name = solarName("10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)");
        } else if (fileName == "16_solar_tilt.shp") {
            LayerRenderer(layer, "ANNTILT", unused);
            layer->Name = solarName("10 km Solar PV Annual Average(KWH/M2/DAY)");
        } else if (fileName == "12_solar_tilt.shp" || fileName == "18_solar_tilt.shp") {
            LayerRenderer(layer, "ANNTILT", unused);
            layer->Name = solarName("40 km Solar PV Annual Average(KWH/M2/DAY)");
        } else if (fileName == "20_wind.shp") {
            LayerRenderer(layer, "WINDPWRD", unused);
            layer->Symbol->Outline = false;
            layer->Name = "Wind Power Density (W/m2)";
        } else if (fileName == "31_protectedarea.shp") {
            Symbol& s = *layer->Symbol;
            s.Color = RGB(0, 128, 0);
            s.Style = 4;
            s.Outline = true;
            s.OutlineColor = RGB(0, 128, 0);
            layer->Name = "Protected Areas";
        } else if (fileName == "30_lakes.shp") {
            layer->Symbol->Color = RGB(127, 199, 242);
            layer->Symbol->Outline = false;
            layer->Name = "Lakes";
        } else if (fileName == "40_rivers.shp") {
            layer->Symbol->Color = RGB(0, 0, 255);
            layer->Name = "Rivers";
        } else if (fileName == "36_subcountrybnd3.shp") {
            Symbol& s = *layer->Symbol;
            s.Style = 1;
            s.Outline = true;
            s.Size = 1;
            s.OutlineColor = RGB(230, 152, 0);
            layer->Name = "Additional Boundary";
        } else if (fileName == "39_countryboundary.shp") {
            Symbol& s = *layer->Symbol;
            s.Style = 1;
            s.Outline = true;
            s.Size = 1.5;
            s.OutlineColor = RGB(0, 0, 0);
            layer->Name = "Country Boundary";
        } else if (fileName == "37_subcountrybnd2.shp") {
            Symbol& s = *layer->Symbol;
            s.Style = 1;
            s.Outline = true;
            s.Size = 1;
            s.OutlineColor = RGB(115, 38, 0);
            layer->Name = "Other Boundary";
        } else if (fileName == "38_subcountrybnd1.shp") {
            Symbol& s = *layer->Symbol;
            s.Style = 1;
            s.Outline = true;
            s.OutlineColor = RGB(0, 0, 0);
            s.Size = 1;
            auto labels = std::make_shared<LabelRenderer>();
            layer->Renderer = labels;
            FontDesc font;
            font.Name = "MS Sans Serif";
            font.Bold = true;
            font.Size = 12;
            labels->Symbol(0)->Font = font;
            labels->Field = "NAME";
            labels->AllowDuplicates = true;
            layer->Name = "State Boundaries";
        } else if (fileName == "42_railroad.shp") {
            layer->Symbol->Color = RGB(255, 0, 0);
            layer->Symbol->Style = 2;
            layer->Name = "Railways";
        } else if (fileName == "43_roads.shp") {
            layer->Symbol->Color = RGB(255, 0, 0);
            layer->Symbol->Size = 2;
            layer->Name = "Roads";
        } else if (fileName == "44_transmissionline.shp") {
            layer->Symbol->Color = RGB(0, 0, 0);
            layer->Symbol->Style = 3;
            layer->Name = "Transmission Lines";
        } else if (fileName == "51_powerplant.shp") {
            layer->Symbol->Color = RGB(0, 0, 0);
            layer->Symbol->Style = 3;
            layer->Name = "Power Plants";
        } else if (fileName == "50_protectedarea.shp") {
            layer->Symbol->Color = RGB(128, 64, 64);
            layer->Symbol->Style = 2;
            layer->Name = "Historic Sites";
        } else if (fileName == "52_facilities.shp") {
            layer->Symbol->Color = RGB(0, 255, 255);
            layer->Symbol->Style = 1;
            layer->Name = "Facilities";
        } else if (fileName == "53_airports.shp") {
            layer->Symbol->Color = RGB(255, 128, 0);
            layer->Symbol->Style = 2;
            layer->Name = "Airports";
        } else if (fileName == "59_cities.shp") {
            layer->Symbol->Color = RGB(255, 0, 0);
            layer->Symbol->Style = 0;
            layer->Name = "Cities";
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.SetLayerProperties()", 48);
    }
}
