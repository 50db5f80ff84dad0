// The map scale of the read-out: ground width of the view over the width of
// the map control on the screen.
#include "app/scale.h"

#include <cmath>

#include "app/messages.h"
#include "mapping/coordsys.h"
#include "mapping/map.h"
#include "mapping/maperror.h"
#include "mapping/platform.h"

namespace {

// Division and results as the platform had them: a zero divisor or a result
// out of range is a failure, not an infinity.
double checkedDiv(double a, double b)
{
    if (b == 0.0)
        throw MapError("division by zero");
    return a / b;
}

double checked(double v)
{
    if (!std::isfinite(v))
        throw MapError("overflow");
    return v;
}

}  // namespace

QString CalculateScale(Map* map)
{
    try {
        if (map->Layers().Count() == 0)
            return QStringLiteral("- No Map - ");
        const CoordinateSystemPtr cs = map->Layers().Item(0)->CoordinateSystem();
        if (!cs)
            return QStringLiteral("- No Units - ");

        // The constant is a single; the quotient is taken in double precision,
        // which is what gives 1 : 6,619,124 for a million metres on 8565 twips.
        const double mapInches = double(map->Width()) / double(1440.0f);
        const QString unit = cs->Unit.Name.toLower();
        const RectanglePtr extent = map->Extent();
        if (!extent)
            throw MapError("map without extent");

        double groundInches = 0;
        if (unit == QLatin1String("degree")) {
            double midLat = (extent->Top + extent->Bottom) / 2;
            double lon1 = 0;
            double lon2 = extent->Width();
            double lat2 = midLat;
            groundInches = DegreesToMiles(map, lon1, midLat, lon2, lat2) * 5280 * 12;
        } else if (unit == QLatin1String("meter")) {
            groundInches = extent->Width() * 39.37;
        }

        const double scale = checked(checkedDiv(groundInches, mapInches));
        return QStringLiteral("Scale 1 : ") + conv::FormatNumber(scale, 0);
    } catch (...) {
        ErrorMessage(" Error while calculating the scale factor. Error Source:md_functions.CalculateScale()", 48);
        return QString();
    }
}

double DegreesToMiles(Map* map, double& lon1, double& lat1, double& lon2, double& lat2)
{
    try {
        if (lon1 == lon2 && lat1 == lat2)
            return 0;

        double a = 6378137.0;
        double f = 0.003352813;
        const CoordinateSystemPtr cs = map->Layers().Item(0)->CoordinateSystem();
        if (!cs)
            throw MapError("no coordinate system");
        if (!cs->IsProjected) {
            a = cs->Datum.Spheroid.axis;
            f = cs->Datum.Spheroid.Flattening;
        }

        const double F = (DegToRad(lat1) + DegToRad(lat2)) / 2;
        const double G = (DegToRad(lat1) - DegToRad(lat2)) / 2;
        const double L = (DegToRad(lon1) - DegToRad(lon2)) / 2;

        const double sinG2 = std::pow(std::sin(G), 2), cosG2 = std::pow(std::cos(G), 2);
        const double sinF2 = std::pow(std::sin(F), 2), cosF2 = std::pow(std::cos(F), 2);
        const double sinL2 = std::pow(std::sin(L), 2), cosL2 = std::pow(std::cos(L), 2);

        const double S = cosL2 * sinG2 + sinL2 * cosF2;
        const double C = cosL2 * cosG2 + sinL2 * sinF2;
        const double w = std::atan(std::sqrt(checkedDiv(S, C)));
        const double R = checkedDiv(std::sqrt(S * C), w);
        const double D = 2 * a * w;
        const double H1 = checkedDiv(3 * R - 1, 2 * C);
        const double H2 = checkedDiv(3 * R + 1, 2 * S);
        const double metres = checked(D * (1 + f * (H1 * sinF2 * cosG2 - H2 * cosF2 * sinG2)));
        return metres * 0.0006214;
    } catch (...) {
        ErrorMessage(" Error while converting degree to mile. Error Source:md_functions.DegreesToMiles()", 48);
        return 0;
    }
}

double DegToRad(double degrees)
{
    try {
        return checked(degrees * 3.14159265358979 / 180.0);
    } catch (...) {
        ErrorMessage(" Error while lconverting degree to Radian. Error Source:md_functions.DegToRad()", 48);
        return 0;
    }
}
