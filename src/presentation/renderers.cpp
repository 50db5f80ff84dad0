#include "presentation/renderers.h"

#include <cmath>
#include <limits>
#include <vector>

#include "app/messages.h"
#include "mapping/platform.h"
#include "mapping/recordset.h"
#include "presentation/landuse_colours.h"

namespace {

constexpr double NoBreak = std::numeric_limits<double>::quiet_NaN();

// One class of a thematic field. The map layer's renderer and a single result
// shape are classed apart: the renderer by its break (an exact break value
// goes to the class below), a result shape by the round lower bound of the
// class above (an exact bound goes to the class above).
struct ClassRow {
    double rendererBreak;  // upper break of the class on the map; none for the top class
    int rendererColour;
    double resultBound;    // a result value below this lies in the class; none for the top class
    int resultColour;
};

// The first wind class is white on the map but light gray as a result.
const std::vector<ClassRow> WindClasses = {
    {200, RGB(255, 255, 255), 200, RGB(230, 230, 230)},
    {300, RGB(222, 184, 135), 300, RGB(222, 184, 135)},
    {400, RGB(254, 172, 0), 400, RGB(254, 172, 0)},
    {500, RGB(255, 110, 180), 500, RGB(255, 110, 180)},
    {600, RGB(154, 50, 205), 600, RGB(154, 50, 205)},
    {800, RGB(255, 0, 0), 800, RGB(255, 0, 0)},
    {NoBreak, RGB(0, 0, 255), NoBreak, RGB(0, 0, 255)},
};

// Whole-number breaks sit a hair below the number so that the number itself
// is drawn in the class above; the margin is one digit longer from 7 on.
const std::vector<ClassRow> SolarClasses = {
    {1.9999999999, RGB(122, 97, 50), 2, RGB(122, 97, 50)},
    {2.5, RGB(184, 146, 75), 2.5, RGB(184, 146, 75)},
    {2.9999999999, RGB(224, 178, 92), 3, RGB(224, 178, 92)},
    {3.5, RGB(252, 218, 154), 3.5, RGB(252, 218, 154)},
    {3.9999999999, RGB(237, 237, 166), 4, RGB(237, 237, 166)},
    {4.5, RGB(230, 230, 83), 4.5, RGB(230, 230, 83)},
    {4.9999999999, RGB(255, 255, 0), 5, RGB(255, 255, 0)},
    {5.5, RGB(252, 223, 0), 5.5, RGB(252, 223, 0)},
    {5.9999999999, RGB(255, 171, 0), 6, RGB(255, 171, 0)},
    {6.5, RGB(237, 138, 0), 6.5, RGB(237, 138, 0)},
    {6.999999999, RGB(255, 94, 25), 7, RGB(255, 94, 25)},
    {7.5, RGB(247, 0, 0), 7.5, RGB(247, 0, 0)},
    {7.999999999, RGB(207, 0, 0), 8, RGB(207, 0, 0)},
    {8.5, RGB(153, 0, 0), 8.5, RGB(153, 0, 0)},
    {8.999999999, RGB(115, 0, 0), 9, RGB(115, 0, 0)},
    {NoBreak, RGB(71, 0, 0), NoBreak, RGB(71, 0, 0)},
};

const std::vector<ClassRow> ElevationClasses = {
    {200, RGB(38, 115, 0), 200, RGB(38, 115, 0)},
    {400, RGB(76, 156, 36), 400, RGB(76, 156, 36)},
    {600, RGB(129, 199, 93), 600, RGB(129, 199, 93)},
    {800, RGB(196, 245, 171), 800, RGB(196, 245, 171)},
    {1000, RGB(255, 249, 186), 1000, RGB(255, 249, 186)},
    {1200, RGB(255, 234, 140), 1200, RGB(255, 234, 140)},
    {1400, RGB(255, 212, 102), 1400, RGB(255, 212, 102)},
    {1600, RGB(199, 172, 125), 1600, RGB(199, 172, 125)},
    {1800, RGB(168, 131, 67), 1800, RGB(168, 131, 67)},
    {2000, RGB(138, 98, 23), 2000, RGB(138, 98, 23)},
    {2200, RGB(122, 47, 9), 2200, RGB(122, 47, 9)},
    {2500, RGB(166, 97, 63), 2500, RGB(166, 97, 63)},
    {3000, RGB(209, 166, 144), 3000, RGB(209, 166, 144)},
    {NoBreak, RGB(255, 255, 255), NoBreak, RGB(255, 255, 255)},
};

bool isSolarField(const QString& field)
{
    return field == "ANNDIR" || field == "ANNTILT" || field == "ANNGLO";
}

const std::vector<ClassRow>* classTableFor(const QString& field)
{
    if (field == "WINDPWRD") return &WindClasses;
    if (field == "Elev_m") return &ElevationClasses;
    if (isSolarField(field)) return &SolarClasses;
    return nullptr;
}

void buildValueMapRenderer(const MapLayerPtr& layer, const QString& field)
{
    Strings values;
    RecordsetPtr records = layer->Records();
    if (!records) throw MapError("layer without records");
    while (!records->Eof()) {
        values.Add(records->Fields().Item(field).toText());
        records->MoveNext();
    }
    records.reset();

    auto renderer = std::make_shared<ValueMapRenderer>();
    renderer->setValueCount(values.Count());
    renderer->Field = field;
    int i = 0;
    for (const QString& text : values) {
        renderer->setValue(i, text);
        renderer->Symbol(i)->Outline = false;
        renderer->Symbol(i)->Color = LandUseColour(renderer->Value(i));
        ++i;
    }
    layer->Renderer = renderer;
    layer->Visible = false;
}

}  // namespace

void LayerRenderer(const MapLayerPtr& layer, const QString& field, QVariant& /*unused*/)
{
    try {
        if (!layer) throw MapError("no layer");
        if (field == "LAND_USE") {
            buildValueMapRenderer(layer, field);
            return;
        }
        const std::vector<ClassRow>* table = classTableFor(field);
        ClassBreaksRendererPtr renderer;
        if (table) {
            renderer = std::make_shared<ClassBreaksRenderer>();
            layer->Renderer = renderer;
            const int breakCount = int(table->size()) - 1;
            renderer->setBreakCount(breakCount);
            renderer->Field = field;
            for (int i = 0; i < breakCount; ++i) {
                renderer->setBreak(i, (*table)[size_t(i)].rendererBreak);
                renderer->Symbol(i)->Color = (*table)[size_t(i)].rendererColour;
            }
            renderer->Symbol(breakCount)->Color = table->back().rendererColour;
            if (isSolarField(field)) layer->Visible = false;
        }
        // A field without a class table has no renderer to finish: that is a failure.
        if (!renderer) throw MapError("no class renderer for field " + field.toStdString());
        for (int i = 0; i <= renderer->BreakCount(); ++i) renderer->Symbol(i)->Outline = false;
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.LayerRenderer()", 48);
    }
}

void SetClassSymbolColor(const QString& field, double value, const SymbolPtr& symbol)
{
    try {
        const std::vector<ClassRow>* table = classTableFor(field);
        if (!table) return;
        for (const ClassRow& row : *table) {
            if (std::isnan(row.resultBound) || value < row.resultBound) {
                if (!symbol) throw MapError("no symbol to colour");
                symbol->Color = row.resultColour;
                return;
            }
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_functions.FillcboSelectQuery()", 48);
    }
}
