// "Wind by Power Density": the wind polygons whose density lies in the range,
// copied into the result model with the colour of their class.
#include "app/frmMain.h"
#include "app/messages.h"
#include "engine/expressions.h"
#include "engine/queries.h"
#include "engine/query_run.h"
#include "presentation/renderers.h"
#include "workspace/state.h"

void wind_class_x_or_better()
{
    try {
        HideContextLayers({"37_subcountrybnd2.shp", "42_railroad.shp", "43_roads.shp", "44_transmissionline.shp"}, false);
        ShowProgress(QStringLiteral("Calculating..."));

        const QString expression = CreateWindSelectExpression();
        MapLayerPtr layer = LayerByFile("20_wind.shp");
        RecordsetPtr records = layer->SearchExpression(expression);
        const int total = records ? records->CalculateStatistics("FeatureID")->Count : 0;

        if (!cShapes || !cSymbols) throw MapError("result model not made");
        cFieldValues = std::make_shared<Collection<QVariant>>();
        sFieldName = QStringLiteral("WINDPWRD");

        StepText stepText(QStringLiteral("Calculating... "));
        for (int i = 0; records && !records->Eof(); ++i, records->MoveNext()) {
            if (i % 50 == 0) YieldToEvents();
            if (bCancelQuery) return;
            Fields fields = records->Fields();
            if (fields("Shape").Type() == moPolygon) {
                auto symbol = std::make_shared<Symbol>();
                symbol->Color = 0;
                symbol->Outline = false;
                cShapes->Add(fields("Shape").shapeValue(), QString::number(cShapes->Count()));
                SetClassSymbolColor("WINDPWRD", fields("WINDPWRD").toDouble(), symbol);
                cSymbols->Add(symbol, QString::number(cSymbols->Count()));
                cFieldValues->Add(fields("WINDPWRD").Value(), QString::number(cFieldValues->Count()));
            }
            ShowStepProgress(stepText.at(double(i) / total));
        }
        ShowProgress(QStringLiteral("Calculating... finished"));
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.wind_class_x_or_better()", 48);
    }
}
