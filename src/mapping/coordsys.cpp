#include "mapping/coordsys.h"

#include <QFile>
#include <ogr_spatialref.h>

namespace {

// The name of the UNIT node that is a direct child of the root node, as the
// file spells it. GDAL would hand back its own normalised name ("metre").
QString rootUnitName(const QString& wkt)
{
    int depth = 0;
    bool inString = false;
    for (int i = 0; i < wkt.size(); ++i) {
        QChar c = wkt[i];
        if (c == '"') inString = !inString;
        if (inString) continue;
        if (c == '[' || c == '(') ++depth;
        else if (c == ']' || c == ')') --depth;
        else if (depth == 1 && wkt.mid(i, 5).compare("UNIT[", Qt::CaseInsensitive) == 0 &&
                 (i == 0 || !wkt[i - 1].isLetterOrNumber())) {
            int q1 = wkt.indexOf('"', i);
            int q2 = q1 < 0 ? -1 : wkt.indexOf('"', q1 + 1);
            if (q1 >= 0 && q2 > q1) return wkt.mid(q1 + 1, q2 - q1 - 1);
        }
    }
    return {};
}

}  // namespace

std::shared_ptr<CoordinateSystem> CoordinateSystem::fromPrjFile(const QString& prjPath)
{
    QFile f(prjPath);
    if (!f.open(QIODevice::ReadOnly)) return nullptr;
    return fromWkt(QString::fromUtf8(f.readAll()).trimmed());
}

std::shared_ptr<CoordinateSystem> CoordinateSystem::fromWkt(const QString& wkt)
{
    if (wkt.isEmpty()) return nullptr;
    OGRSpatialReference srs;
    const QByteArray text = wkt.toUtf8();
    // The text of a projection file, never a name to look up on disk or on
    // the network, whatever its bytes happen to spell.
    if (srs.SetFromUserInput(text.constData(), OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS_get()) != OGRERR_NONE)
        return nullptr;
    auto cs = std::make_shared<CoordinateSystem>();
    cs->IsProjected = srs.IsProjected();
    cs->Unit.Name = rootUnitName(wkt);
    if (cs->Unit.Name.isEmpty()) {
        const char* name = nullptr;
        if (cs->IsProjected) srs.GetLinearUnits(&name);
        else srs.GetAngularUnits(&name);
        cs->Unit.Name = QString::fromUtf8(name ? name : "");
    }
    OGRErr err = OGRERR_NONE;
    cs->Datum.Spheroid.axis = srs.GetSemiMajor(&err);
    double invf = srs.GetInvFlattening(&err);
    cs->Datum.Spheroid.Flattening = invf != 0 ? 1.0 / invf : 0.0;
    cs->wkt = wkt;
    return cs;
}
