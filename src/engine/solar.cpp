// The two solar queries: the range copy of "Best Solar X kWh/m2/day" and the
// grading of every solar polygon by its distance from the grid.
#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "presentation/renderers.h"
#include "workspace/state.h"

void solar_x_kwhm2_or_better()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp"}, false);
        ShowProgress(QStringLiteral("Calculating..."));

        const QString expression = CreateSolarSelectExpression();
        MapLayerPtr layer = LayerByFile(sSolarLayerFile);
        RecordsetPtr records = layer->SearchExpression(expression);
        const int total = records ? records->CalculateStatistics("FeatureID")->Count : 0;

        if (!cShapes || !cSymbols) throw MapError("result model not made");
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = sSolarField;

        StepText stepText(QStringLiteral("Calculating... "));
        for (int i = 0; records && !records->Eof(); ++i, records->MoveNext()) {
            if (i % 50 == 0) YieldToEvents();
            if (bCancelQuery) return;
            Fields fields = records->Fields();
            if (fields("Shape").Type() == moPolygon) {
                auto symbol = std::make_shared<Symbol>();
                symbol->Outline = false;
                cShapes->Add(fields("Shape").shapeValue(), QString::number(cShapes->Count()));
                SetClassSymbolColor(sSolarField, fields(sSolarField).toDouble(), symbol);
                cSymbols->Add(symbol, QString::number(cSymbols->Count()));
                cFieldValues->Add(fields(sSolarField).Value(), QString::number(cFieldValues->Count()));
            }
            ShowStepProgress(stepText.at(double(i) / total));
        }
        ShowProgress(QStringLiteral("Calculating... finished"));
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.solar_x_kwhm2_or_better() ", 48);
    }
}

void best_solar_off_grid_systems()
{
    try {
        const float factor = 1.0f;
        float largest = 0.0f;
        float smallest = 0.0f;
        bool first = true;

        if (!cShapes || !cSymbols || !cGridDistances) throw MapError("result model not made");
        RecordsetPtr lineRecords = LayerByFile("44_transmissionline.shp")->SearchExpression("FeatureID > -1");
        RecordsetPtr solarRecords = LayerByFile(sSolarLayerFile)->SearchExpression("FeatureID > -1");

        // First pass: every polygon with its distance to the nearest line.
        for (; solarRecords && !solarRecords->Eof(); solarRecords->MoveNext()) {
            ShapePtr shape = solarRecords->Fields()("Shape").shapeValue();
            auto geo = std::dynamic_pointer_cast<GeoShape>(shape);
            if (!geo) throw MapError("not a polygon");
            PointPtr centroid = geo->Centroid();
            if (!lineRecords) throw MapError("no transmission lines");
            lineRecords->MoveFirst();
            float nearest = float(centroid->DistanceTo(lineRecords->Fields()("Shape").shapeValue()));
            for (; !lineRecords->Eof(); lineRecords->MoveNext()) {
                const double distance = centroid->DistanceTo(lineRecords->Fields()("Shape").shapeValue());
                if (distance < nearest) nearest = float(distance);
            }
            const float scaled = factor * nearest;
            if (scaled > largest) largest = scaled;
            if (scaled < smallest || first) {
                smallest = scaled;
                first = false;
            }
            cShapes->Add(shape, QString::number(cShapes->Count()));
            cGridDistances->Add(scaled, QString::number(cGridDistances->Count()));
        }

        // Second pass: the bands are relative to this layer's own range of distances.
        const float span = largest - smallest;
        const float limit25 = smallest + span * 0.25f;
        const float limit50 = smallest + span * 0.5f;
        const float limit75 = smallest + span * 0.75f;
        const int n = cShapes->Count();
        for (int i = 0; i < n; ++i) {
            auto symbol = std::make_shared<Symbol>();
            const float scaled = cGridDistances->Item(QString::number(i));
            if (scaled <= limit25)
                symbol->Color = RGB(255, 255, 128);
            else if (scaled <= limit50)
                symbol->Color = RGB(255, 200, 100);
            else if (scaled <= limit75)
                symbol->Color = RGB(255, 128, 85);
            else
                symbol->Color = RGB(255, 0, 0);
            cSymbols->Add(symbol, QString::number(cSymbols->Count()));
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.best_solar_off_grid_systems()", 48);
    }
}
