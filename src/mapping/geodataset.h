#pragma once
// A shapefile held in memory: attributes, geometries, bounding boxes and a
// spatial index, read once. Nothing later reads the file again.
#include <QPolygonF>
#include <QString>
#include <QVariant>
#include <memory>
#include <vector>

#include "mapping/coordsys.h"
#include "mapping/geometry.h"

// Field type codes of the component.
enum FieldTypeCode { moLong = 3, moDouble = 5, moDate = 7, moString = 8, moBoolean = 11 };

struct FieldDef {
    QString name;
    int type = moString;
    int width = 0;
    int precision = 0;
};

class TableDesc;
class GeoDataset;
using GeoDatasetPtr = std::shared_ptr<GeoDataset>;

class GeoDataset {
public:
    ~GeoDataset();
    // None, never a failure, for a file that cannot be opened or read whole.
    static GeoDatasetPtr open(const QString& shpPath);
    // A new, empty, writable polygon/line/point shapefile; an existing set of
    // that name is replaced as a whole. Throws MapError when it cannot be made.
    static GeoDatasetPtr create(const QString& shpPath, int shapeType, const TableDesc& desc,
                                const CoordinateSystemPtr& srs);

    const QString& path() const { return path_; }
    QString baseName() const;
    int shapeType() const { return shapeType_; }
    // Record numbers run from 0 to count() - 1, as in the file. A record the
    // .dbf marks deleted keeps its number but is no feature: it has no shape
    // and no values, and neither listing nor search ever returns it.
    int count() const { return int(records_.size()); }
    bool isDeleted(int fid) const { return !deleted_.empty() && deleted_[size_t(fid)]; }
    std::vector<int> recordIds() const;  // the records that are features, in record order
    const std::vector<FieldDef>& fields() const { return fields_; }
    int fieldIndex(const QString& name) const;  // without regard to case; -1 when absent

    // Attribute value: QString for text (blanks as stored, trailing padding
    // dropped), double or qlonglong for numbers, an invalid QVariant for null.
    const QVariant& value(int fid, int field) const { return values_[size_t(fid) * fields_.size() + size_t(field)]; }
    int recordShapeType(int fid) const { return records_[size_t(fid)].type; }
    ShapePtr shape(int fid) const;  // a fresh object sharing the stored geometry; none for a null shape
    const GeomPtr& geom(int fid) const { return records_[size_t(fid)].geom; }
    const Envelope& envelope(int fid) const { return records_[size_t(fid)].env; }
    // Map-unit outlines for drawing: polygon rings, line paths, or one point.
    const std::vector<QPolygonF>& parts(int fid) const { return records_[size_t(fid)].parts; }
    const Envelope& extent() const { return extent_; }
    // The least number in a field; infinity where it holds none or there is no
    // such field. The legend asks at every refill, so it is read once.
    double lowestNumber(int field) const;
    CoordinateSystemPtr coordinateSystem() const { return srs_; }

    // Records matching an attribute expression, in record order. A malformed
    // expression or an unknown field throws MapError.
    std::vector<int> select(const QString& expression) const;
    // Records whose bounding box meets env, in record order.
    std::vector<int> candidates(const Envelope& env) const;

    // Writing (datasets made by create only).
    bool isWritable() const { return writer_ != nullptr; }
    void append(const ShapePtr& shape, const std::vector<QVariant>& values);
    void stopEditing();

private:
    GeoDataset() = default;
    struct Record {
        GeomPtr geom;
        Envelope env;
        int type = moNullShape;
        std::vector<QPolygonF> parts;
    };
    struct Index;
    struct Query;
    struct Writer;

    void buildIndex();

    QString path_;
    int shapeType_ = moNullShape;
    std::vector<FieldDef> fields_;
    std::vector<QVariant> values_;
    std::vector<Record> records_;
    std::vector<char> deleted_;  // empty when no record is deleted
    Envelope extent_;
    CoordinateSystemPtr srs_;
    std::unique_ptr<Index> index_;
    mutable std::vector<double> lowest_;  // per field, NaN until read
    mutable std::unique_ptr<Query> query_;  // in-memory attribute table for the expression engine, made at first use
    std::unique_ptr<Writer> writer_;
};
