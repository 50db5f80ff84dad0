#include "shapefile_writer.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <stdexcept>

namespace datagen {

namespace fs = std::filesystem;

namespace {

// A fixed header date: the current one would make two runs differ.
constexpr const char* kDbfDate = "DBF_DATE_LAST_UPDATE=2000-01-01";

void registerDrivers()
{
    static std::once_flag once;
    std::call_once(once, [] { GDALAllRegister(); });
}

std::runtime_error failure(const std::string& what, const std::string& path)
{
    std::string msg = what + " " + path;
    const char* cpl = CPLGetLastErrorMsg();
    if (cpl && *cpl) msg += ": " + std::string(cpl);
    return std::runtime_error(msg);
}

std::unique_ptr<OGRFieldDefn> fieldDefinition(const FieldSpec& field)
{
    if (field.name.empty() || field.name.size() > 10)
        throw std::runtime_error("field name must have 1 to 10 characters: \"" + field.name + "\"");
    switch (field.type) {
    case 'C': {
        auto f = std::make_unique<OGRFieldDefn>(field.name.c_str(), OFTString);
        f->SetWidth(field.width > 0 ? field.width : 80);
        return f;
    }
    case 'N': {
        auto f = std::make_unique<OGRFieldDefn>(field.name.c_str(), OFTReal);
        f->SetWidth(field.width > 0 ? field.width : 19);
        f->SetPrecision(field.width == 0 && field.precision == 0 ? 8 : field.precision);
        return f;
    }
    case 'I': {
        auto f = std::make_unique<OGRFieldDefn>(field.name.c_str(), OFTInteger);
        f->SetWidth(field.width > 0 ? field.width : 9);
        return f;
    }
    default:
        throw std::runtime_error("unknown field type '" + std::string(1, field.type) + "' of " + field.name);
    }
}

OGRwkbGeometryType layerType(GeomKind kind)
{
    switch (kind) {
    case GeomKind::Point: return wkbPoint;
    case GeomKind::Line: return wkbLineString;
    case GeomKind::Polygon: return wkbPolygon;
    }
    return wkbUnknown;
}

}  // namespace

void removeShapefile(const std::string& path)
{
    fs::path p(path);
    for (const char* ext : {".shp", ".shx", ".dbf", ".prj", ".cpg", ".qix", ".sbn", ".sbx"}) {
        std::error_code ec;
        fs::remove(fs::path(p).replace_extension(ext), ec);
    }
}

ShapefileWriter::ShapefileWriter(const std::string& path, GeomKind kind, const std::vector<FieldSpec>& fields,
                                 bool withPrj)
    : path_(path), withPrj_(withPrj), fieldCount_(fields.size())
{
    registerDrivers();
    if (fs::path(path).extension() != ".shp") throw std::runtime_error("not a .shp path: " + path);
    std::vector<std::unique_ptr<OGRFieldDefn>> defs;
    for (const auto& f : fields) defs.push_back(fieldDefinition(f));

    removeShapefile(path);
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!driver) throw std::runtime_error("the shapefile driver of GDAL is missing");
    CPLErrorReset();
    dataset_ = driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!dataset_) throw failure("cannot create", path);

    // UTF-8 without recoding keeps the text bytes as given; the .cpg says so.
    char** options = nullptr;
    options = CSLAddString(options, "ENCODING=UTF-8");
    options = CSLAddString(options, kDbfDate);
    std::string stem = fs::path(path).stem().string();
    layer_ = dataset_->CreateLayer(stem.c_str(), nullptr, layerType(kind), options);
    CSLDestroy(options);
    if (!layer_) {
        GDALClose(dataset_);
        dataset_ = nullptr;
        throw failure("cannot create layer", path);
    }
    for (auto& d : defs) {
        if (layer_->CreateField(d.get(), FALSE) != OGRERR_NONE) {
            GDALClose(dataset_);
            dataset_ = nullptr;
            throw failure("cannot create field " + std::string(d->GetNameRef()) + " in", path);
        }
    }
}

ShapefileWriter::~ShapefileWriter()
{
    try {
        close();
    } catch (...) {
    }
}

void ShapefileWriter::add(const OGRGeometry* geometry, const std::vector<AttrValue>& values)
{
    if (!layer_) throw std::runtime_error("shapefile already closed: " + path_);
    if (values.size() > fieldCount_) throw std::runtime_error("more values than fields in " + path_);
    OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer_->GetLayerDefn()));
    for (std::size_t i = 0; i < fieldCount_; ++i) {
        const int idx = static_cast<int>(i);
        if (i >= values.size()) {
            feature->SetFieldNull(idx);
            continue;
        }
        const AttrValue& v = values[i];
        if (std::holds_alternative<long long>(v))
            feature->SetField(idx, static_cast<GIntBig>(std::get<long long>(v)));
        else if (std::holds_alternative<double>(v))
            feature->SetField(idx, std::get<double>(v));
        else if (std::holds_alternative<std::string>(v))
            feature->SetField(idx, std::get<std::string>(v).c_str());
        else
            feature->SetFieldNull(idx);
    }
    if (geometry) feature->SetGeometry(geometry);
    CPLErrorReset();
    if (layer_->CreateFeature(feature.get()) != OGRERR_NONE) throw failure("cannot write a record to", path_);
    ++count_;
}

void ShapefileWriter::close()
{
    if (!dataset_) return;
    layer_ = nullptr;
    CPLErrorReset();
    GDALClose(dataset_);
    dataset_ = nullptr;
    if (CPLGetLastErrorType() >= CE_Failure) throw failure("cannot finish", path_);
    if (withPrj_) {
        const std::string prj = fs::path(path_).replace_extension(".prj").string();
        std::ofstream out(prj, std::ios::binary | std::ios::trunc);
        out << esriPrjText();
        out.close();
        if (!out) throw std::runtime_error("cannot write " + prj);
    }
}

void writeShapefile(const std::string& path, GeomKind kind, const std::vector<FieldSpec>& fields,
                    const std::vector<FeatureSpec>& features, bool withPrj)
{
    ShapefileWriter writer(path, kind, fields, withPrj);
    for (const auto& f : features) {
        if (f.wkt.empty()) {
            writer.add(nullptr, f.values);
            continue;
        }
        OGRGeometry* g = nullptr;
        const char* text = f.wkt.c_str();
        if (OGRGeometryFactory::createFromWkt(text, nullptr, &g) != OGRERR_NONE || !g)
            throw std::runtime_error("bad WKT for " + path + ": " + f.wkt);
        std::unique_ptr<OGRGeometry> owned(g);
        writer.add(owned.get(), f.values);
    }
    writer.close();
}

std::string esriPrjText()
{
    // A zone GDAL finds in its catalogue: a home-made Transverse Mercator of
    // the same shape costs GDAL a catalogue search at every opening.
    return "PROJCS[\"WGS_1984_UTM_Zone_33N\","
           "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],"
           "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],"
           "PROJECTION[\"Transverse_Mercator\"],"
           "PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"False_Northing\",0.0],"
           "PARAMETER[\"Central_Meridian\",15.0],PARAMETER[\"Scale_Factor\",0.9996],"
           "PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]]";
}

}  // namespace datagen
