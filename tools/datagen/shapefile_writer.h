#pragma once
// One shapefile being written through OGR, with the projection file and the
// .dbf header date written by us so that equal input gives equal bytes.
#include <memory>
#include <string>
#include <vector>

#include "datagen.h"

class GDALDataset;
class OGRLayer;
class OGRGeometry;

namespace datagen {

class ShapefileWriter {
public:
    ShapefileWriter(const std::string& path, GeomKind kind, const std::vector<FieldSpec>& fields,
                    bool withPrj = true);
    ~ShapefileWriter();
    ShapefileWriter(const ShapefileWriter&) = delete;
    ShapefileWriter& operator=(const ShapefileWriter&) = delete;

    // geometry may be null (a record without a shape).
    void add(const OGRGeometry* geometry, const std::vector<AttrValue>& values);
    // Flushes the files and writes the .prj; the destructor does it too, but
    // without reporting failures.
    void close();
    std::size_t count() const { return count_; }

private:
    std::string path_;
    bool withPrj_;
    std::size_t fieldCount_;
    std::size_t count_ = 0;
    GDALDataset* dataset_ = nullptr;
    OGRLayer* layer_ = nullptr;
};

// Removes the files of a shapefile (.shp and its companions) if present.
void removeShapefile(const std::string& path);

}  // namespace datagen
