#pragma once
#include <QString>
#include <memory>

// What the logic reads of a layer's projection file.
struct CoordinateSystem {
    bool IsProjected = false;
    struct { QString Name; } Unit;  // spelled as the projection file spells it ("Meter", "Degree")
    struct { struct { double axis = 0; double Flattening = 0; } Spheroid; } Datum;
    QString wkt;  // the file's text, for writing it beside a saved result

    // None when the file is missing or unreadable.
    static std::shared_ptr<CoordinateSystem> fromPrjFile(const QString& prjPath);
    static std::shared_ptr<CoordinateSystem> fromWkt(const QString& wkt);
};
using CoordinateSystemPtr = std::shared_ptr<CoordinateSystem>;
