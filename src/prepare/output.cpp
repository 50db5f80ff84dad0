#include "prepare/output.h"

#include <algorithm>
#include <cpl_error.h>
#include <cpl_string.h>
#include <filesystem>
#include <fstream>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <stdexcept>

namespace prepare {

void writeShapefile(const std::string& path, const OutTable& table, const std::string& prjText)
{
    auto fail = [&](const std::string& what) {
        const std::string detail = CPLGetLastErrorMsg();
        return std::runtime_error(what + " " + path + (detail.empty() ? "" : ": " + detail));
    };
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!driver) throw std::runtime_error("GDAL has no shapefile driver");
    CPLErrorReset();
    GDALDatasetUniquePtr ds(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds) throw fail("cannot create");
    const OGRwkbGeometryType type = table.dim == 0 ? wkbPoint : table.dim == 1 ? wkbLineString : wkbPolygon;
    // UTF-8 without recoding keeps the text bytes as given; the .cpg says so.
    CPLStringList options;
    options.AddNameValue("ENCODING", "UTF-8");
    const std::string stem = std::filesystem::path(path).stem().string();
    OGRLayer* layer = ds->CreateLayer(stem.c_str(), nullptr, type, options.List());
    if (!layer) throw fail("cannot create");
    for (std::size_t f = 0; f < table.fields.size(); ++f) {
        const OutField& of = table.fields[f];
        OGRFieldDefn fd(of.name.c_str(), of.type);
        int width = of.width;
        if (of.type == OFTString && width == 0) {
            std::size_t longest = 1;
            for (const OutRecord& r : table.records)
                if (const auto* s = std::get_if<std::string>(&r.values[f])) longest = std::max(longest, s->size());
            width = int(std::min<std::size_t>(longest, 254));
        }
        if (width > 0) fd.SetWidth(width);
        if (of.precision > 0) fd.SetPrecision(of.precision);
        if (layer->CreateField(&fd) != OGRERR_NONE) throw fail("cannot create the field " + of.name + " in");
    }
    auto h = geosContext();
    OGRFeatureDefn* defn = layer->GetLayerDefn();
    for (const OutRecord& r : table.records) {
        OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(defn));
        for (std::size_t f = 0; f < table.fields.size() && f < r.values.size(); ++f) {
            const int i = int(f);
            const Value& v = r.values[f];
            if (const auto* n = std::get_if<long long>(&v)) feature->SetField(i, GIntBig(*n));
            else if (const auto* d = std::get_if<double>(&v)) feature->SetField(i, *d);
            else if (const auto* s = std::get_if<std::string>(&v)) feature->SetField(i, s->c_str());
            else feature->SetFieldNull(i);
        }
        if (r.geom) {
            OGRGeometry* g = OGRGeometryFactory::createFromGEOS(h, const_cast<GEOSGeometry*>(r.geom.get()));
            if (!g) throw fail("cannot convert a shape for");
            feature->SetGeometryDirectly(g);
        }
        if (layer->CreateFeature(feature.get()) != OGRERR_NONE) throw fail("cannot write a record to");
    }
    CPLErrorReset();
    ds.reset();
    if (CPLGetLastErrorType() >= CE_Failure) throw fail("cannot finish");
    std::ofstream prj(std::filesystem::path(path).replace_extension(".prj"), std::ios::binary | std::ios::trunc);
    prj << prjText;
    prj.close();
    if (!prj) throw fail("cannot write the projection file of");
}

}  // namespace prepare
