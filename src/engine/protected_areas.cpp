// "Best wind - protected areas": the protected areas dissolved into one
// polygon, taken away from each selected wind polygon.
#include <QStringList>

#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/overlay_support.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "mapping/platform.h"
#include "mapping/seam.h"
#include "workspace/state.h"

namespace {

// The dissolve: the first record's shape united with every further polygon,
// in one cascaded union where it can be; record by record where it cannot,
// so that a record whose union fails is left out as it would be there.
// united gets the polygons of a cascaded union, whose union the result is.
ShapePtr dissolve(const RecordsetPtr& records, int stop, std::vector<GeomPtr>& united)
{
    const GeoDatasetPtr& ds = records->dataset();
    const std::vector<int>& ids = records->ids();
    ShapePtr whole;
    overlay::passOver([&] { whole = ds->shape(ids.front()); });
    if (whole && whole->shapeType() == moPolygon) united = {whole->geom()};
    if (!whole || stop <= 1) return whole;

    try {
        std::vector<GeomPtr> parts{whole->geom()};
        for (int i = 1; i < stop; ++i)
            if (const GeomPtr& g = ds->geom(ids[size_t(i)])) parts.push_back(g);
        if (whole->shapeType() == moPolygon) {
            ShapePtr all = overlay::unionAll(parts);
            united = std::move(parts);
            return all;
        }
    } catch (...) {
    }
    united.clear();
    for (int i = 1; i < stop; ++i) {
        overlay::passOver([&] {
            auto geo = std::dynamic_pointer_cast<GeoShape>(whole);
            if (!geo) throw MapError("no shape to unite with");
            whole = geo->Union(ds->shape(ids[size_t(i)]));
        });
    }
    return whole;
}

}  // namespace

void wind_minus_protected_areas()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp"}, true);
        Wind_ProtectedArea_Overlay();
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_minus_protected_areas()", 48);
    }
}

void Wind_ProtectedArea_Overlay()
{
    RecordsetPtr protectedRecords, windRecords;
    int windCount = 0;
    int n = 0;
    try {
        ShowProgress("Overlaying...");
        protectedRecords = LayerByFile("31_protectedarea.shp")->SearchExpression("FeatureID > -1");
        const int protectedCount = overlay::countOf(protectedRecords);
        const QString expression = CreateWindSelectExpression();
        windRecords = LayerByFile("20_wind.shp")->SearchExpression(expression);
        windCount = overlay::countOf(windRecords);
        conv::MulInt32(windCount, protectedCount);  // never used, but its overflow ends the query
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = "WINDPWRD";
        n = 1;
    } catch (...) {
        ErrorMessage("Error generated in while performing the query", 48);
        return;
    }

    // From here on no message can appear, apart from the one of a protected
    // record that is no polygon.
    RectanglePtr extent;
    overlay::passOver([&] { extent = frmMain().Map1->FullExtent(); });

    ShapePtr protectedPolygon;
    std::vector<GeomPtr> united;
    if (protectedRecords) {
        const GeoDatasetPtr& ds = protectedRecords->dataset();
        const std::vector<int>& ids = protectedRecords->ids();
        int stop = 1;
        while (stop < int(ids.size()) && ds->recordShapeType(ids[size_t(stop)]) == moPolygon) ++stop;
        protectedPolygon = dissolve(protectedRecords, stop, united);
        if (stop < int(ids.size())) {
            // A layer of the wrong kind: the cursor does not move on, so the box
            // comes back until the process is ended. Only a seam handler that
            // throws (as tests do) gets out, and its exception leaves this routine.
            const int fid = ids[size_t(stop)];
            const int nameField = ds->fieldIndex("name");
            for (;;) {
                QString name;
                if (nameField >= 0) name = ds->value(fid, nameField).toString();
                seam::MsgBox(name + " is not a polygon type");
            }
        }
    }

    PolygonPtr dissolved;
    overlay::passOver([&] {
        if (protectedPolygon && protectedPolygon->shapeType() == moPolygon) dissolved = asPolygon(protectedPolygon);
    });
    // Near a wind polygon the dissolved polygon is the union of the protected
    // areas that meet it: those few are what each cut takes away.
    std::unique_ptr<overlay::PolygonSet> areas;
    overlay::passOver([&] {
        if (dissolved && !united.empty()) areas = std::make_unique<overlay::PolygonSet>(std::move(united));
    });
    overlay::NearbyParts nearby(areas ? nullptr : dissolved);

    StepText stepText("Overlaying... ");
    if (windRecords) {
        windRecords->MoveFirst();
        while (!windRecords->Eof()) {
            YieldToEvents();
            if (bCancelQuery) return;
            if (dissolved) {
                ShapePtr remainder;
                bool isPolygon = false;
                overlay::passOver([&] { isPolygon = windRecords->Fields()("Shape").Type() == moPolygon; });
                if (isPolygon) {
                    overlay::passOver([&] {
                        auto wind = std::dynamic_pointer_cast<GeoShape>(windRecords->Fields()("Shape").shapeValue());
                        if (!wind) throw MapError("no wind shape");
                        if (areas) {
                            remainder = areas->subtractFrom(wind);
                        } else {
                            PolygonPtr near = nearby.around(wind->envelope());
                            remainder = near ? wind->Difference(near, extent) : wind;
                        }
                    });
                    if (remainder) overlay::passOver([&] { AppendResult(remainder, *windRecords, "WINDPWRD"); });
                }
            }
            overlay::passOver([&] { ShowStepProgress(stepText.at(double(n) / double(windCount))); });
            windRecords->MoveNext();
            ++n;
        }
    }
    overlay::passOver([&] { ShowProgress("Overlaying... finished"); });
}
