// "Best wind (all)": near roads and transmission lines, on the chosen land
// use, in the wind range and, if asked, outside the protected areas.
#include <functional>

#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/line_buffers.h"
#include "engine/overlay_support.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "mapping/platform.h"
#include "workspace/state.h"

namespace {

// The protected areas taken away one by one, in record order, the first
// record without a test of its type. A record whose box misses the polygon
// would take nothing away, so only those that meet it are tried.
PolygonPtr subtractProtected(PolygonPtr polygon, overlay::Selection& areas)
{
    if (areas.isEmpty()) return polygon;
    const int first = areas.ids().front();
    for (int fid : areas.near(polygon->envelope())) {
        if (fid != first && (!areas.isPolygon(fid) || !polygon)) continue;
        if (!polygon) break;
        try {
            const ShapePtr& area = areas.shape(fid);
            if (!area) throw MapError("no protected shape");
            if (!area->envelope().intersects(polygon->envelope())) continue;
            polygon = asPolygon(polygon->Difference(area));
        } catch (...) {
        }
    }
    return polygon;
}

// The routine of Wind_All_Overlay; proximity gives the proximity area cut
// with a land-use polygon, or throws where that cut fails.
void windAllOverlay(const std::function<PolygonPtr(const ShapePtr&)>& proximity)
{
    overlay::Steps step;

    try {
        FrmMain& f = frmMain();
        ShowProgress("Intersecting...");
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = "WINDPWRD";

        QString expression;
        for (int i = 0; i < f.lstQuery1->ListCount(); ++i)
            if (f.lstQuery1->Selected(i)) expression += "(LAND_USE = '" + f.lstQuery1->List(i) + "') OR ";
        if (expression.length() < 4) throw MapError("no land use chosen");
        expression.chop(4);

        RecordsetPtr records = LayerByFile("02_landuse.shp")->SearchExpression(expression);
        int recordCount = overlay::countOf(records);

        // Land-use stage: the proximity area cut by each land-use polygon.
        Collection<PolygonPtr> pieces;
        int i = 0;
        StepText intersecting("Intersecting... ");
        if (records) {
            records->MoveFirst();
            while (!records->Eof()) {
                if (i % 50 == 0) step([&] { YieldToEvents(); });
                if (bCancelQuery) return;
                bool isPolygon = false;
                step([&] { isPolygon = records->Fields()("Shape").Type() == moPolygon; });
                if (isPolygon) {
                    step.tolerant = true;
                    PolygonPtr polygon;
                    try {
                        polygon = proximity(records->Fields()("Shape").shapeValue());
                    } catch (...) {
                    }
                    if (polygon) step([&] { pieces.Add(polygon, QString::number(pieces.Count())); });
                }
                step([&] { ShowStepProgress(intersecting.at(double(i) / double(recordCount))); });
                records->MoveNext();
                ++i;
            }
        }
        FlushProgress();
        records.reset();

        step([&] {
            records = LayerByFile("20_wind.shp")->SearchExpression(CreateWindSelectExpression());
            recordCount = overlay::countOf(records);
        });
        int steps = 0;
        step([&] { steps = conv::MulInt32(recordCount, pieces.Count()); });
        if (steps <= 0) return;

        const bool ticked = f.chkProtectedAreas->checkState() == Qt::Checked;
        overlay::Selection areas;
        if (ticked) step([&] { areas = overlay::Selection(LayerByFile("31_protectedarea.shp")->SearchExpression("FeatureID > -1")); });

        // Wind and protected-area stage, piece by piece; within a piece the
        // wind records whose boxes meet it, in record order.
        overlay::Selection winds(records);
        int n = 0;
        StepText overlaying("Overlaying... ");
        for (const PolygonPtr& piece : pieces) {
            step([&] { YieldToEvents(); });
            if (bCancelQuery) return;
            std::vector<int> candidates;
            step([&] { candidates = winds.near(piece->envelope()); });
            overlay::NearbyParts nearPiece(piece);
            for (int fid : candidates) {
                if (!winds.isPolygon(fid)) continue;
                PolygonPtr polygon;
                try {
                    const ShapePtr& wind = winds.shape(fid);
                    if (!wind) throw MapError("no wind shape");
                    PolygonPtr near = nearPiece.around(wind->envelope());
                    polygon = near ? asPolygon(near->Intersect(wind)) : nullptr;
                } catch (...) {
                }
                if (ticked && polygon) polygon = subtractProtected(polygon, areas);
                if (polygon) {
                    try {
                        Recordset record = overlay::recordAt(winds.dataset(), fid);
                        AppendResult(polygon, record, "WINDPWRD");
                    } catch (...) {
                    }
                }
            }
            step([&] { ShowStepProgress(overlaying.at(double(n) * recordCount / double(steps))); });
            ++n;
        }
        step([&] { ShowProgress("Overlaying... finished"); });
    } catch (...) {
        if (!step.tolerant) ErrorMessage(" Error Source:md_query_functions2.Wind_All_Overlay()", 48);
    }
}

}  // namespace

void wind_all()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp",
                           "37_subcountrybnd2.shp", "42_railroad.shp"},
                          true);
        std::shared_ptr<overlay::PolygonSet> roads = line_buffer_parts("43_roads.shp", sngRoadDistance);
        if (!roads || bCancelQuery) return;
        std::shared_ptr<overlay::PolygonSet> transmission =
            line_buffer_parts("44_transmissionline.shp", sngTransmissionDistance);
        if (!transmission || bCancelQuery) return;
        // The common area of the two unions is never made as a whole: within a
        // land-use polygon it is the transmission buffers there cut with the
        // road buffers there.
        if (!bCancelQuery)
            windAllOverlay([&](const ShapePtr& land) -> PolygonPtr {
                if (!land) throw MapError("nothing to intersect");
                PolygonPtr near = asPolygon(transmission->intersect(land));
                return near ? asPolygon(roads->intersect(near)) : nullptr;
            });
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_all()", 48);
    }
}

void Wind_All_Overlay(const PolygonPtr& oProximity)
{
    overlay::NearbyParts nearby(oProximity);
    windAllOverlay([&](const ShapePtr& land) -> PolygonPtr {
        if (!oProximity || !land) throw MapError("nothing to intersect");
        PolygonPtr near = nearby.around(land->envelope());
        return near ? asPolygon(near->Intersect(land)) : nullptr;
    });
}
