#include "prepare/vectors.h"

#include <QString>
#include <cmath>
#include <cpl_error.h>
#include <filesystem>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "mapping/dbftext.h"

namespace prepare {

namespace fs = std::filesystem;

std::string gdalMessage()
{
    const std::string m = CPLGetLastErrorMsg();
    return m.empty() ? "" : " (" + m + ")";
}

namespace {

struct CtDeleter {
    void operator()(OGRCoordinateTransformation* ct) const { OGRCoordinateTransformation::DestroyCT(ct); }
};
using TransformPtr = std::unique_ptr<OGRCoordinateTransformation, CtDeleter>;

TransformPtr transformBetween(const OGRSpatialReference& from, const OGRSpatialReference& to)
{
    OGRSpatialReference a(from), b(to);
    a.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    b.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return TransformPtr(OGRCreateCoordinateTransformation(&a, &b));
}

int dimensionOf(OGRwkbGeometryType t)
{
    switch (wkbFlatten(t)) {
    case wkbPoint:
    case wkbMultiPoint: return 0;
    case wkbLineString:
    case wkbMultiLineString: return 1;
    case wkbPolygon:
    case wkbMultiPolygon: return 2;
    default: return -1;
    }
}

const char* dimensionName(int dim) { return dim == 0 ? "points" : dim == 1 ? "lines" : "polygons"; }

// One vector source opened as the recipe says: its layer, its filter, and the
// fields the output takes from it.
class VectorSource {
public:
    VectorSource(const Recipe& recipe, const LayerRecipe& r, const char* standardField) : recipe_(recipe), r_(r)
    {
        if (!fs::exists(r.source)) fail(r.sourceLine, "the source does not exist");
        CPLErrorReset();
        ds_.reset(GDALDataset::Open(r.source.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
        if (!ds_) fail(r.sourceLine, "the source cannot be read as a vector file" + gdalMessage());
        if (!r.layer.empty()) {
            layer_ = ds_->GetLayerByName(r.layer.c_str());
            if (!layer_) fail(r.line, "the source has no layer \"" + r.layer + "\" (it has " + layerNames() + ")");
        } else if (ds_->GetLayerCount() == 1) {
            layer_ = ds_->GetLayer(0);
        } else if (ds_->GetLayerCount() == 0) {
            fail(r.sourceLine, "the source holds no vector layer");
        } else {
            fail(r.sourceLine, "the source holds several layers (" + layerNames() + "): name one with layer = \"...\"");
        }
        if (!layer_->GetSpatialRef()) fail(r.sourceLine, "the source has no coordinate system");
        if (!r.where.empty()) {
            CPLErrorReset();
            if (layer_->SetAttributeFilter(r.where.c_str()) != OGRERR_NONE)
                fail(r.whereLine, "OGR rejects the filter \"" + r.where + "\"" + gdalMessage());
        }
        OGRFeatureDefn* defn = layer_->GetLayerDefn();
        if (*standardField && !r.field.empty()) {
            const int i = defn->GetFieldIndex(r.field.c_str());
            if (i < 0) fail(r.fieldLine, "unknown field \"" + r.field + "\" (the source has " + fieldNames() + ")");
            addField(i, standardField);
        }
        if (r.keepAll) {
            for (int i = 0; i < defn->GetFieldCount(); ++i) addField(i, defn->GetFieldDefn(i)->GetNameRef());
        } else {
            for (const std::string& k : r.keep) {
                const int i = defn->GetFieldIndex(k.c_str());
                if (i < 0) fail(r.keepLine, "unknown field \"" + k + "\" in keep (the source has " + fieldNames() + ")");
                addField(i, defn->GetFieldDefn(i)->GetNameRef());
            }
        }
        // OGR's shapefile reader trims the blanks a text begins with.
        if (std::string(ds_->GetDriverName()) == "ESRI Shapefile") {
            haveDbf_ = dbf_.read(QString::fromStdString(fs::path(r.source).replace_extension(".dbf").string()));
            if (!haveDbf_) haveDbf_ = dbf_.read(QString::fromStdString(fs::path(r.source).replace_extension(".DBF").string()));
            QString encoding = QString::fromUtf8(layer_->GetMetadataItem("SOURCE_ENCODING", "SHAPEFILE") ?: "");
            if (encoding.isEmpty() && haveDbf_) encoding = languageDriverEncoding(dbf_.header());
            decodeText_ = TextDecoder(encoding);
        }
    }

    [[noreturn]] void fail(int line, const std::string& what) const { throw InputError(where(recipe_, r_, line, what)); }

    OGRLayer& layer() { return *layer_; }
    const std::vector<OutField>& fields() const { return fields_; }

    void checkDimension(int want) const
    {
        const int have = dimensionOf(layer_->GetGeomType());
        if (have >= 0 && have != want)
            fail(r_.sourceLine, std::string("the source holds ") + dimensionName(have) + ", [" + r_.stem + "] needs " +
                                    dimensionName(want));
    }

    std::vector<Value> values(OGRFeature& f) const
    {
        std::vector<Value> out;
        for (std::size_t k = 0; k < fields_.size(); ++k) {
            const int i = from_[k];
            if (!f.IsFieldSetAndNotNull(i)) {
                out.emplace_back();
            } else if (fields_[k].type == OFTString) {
                const int d = haveDbf_ ? dbf_.fieldAt(i, QString::fromUtf8(f.GetFieldDefnRef(i)->GetNameRef())) : -1;
                if (d >= 0) out.emplace_back(decodeText_(dbf_.bytes(int(f.GetFID()), d)).toStdString());
                else out.emplace_back(std::string(f.GetFieldAsString(i)));
            } else if (fields_[k].type == OFTReal) {
                out.emplace_back(f.GetFieldAsDouble(i));
            } else {
                out.emplace_back(static_cast<long long>(f.GetFieldAsInteger64(i)));
            }
        }
        return out;
    }

private:
    std::string layerNames() const
    {
        std::string s;
        for (int i = 0; i < ds_->GetLayerCount(); ++i) s += (i ? ", " : "") + std::string(ds_->GetLayer(i)->GetName());
        return s.empty() ? "none" : s;
    }

    std::string fieldNames() const
    {
        OGRFeatureDefn* defn = layer_->GetLayerDefn();
        std::string s;
        for (int i = 0; i < defn->GetFieldCount(); ++i) s += (i ? ", " : "") + std::string(defn->GetFieldDefn(i)->GetNameRef());
        return s.empty() ? "no fields" : s;
    }

    // A shapefile field name has at most 10 characters; a name already taken
    // (the standard field above all) is not added twice.
    void addField(int index, const std::string& name)
    {
        const std::string shortName = name.substr(0, 10);
        for (const OutField& f : fields_)
            if (QString::fromStdString(f.name).compare(QString::fromStdString(shortName), Qt::CaseInsensitive) == 0) return;
        const OGRFieldDefn* fd = layer_->GetLayerDefn()->GetFieldDefn(index);
        OutField f;
        f.name = shortName;
        switch (fd->GetType()) {
        case OFTInteger: f.type = OFTInteger; f.width = fd->GetWidth(); break;
        case OFTInteger64: f.type = OFTInteger64; f.width = fd->GetWidth(); break;
        case OFTReal: f.type = OFTReal; f.width = fd->GetWidth(); f.precision = fd->GetPrecision(); break;
        default: f.type = OFTString; break;
        }
        if (f.type == OFTReal && (f.width == 0 || f.width > 24)) f.width = 0, f.precision = 0;
        fields_.push_back(f);
        from_.push_back(index);
    }

    const Recipe& recipe_;
    const LayerRecipe& r_;
    GDALDatasetUniquePtr ds_;
    OGRLayer* layer_ = nullptr;
    std::vector<OutField> fields_;
    std::vector<int> from_;
    DbfText dbf_;
    bool haveDbf_ = false;
    mutable TextDecoder decodeText_{QString()};
};

// Reprojects, repairs and clips each feature of the source into table.
void readInto(VectorSource& src, OGRCoordinateTransformation& ct, const ClipArea* clip, OutTable& table)
{
    src.layer().ResetReading();
    for (OGRFeatureUniquePtr f(src.layer().GetNextFeature()); f; f.reset(src.layer().GetNextFeature())) {
        std::unique_ptr<OGRGeometry> g(f->StealGeometry());
        if (!g || g->IsEmpty() || g->transform(&ct) != OGRERR_NONE) continue;
        GeomPtr shape = partsOfDimension(makeValid(toGeos(*g)).get(), table.dim);
        if (clip) shape = clip->clip(shape, table.dim);
        if (!shape) continue;
        std::vector<Value> values = src.values(*f);
        auto h = geosContext();
        if (table.dim == 0 && GEOSGetNumGeometries_r(h, shape.get()) > 1) {
            // A point shapefile holds single points.
            for (int i = 0; i < GEOSGetNumGeometries_r(h, shape.get()); ++i)
                table.records.push_back({adoptGeom(GEOSGeom_clone_r(h, GEOSGetGeometryN_r(h, shape.get(), i))), values});
        } else {
            table.records.push_back({shape, std::move(values)});
        }
    }
}

}  // namespace

Target makeTarget(const Recipe& recipe, const LayerRecipe& r)
{
    VectorSource src(recipe, r, "");
    src.checkDimension(2);
    const OGRSpatialReference sourceSrs(*src.layer().GetSpatialRef());

    Target t;
    if (recipe.crs == "auto") {
        // The UTM zone of the centre of what the filter selects.
        OGREnvelope env;
        bool any = false;
        src.layer().ResetReading();
        for (OGRFeatureUniquePtr f(src.layer().GetNextFeature()); f; f.reset(src.layer().GetNextFeature())) {
            if (const OGRGeometry* g = f->GetGeometryRef(); g && !g->IsEmpty()) {
                OGREnvelope e;
                g->getEnvelope(&e);
                env.Merge(e);
                any = true;
            }
        }
        if (!any) src.fail(r.whereLine ? r.whereLine : r.sourceLine, "the boundary source selects no boundary");
        OGRSpatialReference wgs84;
        wgs84.SetWellKnownGeogCS("WGS84");
        TransformPtr toLonLat = transformBetween(sourceSrs, wgs84);
        double x = (env.MinX + env.MaxX) / 2, y = (env.MinY + env.MaxY) / 2;
        if (!toLonLat || !toLonLat->Transform(1, &x, &y))
            src.fail(r.sourceLine, "the centre of the boundary has no longitude and latitude");
        const int zone = std::clamp(int(std::floor((x + 180) / 6)) + 1, 1, 60);
        t.srs.importFromEPSG((y >= 0 ? 32600 : 32700) + zone);
    } else {
        const int line = recipe.crsLine;
        if (t.srs.SetFromUserInput(recipe.crs.c_str()) != OGRERR_NONE)
            throw InputError(recipe.name + " line " + std::to_string(line) + ": unknown coordinate system \"" + recipe.crs + "\"");
        if (!t.srs.IsProjected() || std::fabs(t.srs.GetLinearUnits() - 1.0) > 1e-9)
            throw InputError(recipe.name + " line " + std::to_string(line) + ": the coordinate system \"" + recipe.crs +
                             "\" is not projected in metres; the queries measure in metres");
    }
    const char* const esri[] = {"FORMAT=WKT1_ESRI", nullptr};
    char* wkt = nullptr;
    if (t.srs.exportToWkt(&wkt, esri) != OGRERR_NONE || !wkt) {
        CPLFree(wkt);
        throw InputError(recipe.name + ": the coordinate system \"" + recipe.crs + "\" has no projection file text");
    }
    t.prj = wkt;
    CPLFree(wkt);

    TransformPtr ct = transformBetween(sourceSrs, t.srs);
    if (!ct) src.fail(r.sourceLine, "the boundary cannot be reprojected" + gdalMessage());
    t.boundaryTable.dim = 2;
    t.boundaryTable.fields = src.fields();
    readInto(src, *ct, nullptr, t.boundaryTable);
    if (t.boundaryTable.records.empty())
        src.fail(r.whereLine ? r.whereLine : r.sourceLine, "the boundary source selects no boundary");
    auto h = geosContext();
    std::vector<GEOSGeometry*> parts;
    for (const OutRecord& rec : t.boundaryTable.records) parts.push_back(GEOSGeom_clone_r(h, rec.geom.get()));
    GeomPtr all = adoptGeom(GEOSGeom_createCollection_r(h, GEOS_GEOMETRYCOLLECTION, parts.data(), unsigned(parts.size())));
    GeomPtr area = adoptGeom(GEOSUnaryUnion_r(h, all.get()));
    t.extent = Envelope::of(area.get());
    t.boundary = ClipArea(area);
    return t;
}

OutTable makeVectorLayer(const Recipe& recipe, const LayerRecipe& r, const StandardLayer& standard, const Target& target)
{
    VectorSource src(recipe, r, standard.field);
    OutTable table;
    table.dim = standard.kind == Kind::Points ? 0 : standard.kind == Kind::Lines ? 1 : 2;
    src.checkDimension(table.dim);
    table.fields = src.fields();
    TransformPtr ct = transformBetween(*src.layer().GetSpatialRef(), target.srs);
    if (!ct) src.fail(r.sourceLine, "the source cannot be reprojected" + gdalMessage());
    ClipArea margin;
    const ClipArea* clip = &target.boundary;
    if (keepsMargin(standard) && r.marginKm > 0) {
        margin = ClipArea(adoptGeom(GEOSBuffer_r(geosContext(), target.boundary.area().get(), r.marginKm * 1000, 8)));
        clip = &margin;
    }
    readInto(src, *ct, clip, table);
    return table;
}

}  // namespace prepare
