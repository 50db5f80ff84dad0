// "Best wind + land use": every chosen land-use polygon cut with every
// selected wind polygon, land use outside, each piece kept on its own.
#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/overlay_support.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "mapping/platform.h"
#include "workspace/state.h"

void wind_with_land_use()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp"}, true);
        Wind_Landuse_Overlay();
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_with_land_use()", 48);
    }
}

// Only pairs whose boxes meet are overlaid: any other pair gives none. What a
// failing overlay leaves behind is the previous pair's piece, so the loop
// keeps track of which pair the piece it holds belongs to.
void Wind_Landuse_Overlay()
{
    int n = 0;  // first the index of the list, then the land record counter
    int j = 0;
    overlay::Steps step;

    try {
        FrmMain& f = frmMain();
        ShowProgress("Overlaying...");

        QString expression;
        for (n = 0; n < f.lstQuery1->ListCount(); ++n)
            if (f.lstQuery1->Selected(n)) expression += "(LAND_USE = '" + f.lstQuery1->List(n) + "') OR ";
        if (expression.length() < 4) throw MapError("no land use chosen");
        expression.chop(4);

        RecordsetPtr landRecords = LayerByFile("02_landuse.shp")->SearchExpression(expression);
        const int landCount = overlay::countOf(landRecords);
        RecordsetPtr windRecords = LayerByFile("20_wind.shp")->SearchExpression(CreateWindSelectExpression());
        const int windCount = overlay::countOf(windRecords);
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = "WINDPWRD";
        const int pairs = conv::MulInt32(windCount, landCount);
        if (pairs < 1) return;

        n = 1;
        j = 0;
        RectanglePtr extent = f.Map1->FullExtent();

        overlay::Selection winds(windRecords);
        std::vector<int> windOrdinal(size_t(winds.dataset()->count()), -1);
        int polygonWinds = 0;
        for (int fid : winds.ids())
            if (winds.isPolygon(fid)) windOrdinal[size_t(fid)] = polygonWinds++;

        ShapePtr piece;
        long long pieceFrom = -2;  // ordinal of the pair that left piece
        long long landOrdinal = 0;

        StepText stepText("Overlaying... ");
        landRecords->MoveFirst();
        while (!landRecords->Eof()) {
            step([&] { YieldToEvents(); });
            if (bCancelQuery) return;

            bool landIsPolygon = false;
            step([&] { landIsPolygon = landRecords->Fields()("Shape").Type() == moPolygon; });
            if (landIsPolygon) {
                j = 0;
                if (polygonWinds > 0) step.tolerant = true;
                ShapePtr land;
                step([&] { land = landRecords->Fields()("Shape").shapeValue(); });
                overlay::NearbyParts nearby(std::dynamic_pointer_cast<Polygon>(land));
                std::vector<int> candidates;
                if (land) step([&] { candidates = winds.near(land->envelope()); });

                for (int fid : candidates) {
                    if (windOrdinal[size_t(fid)] < 0) continue;
                    j = winds.positionOf(fid);
                    const long long ordinal = landOrdinal * polygonWinds + windOrdinal[size_t(fid)];
                    if (pieceFrom != ordinal - 1) piece = nullptr;
                    pieceFrom = ordinal;

                    try {
                        const ShapePtr& wind = winds.shape(fid);
                        if (!wind) throw MapError("no wind shape");
                        PolygonPtr near = nearby.around(wind->envelope());
                        piece = near ? near->Intersect(wind, extent) : nullptr;
                    } catch (...) {
                    }

                    PolygonPtr polygon;
                    try {
                        if (auto rect = std::dynamic_pointer_cast<Rectangle>(piece)) polygon = rect->Buffer(0, extent);
                        else polygon = std::dynamic_pointer_cast<Polygon>(piece);
                    } catch (...) {
                    }
                    if (polygon) {
                        try {
                            Recordset record = overlay::recordAt(winds.dataset(), fid);
                            AppendResult(polygon, record, "WINDPWRD");
                        } catch (...) {
                        }
                    }
                }
                j = windCount;
                ++landOrdinal;
            }

            step([&] { ShowStepProgress(stepText.at(double(n) * windCount / double(pairs))); });
            landRecords->MoveNext();
            ++n;
        }
        step([&] { ShowProgress("Overlaying... finished"); });
    } catch (...) {
        if (!step.tolerant)
            ErrorMessage(" Error Source:md_query_functions2.Wind_Landuse_Overlay()" + QString::number(n) + "--" +
                         QString::number(j), 48);
    }
}
