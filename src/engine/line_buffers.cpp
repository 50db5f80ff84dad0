// "Best wind + roads" and "Best wind + transmission": one polygon of all the
// buffers of a line layer, cut with each selected wind polygon.
#include <functional>
#include <optional>

#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/line_buffers.h"
#include "engine/overlay_support.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "mapping/platform.h"
#include "mapping/seam.h"
#include "workspace/state.h"

namespace {

// The buffers a polygon of the tiers is made of. Uniting two of them only
// joins the lists; the area itself is united once, at the end, which gives
// the same polygon as uniting buffer by buffer at a fraction of the cost, or
// for an overlay only near each shape it cuts.
using Buffers = std::vector<GeomPtr>;

void unite(Buffers& into, const Buffers& other) { into.insert(into.end(), other.begin(), other.end()); }

Buffers bufferOf(Recordset& records, double distance)
{
    auto line = std::dynamic_pointer_cast<GeoShape>(records.Fields()("Shape").shapeValue());
    if (!line) throw MapError("record without a shape to buffer");
    return {line->Buffer(distance)->geom()};
}

}  // namespace

std::shared_ptr<overlay::PolygonSet> line_buffer_parts(const QString& sLayerFile, float sngDistance)
{
    try {
        MapLayerPtr layer = LayerByFile(sLayerFile);
        RecordsetPtr records = layer->SearchExpression("FeatureID > -1");
        if (!records) throw MapError("layer without records");
        const int16_t count = conv::ToInt16(records->CalculateStatistics("FeatureID")->Count);
        const double d = double(sngDistance * 1000.0f);  // single precision, as the distance is kept
        int done = 0;
        auto recordText = [&] {
            ShowStepProgress("Creating " + layer->Name + " Buffers: " + QString::number(done) + " of " + QString::number(count));
        };

        records->MoveFirst();
        if (count < 400) {
            Buffers current = bufferOf(*records, d);
            done = 1;
            records->MoveNext();
            while (!records->Eof()) {
                YieldToEvents();
                if (bCancelQuery) return nullptr;
                unite(current, bufferOf(*records, d));
                ++done;
                recordText();
                records->MoveNext();
            }
            FlushProgress();
            return std::make_shared<overlay::PolygonSet>(std::move(current));
        }

        if (seam::MsgBox("This query may take few minutes to complete. Do you want to proceed?", seam::Buttons::YesNo) ==
            seam::Answer::No)
            return nullptr;

        // First tier. The record at which a batch is full is not buffered, and
        // the next one starts the next batch: one record in 101 adds nothing.
        std::vector<Buffers> batches;
        std::optional<Buffers> current = bufferOf(*records, d);
        done = 1;
        records->MoveNext();
        int inBatch = 0;
        while (!records->Eof()) {
            YieldToEvents();
            if (bCancelQuery) return nullptr;
            bool started = false;  // a batch started here holds this buffer already
            if (!current) {
                current = bufferOf(*records, d);
                started = true;
            }
            if (inBatch >= 100) {
                batches.push_back(std::move(*current));
                current.reset();
                inBatch = 0;
            } else {
                if (!started) unite(*current, bufferOf(*records, d));
                ++inBatch;
            }
            ++done;
            recordText();
            records->MoveNext();
        }
        FlushProgress();

        // Second tier, without a yield; likewise every batch at which a group
        // is full is left out.
        const int batchCount = int(batches.size());
        std::optional<Buffers> group;
        int start = 1;
        if (!current) {
            if (batchCount < 1) throw MapError("no batch");
            group = batches[0];
            start = 2;
        } else {
            group = std::move(*current);
        }
        current.reset();
        int inGroup = 0;
        std::vector<Buffers> groups;
        for (int i = start; i <= batchCount; ++i) {
            bool started = false;
            if (!group) {
                group = batches[size_t(i - 1)];
                started = true;
            }
            if (inGroup >= 10) {
                groups.push_back(std::move(*group));
                group.reset();
                inGroup = 0;
            } else {
                if (!started) unite(*group, batches[size_t(i - 1)]);
                ShowStepProgress("Creating buffer polygon " + QString::number(i) + " out of " + QString::number(batchCount));
                ++inGroup;
            }
        }
        FlushProgress();

        // Third tier.
        Buffers total;
        start = 1;
        if (!group) {
            if (groups.empty()) throw MapError("no group");
            total = std::move(groups[0]);
            start = 2;
        } else {
            total = std::move(*group);
        }
        batches.clear();
        const int groupCount = int(groups.size());
        for (int i = start; i <= groupCount; ++i) {
            unite(total, groups[size_t(i - 1)]);
            ShowStepProgress("Creating buffer polygon " + QString::number(i) + " out of " + QString::number(groupCount));
        }
        FlushProgress();
        return std::make_shared<overlay::PolygonSet>(std::move(total));
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.create_line_buffers()", 48);
        return nullptr;
    }
}

PolygonPtr create_line_buffers(const QString& sLayerFile, float sngDistance)
{
    std::shared_ptr<overlay::PolygonSet> parts = line_buffer_parts(sLayerFile, sngDistance);
    if (!parts) return nullptr;
    try {
        PolygonPtr total = parts->whole();
        if (!total) throw MapError("no buffer");
        return total;
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.create_line_buffers()", 48);
        return nullptr;
    }
}

void wind_with_roads()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "44_transmissionline.shp"}, true);
        std::shared_ptr<overlay::PolygonSet> oBuffer = line_buffer_parts("43_roads.shp", sngRoadDistance);
        if (!bCancelQuery && oBuffer) Wind_Buffer_Overlay(*oBuffer);
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_with_roads()", 48);
    }
}

void wind_with_transmission()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp"}, true);
        std::shared_ptr<overlay::PolygonSet> oBuffer =
            line_buffer_parts("44_transmissionline.shp", sngTransmissionDistance);
        if (!bCancelQuery && oBuffer) Wind_Buffer_Overlay(*oBuffer);
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_with_transmission()", 48);
    }
}

namespace {

// The overlay loop; cut gives the buffer polygon cut with a wind polygon, or
// throws where that cut fails.
void bufferOverlay(const std::function<ShapePtr(const ShapePtr&)>& cut)
{
    RectanglePtr extent;
    RecordsetPtr records;
    int windCount = 0;
    try {
        ShowProgress("Overlaying...");
        extent = frmMain().Map1->FullExtent();
        records = LayerByFile("20_wind.shp")->SearchExpression(CreateWindSelectExpression());
        windCount = records ? records->CalculateStatistics("FeatureID")->Count : 0;
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = "WINDPWRD";
    } catch (...) {
        ErrorMessage("Error generated in while performing the query", 48);
        return;
    }

    // A failing cut leaves the previous piece.
    ShapePtr piece;
    int n = 0;
    StepText stepText("Overlaying... ");
    if (records) {
        records->MoveFirst();
        while (!records->Eof()) {
            YieldToEvents();
            if (bCancelQuery) return;
            bool isPolygon = false;
            overlay::passOver([&] { isPolygon = records->Fields()("Shape").Type() == moPolygon; });
            if (isPolygon) {
                overlay::passOver([&] { piece = cut(records->Fields()("Shape").shapeValue()); });
                PolygonPtr polygon;
                overlay::passOver([&] {
                    if (auto rect = std::dynamic_pointer_cast<Rectangle>(piece)) polygon = rect->Buffer(0, extent);
                    else polygon = std::dynamic_pointer_cast<Polygon>(piece);
                });
                if (polygon) overlay::passOver([&] { AppendResult(polygon, *records, "WINDPWRD"); });
            }
            overlay::passOver([&] { ShowStepProgress(stepText.at(double(n) / double(windCount))); });
            ++n;
            records->MoveNext();
        }
    }
    overlay::passOver([&] { ShowProgress("Overlaying... finished"); });
}

}  // namespace

void Wind_Buffer_Overlay(const PolygonPtr& oBuffer)
{
    // The buffer polygon is the object of each cut; only its parts near the
    // wind polygon take part.
    overlay::NearbyParts nearby(oBuffer);
    bufferOverlay([&](const ShapePtr& wind) -> ShapePtr {
        if (!oBuffer || !wind) throw MapError("nothing to intersect");
        PolygonPtr near = nearby.around(wind->envelope());
        return near ? near->Intersect(wind) : nullptr;
    });
}

void Wind_Buffer_Overlay(overlay::PolygonSet& buffers)
{
    bufferOverlay([&](const ShapePtr& wind) -> ShapePtr {
        if (!wind) throw MapError("nothing to intersect");
        return buffers.intersect(wind);
    });
}
