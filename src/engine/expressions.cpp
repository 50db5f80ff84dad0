// The range expressions handed to SearchExpression, and the solar resource
// chosen in the panel turned into a file and a field.
#include "engine/expressions.h"

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/platform.h"
#include "workspace/state.h"

QString CreateWindSelectExpression()
{
    try {
        FrmMain& f = frmMain();
        // "Max" means no upper limit: every density in the data lies below 10000.
        const QString maxText = f.cboQueryDropDown2->Text();
        const double upper = maxText == QLatin1String("Max") ? 10000.0 : conv::ToDouble(maxText);
        const double lower = conv::ToDouble(f.cboQueryDropDown->Text());
        return QStringLiteral("WINDPWRD >= ") + conv::NumText(lower) + QStringLiteral(" AND WINDPWRD <= ") + conv::NumText(upper);
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.CreateWindSelectExpression()", 48);
        return QString();
    }
}

QString CreateSolarSelectExpression()
{
    try {
        FrmMain& f = frmMain();
        // Single precision on purpose: the wind expression keeps doubles.
        const QString minimum = conv::SingleText(conv::ToSingle(f.cboQueryDropDown->Text()));
        const QString maximum = conv::SingleText(conv::ToSingle(f.cboQueryDropDown2->Text()));
        return sSolarField + QStringLiteral(" >= ") + minimum + QStringLiteral(" AND ") + sSolarField +
               QStringLiteral(" <= ") + maximum;
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.CreateSolarSelectExpression()", 48);
        return QString();
    }
}

void GetSolarLayerChosen()
{
    struct Choice { const char* resource; const char* file; const char* field; };
    // The 10 km PV resource runs on the 40 km file, as it always has.
    static const Choice kChoices[] = {
        {"40 km Solar Concentrators Annual Average(KWH/M2/DAY)", "11_solar_direct.shp", "ANNDIR"},
        {"40 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
        {"10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", "13_solar_direct.shp", "ANNDIR"},
        {"10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "14_solar_glo.shp", "ANNGLO"},
        {"40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "15_solar_glo.shp", "ANNGLO"},
        {"10 km Solar PV Annual Average(KWH/M2/DAY)", "12_solar_tilt.shp", "ANNTILT"},
    };
    try {
        const QString chosen = frmMain().cboQueryDropDown3->Text();
        for (const Choice& c : kChoices) {
            if (chosen == QLatin1String(c.resource)) {
                sSolarLayerFile = QLatin1String(c.file);
                sSolarField = QLatin1String(c.field);
                return;
            }
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.GetSolarLayerChosen()", 48);
    }
}
