#include "mapping/geodataset.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogr_feature.h>
#include <ogr_geometry.h>
#include <ogr_swq.h>
#include <ogrsf_frmts.h>

#include "mapping/dbftext.h"
#include "mapping/recordset.h"

namespace {

void registerDrivers()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Matching a projection file against the whole projection database
        // costs up to half a second a file; the program only reads its text.
        CPLSetConfigOption("USE_OSR_FIND_MATCHES", "NO");
        GDALAllRegister();
    });
}

// Where an expression compares one field with numbers only (=, <>, <, <=, >,
// >=, BETWEEN, IN, joined by AND, OR and NOT), its answer can change only at
// those numbers, as the expression engine compares them: plainly, as doubles
// or as integers. Gathers them; false where anything else takes part
// (arithmetic, functions, texts, NULL).
bool numberCuts(const swq_expr_node* n, int column, std::vector<double>& cuts)
{
    constexpr GIntBig kExact = GIntBig(1) << 53;  // beyond it integers have no double of their own
    if (!n) return false;
    switch (n->eNodeType) {
    case SNT_COLUMN:
        return n->field_index == column && n->table_index == 0;
    case SNT_CONSTANT:
        if (n->is_null) return false;
        if (n->field_type == SWQ_FLOAT) {
            cuts.push_back(n->float_value);
            return true;
        }
        if (SWQ_IS_INTEGER(n->field_type) && n->int_value >= -kExact && n->int_value <= kExact) {
            cuts.push_back(double(n->int_value));
            return true;
        }
        return false;
    case SNT_OPERATION:
        switch (n->nOperation) {
        case SWQ_OR: case SWQ_AND: case SWQ_NOT: case SWQ_EQ: case SWQ_NE: case SWQ_GE:
        case SWQ_LE: case SWQ_LT: case SWQ_GT: case SWQ_IN: case SWQ_BETWEEN: break;
        default: return false;
        }
        for (int i = 0; i < n->nSubExprCount; ++i)
            if (!numberCuts(n->papoSubExpr[i], column, cuts)) return false;
        return true;
    }
    return false;
}

// GDAL reports to stderr unless told otherwise; a file that cannot be read is
// a "none" to our callers, not a message.
struct QuietErrors {
    QuietErrors() { CPLPushErrorHandler(CPLQuietErrorHandler); CPLErrorReset(); }
    ~QuietErrors() { CPLPopErrorHandler(); }
};

// Finds a sibling of the .shp with another extension, whatever its case.
QString sibling(const QString& shpPath, const QString& ext)
{
    QFileInfo fi(shpPath);
    const QString base = fi.completeBaseName();
    QDir dir = fi.absoluteDir();
    const QString exact = dir.filePath(base + "." + ext);
    if (QFileInfo::exists(exact)) return exact;
    const QStringList all = dir.entryList(QDir::Files);
    for (const QString& f : all)
        if (f.compare(base + "." + ext, Qt::CaseInsensitive) == 0) return dir.filePath(f);
    return {};
}

int shapeTypeOf(OGRwkbGeometryType t)
{
    switch (wkbFlatten(t)) {
    case wkbPoint:
    case wkbMultiPoint: return moPoint;
    case wkbLineString:
    case wkbMultiLineString: return moLine;
    case wkbPolygon:
    case wkbMultiPolygon: return moPolygon;
    default: return moNullShape;
    }
}

void appendRing(const OGRLineString* ls, std::vector<QPolygonF>& out)
{
    QPolygonF poly;
    const int n = ls->getNumPoints();
    poly.reserve(n);
    for (int i = 0; i < n; ++i) poly.append(QPointF(ls->getX(i), ls->getY(i)));
    out.push_back(std::move(poly));
}

void collectParts(const OGRGeometry* g, std::vector<QPolygonF>& out)
{
    if (!g) return;
    switch (wkbFlatten(g->getGeometryType())) {
    case wkbPoint: {
        auto p = g->toPoint();
        out.push_back(QPolygonF({QPointF(p->getX(), p->getY())}));
        break;
    }
    case wkbLineString:
        appendRing(g->toLineString(), out);
        break;
    case wkbPolygon: {
        auto p = g->toPolygon();
        if (p->getExteriorRing()) appendRing(p->getExteriorRing(), out);
        for (int i = 0; i < p->getNumInteriorRings(); ++i) appendRing(p->getInteriorRing(i), out);
        break;
    }
    case wkbMultiPoint:
    case wkbMultiLineString:
    case wkbMultiPolygon:
    case wkbGeometryCollection: {
        auto c = g->toGeometryCollection();
        for (int i = 0; i < c->getNumGeometries(); ++i) collectParts(c->getGeometryRef(i), out);
        break;
    }
    default:
        break;
    }
}

}  // namespace

// --- spatial index -------------------------------------------------------------

struct GeoDataset::Index {
    GEOSSTRtree* tree = nullptr;
    size_t records = 0;  // those the tree holds; later ones are written, not indexed
    ~Index() { if (tree) GEOSSTRtree_destroy_r(geosContext(), tree); }
};

void GeoDataset::buildIndex()
{
    index_ = std::make_unique<Index>();
    auto h = geosContext();
    index_->tree = GEOSSTRtree_create_r(h, 10);
    index_->records = records_.size();
    for (size_t i = 0; i < records_.size(); ++i)
        if (records_[i].geom) GEOSSTRtree_insert_r(h, index_->tree, records_[i].geom.get(), reinterpret_cast<void*>(i + 1));
}

std::vector<int> GeoDataset::candidates(const Envelope& env) const
{
    std::vector<int> out;
    if (!index_ || env.isEmpty() || records_.empty()) return out;
    // A box round the whole layer, as at full extent, meets every record the
    // tree holds; they are listed in order without walking it and sorting.
    if (env.contains(extent_)) {
        out.reserve(index_->records);
        for (size_t i = 0; i < index_->records; ++i)
            if (records_[i].geom && !records_[i].env.isEmpty()) out.push_back(int(i));
        return out;
    }
    auto h = geosContext();
    GeomPtr box = adoptGeom(GEOSGeom_createRectangle_r(h, env.minX, env.minY, env.maxX, env.maxY));
    GEOSSTRtree_query_r(h, index_->tree, box.get(),
        [](void* item, void* user) {
            static_cast<std::vector<int>*>(user)->push_back(int(reinterpret_cast<size_t>(item) - 1));
        },
        &out);
    std::sort(out.begin(), out.end());
    return out;
}

// --- attribute queries ----------------------------------------------------------

struct GeoDataset::Query {
    OGRFeatureDefn* defn = nullptr;
    ~Query() {
        if (defn) defn->Release();
    }
};

std::vector<int> GeoDataset::select(const QString& expression) const
{
    const int nf = int(fields_.size());
    if (!query_) {
        auto q = std::make_unique<Query>();
        q->defn = new OGRFeatureDefn("records");
        q->defn->Reference();
        q->defn->SetGeomType(wkbNone);
        for (const FieldDef& f : fields_) {
            OGRFieldType t = f.type == moString ? OFTString : f.type == moLong ? OFTInteger64 : OFTReal;
            OGRFieldDefn fd(f.name.toUtf8().constData(), t);
            q->defn->AddFieldDefn(&fd);
        }
        if (fieldIndex("FeatureID") < 0) {
            OGRFieldDefn fd("FeatureID", OFTInteger64);
            q->defn->AddFieldDefn(&fd);
        }
        query_ = std::move(q);
    }
    QuietErrors quiet;
    OGRFeatureQuery fq;
    if (fq.Compile(query_->defn, expression.toUtf8().constData(), TRUE, nullptr) != OGRERR_NONE)
        throw MapError("bad expression: " + expression.toStdString());
    // One feature is filled with each record's values in turn, and only with
    // the columns the expression names.
    std::vector<int> columns;
    int namesUsed = 0;
    char** used = fq.GetUsedFields();
    for (char** u = used; u && *u; ++u, ++namesUsed)
        if (int c = query_->defn->GetFieldIndex(*u); c >= 0) columns.push_back(c);
    CSLDestroy(used);
    OGRFeatureUniquePtr feat(OGRFeature::CreateFeature(query_->defn));
    auto evaluate = [&](int r) {
        for (int c : columns) {
            if (c == nf) {
                feat->SetField(c, GIntBig(r));
                continue;
            }
            const QVariant& v = value(r, c);
            if (!v.isValid() || v.isNull()) {
                feat->SetFieldNull(c);
                continue;
            }
            switch (fields_[size_t(c)].type) {
            case moString: feat->SetField(c, v.toString().toUtf8().constData()); break;
            case moLong: feat->SetField(c, GIntBig(v.toLongLong())); break;
            default: feat->SetField(c, v.toDouble()); break;
            }
        }
        feat->SetFID(r);
        return fq.Evaluate(feat.get()) != FALSE;
    };

    std::vector<int> out;
    // Where the expression names one field of the table and nothing else of the
    // record, a null is evaluated once and every other value as answerOf says.
    auto walk = [&](int c, auto answerOf) {
        signed char ofNull = -1;
        for (int r = 0; r < count(); ++r) {
            if (isDeleted(r)) continue;
            const QVariant& v = value(r, c);
            bool selected;
            if (!v.isValid() || v.isNull()) {
                if (ofNull < 0) ofNull = evaluate(r);
                selected = ofNull;
            } else {
                selected = answerOf(r, v);
            }
            if (selected) out.push_back(r);
        }
    };
    const int c = namesUsed == 1 && columns.size() == 1 && columns[0] != nf ? columns[0] : -1;
    const int type = c >= 0 ? fields_[size_t(c)].type : -1;
    std::vector<double> cuts;
    if ((type == moLong || type == moDouble) &&
        numberCuts(static_cast<const swq_expr_node*>(fq.GetSWQExpr()), c, cuts)) {
        // The answer is the same for every value between two neighbouring
        // cuts and for each cut itself: one evaluation per stretch met.
        std::sort(cuts.begin(), cuts.end());
        cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
        std::vector<signed char> answers(2 * cuts.size() + 1, -1);
        walk(c, [&](int r, const QVariant& v) -> bool {
            // Integers beyond 2^53 have no double of their own.
            const double d = type == moLong ? double(v.toLongLong()) : v.toDouble();
            if (std::isnan(d) || std::abs(d) > 9007199254740992.0) return evaluate(r);  // 2^53
            const size_t at = size_t(std::lower_bound(cuts.begin(), cuts.end(), d) - cuts.begin());
            signed char& answer = answers[2 * at + (at < cuts.size() && cuts[at] == d)];
            if (answer < 0) answer = evaluate(r);
            return answer;
        });
    } else if (type == moString) {
        // Land-use names and the like: a few names over many records.
        QHash<QString, bool> texts;
        walk(c, [&](int r, const QVariant& v) -> bool {
            auto it = texts.constFind(v.toString());
            return it != texts.constEnd() ? *it : *texts.insert(v.toString(), evaluate(r));
        });
    } else {
        for (int r = 0; r < count(); ++r)
            if (!isDeleted(r) && evaluate(r)) out.push_back(r);
    }
    if (CPLGetLastErrorType() == CE_Failure) throw MapError("expression could not be evaluated");
    return out;
}

// --- reading ------------------------------------------------------------------

GeoDataset::~GeoDataset() = default;

QString GeoDataset::baseName() const { return QFileInfo(path_).completeBaseName(); }

std::vector<int> GeoDataset::recordIds() const
{
    std::vector<int> ids;
    ids.reserve(records_.size());
    for (int i = 0; i < count(); ++i)
        if (!isDeleted(i)) ids.push_back(i);
    return ids;
}

int GeoDataset::fieldIndex(const QString& name) const
{
    for (size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].name.compare(name, Qt::CaseInsensitive) == 0) return int(i);
    return -1;
}

double GeoDataset::lowestNumber(int field) const
{
    if (field < 0 || size_t(field) >= fields_.size()) return std::numeric_limits<double>::infinity();
    if (lowest_.size() != fields_.size()) lowest_.assign(fields_.size(), std::nan(""));
    double& lowest = lowest_[size_t(field)];
    if (std::isnan(lowest)) {
        lowest = std::numeric_limits<double>::infinity();
        for (int i = 0; i < count(); ++i) {
            const QVariant& v = value(i, field);
            switch (v.typeId()) {
            case QMetaType::Double:
            case QMetaType::Float:
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::LongLong:
            case QMetaType::ULongLong:
                lowest = std::min(lowest, v.toDouble());
                break;
            default:
                break;
            }
        }
    }
    return lowest;
}

ShapePtr GeoDataset::shape(int fid) const
{
    const Record& r = records_.at(size_t(fid));
    if (!r.geom) return nullptr;
    switch (r.type) {
    case moPolygon: return std::make_shared<Polygon>(r.geom, r.env);
    case moLine: return std::make_shared<Line>(r.geom, r.env);
    case moPoint: return std::make_shared<Point>(r.geom);
    default: return shapeFromGeom(r.geom);
    }
}

GeoDatasetPtr GeoDataset::open(const QString& shpPath)
{
    registerDrivers();
    QuietErrors quiet;
    if (!QFileInfo(shpPath).isFile()) return nullptr;
    const QString shx = sibling(shpPath, "shx"), dbf = sibling(shpPath, "dbf");
    if (shx.isEmpty() || dbf.isEmpty()) return nullptr;

    const char* drivers[] = {"ESRI Shapefile", nullptr};
    const QByteArray p = QFile::encodeName(shpPath);
    GDALDatasetUniquePtr ds(GDALDataset::Open(p.constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers));
    if (!ds || ds->GetLayerCount() < 1) return nullptr;
    OGRLayer* layer = ds->GetLayer(0);

    std::shared_ptr<GeoDataset> d(new GeoDataset());
    d->path_ = QFileInfo(shpPath).absoluteFilePath();
    d->shapeType_ = shapeTypeOf(layer->GetGeomType());
    OGRFeatureDefn* defn = layer->GetLayerDefn();
    DbfText dbfText;
    const bool haveDbf = dbfText.read(dbf);
    QString encoding = QString::fromUtf8(layer->GetMetadataItem("SOURCE_ENCODING", "SHAPEFILE") ?: "");
    if (encoding.isEmpty() && haveDbf && !sibling(shpPath, "cpg").isEmpty())
        encoding = languageDriverEncoding(dbfText.header());
    TextDecoder decodeText(encoding);
    std::vector<int> dbfField;
    for (int i = 0; i < defn->GetFieldCount(); ++i) {
        OGRFieldDefn* fd = defn->GetFieldDefn(i);
        FieldDef f;
        f.name = QString::fromUtf8(fd->GetNameRef());
        switch (fd->GetType()) {
        case OFTInteger:
        case OFTInteger64: f.type = moLong; break;
        case OFTReal: f.type = moDouble; break;
        case OFTDate: f.type = moDate; break;
        default: f.type = moString; break;
        }
        f.width = fd->GetWidth();
        f.precision = fd->GetPrecision();
        d->fields_.push_back(f);
        dbfField.push_back(f.type == moString && haveDbf ? dbfText.fieldAt(i, f.name) : -1);
    }
    const size_t nf = d->fields_.size();

    // The driver reads the .prj when a feature first asks for it; a file it
    // cannot understand is reported then, and must not pass for a broken
    // record. Such a layer has no coordinate system, as one without .prj.
    layer->GetSpatialRef();
    CPLErrorReset();

    auto h = geosContext();
    // The count is that of the file; the driver passes over the records the
    // .dbf marks deleted, and their numbers stay empty slots here.
    const GIntBig total = std::max<GIntBig>(layer->GetFeatureCount(TRUE), 0);
    d->records_.reserve(size_t(total));
    d->values_.reserve(size_t(total) * nf);
    auto skipTo = [&](GIntBig fid) {
        if (GIntBig(d->records_.size()) >= fid) return;
        d->deleted_.resize(d->records_.size(), 0);
        d->deleted_.resize(size_t(fid), 1);
        d->records_.resize(size_t(fid));
        d->values_.resize(size_t(fid) * nf);
    };
    layer->ResetReading();
    for (OGRFeatureUniquePtr feat(layer->GetNextFeature()); feat; feat.reset(layer->GetNextFeature())) {
        if (CPLGetLastErrorType() == CE_Failure) return nullptr;
        const GIntBig fid = feat->GetFID();
        if (fid < GIntBig(d->records_.size())) return nullptr;  // not the file's own numbering
        skipTo(fid);
        for (size_t c = 0; c < nf; ++c) {
            const int ci = int(c);
            const FieldDef& f = d->fields_[c];
            if (f.type == moString) {
                if (dbfField[c] >= 0) d->values_.push_back(decodeText(dbfText.bytes(int(fid), dbfField[c])));
                else d->values_.push_back(feat->IsFieldSetAndNotNull(ci) ? QString::fromUtf8(feat->GetFieldAsString(ci)) : QString(""));
            } else if (!feat->IsFieldSetAndNotNull(ci)) {
                d->values_.push_back(QVariant());
            } else if (f.type == moLong) {
                d->values_.push_back(QVariant(qlonglong(feat->GetFieldAsInteger64(ci))));
            } else if (f.type == moDouble) {
                d->values_.push_back(QVariant(feat->GetFieldAsDouble(ci)));
            } else {
                d->values_.push_back(QString::fromUtf8(feat->GetFieldAsString(ci)));
            }
        }
        Record rec;
        if (OGRGeometry* g = feat->GetGeometryRef(); g && !g->IsEmpty()) {
            // Z and M values are dropped: shapes are drawn and queried in the plane.
            if (g->Is3D() || g->IsMeasured()) g->flattenTo2D();
            rec.type = shapeTypeOf(g->getGeometryType());
            if (GEOSGeometry* gg = g->exportToGEOS(h)) {
                rec.geom = GeomPtr(gg, GeomDeleter());
                rec.env = Envelope::of(gg);
            } else {
                rec.type = moNullShape;
            }
            collectParts(g, rec.parts);
        }
        d->extent_.expand(rec.env);
        d->records_.push_back(std::move(rec));
        if (!d->deleted_.empty()) d->deleted_.push_back(0);
    }
    if (CPLGetLastErrorType() == CE_Failure) return nullptr;
    skipTo(total);
    if (d->shapeType_ == moNullShape) {
        for (const Record& r : d->records_)
            if (r.type != moNullShape) { d->shapeType_ = r.type; break; }
    }
    if (QString prj = sibling(shpPath, "prj"); !prj.isEmpty()) d->srs_ = CoordinateSystem::fromPrjFile(prj);
    d->buildIndex();
    return d;
}

// --- writing ------------------------------------------------------------------

// A new set is written under a temporary name beside its destination and put
// in place only when editing stops, so a failed save leaves what was there.
struct GeoDataset::Writer {
    GDALDatasetUniquePtr ds;
    OGRLayer* layer = nullptr;
    QString dir, base, tmpBase;
    QString prjText;
    bool committed = false;

    QStringList tmpFiles() const {
        return QDir(dir).entryList({tmpBase + ".*"}, QDir::Files | QDir::Hidden);
    }
    ~Writer() {
        ds.reset();
        if (!committed)
            for (const QString& f : tmpFiles()) QFile::remove(QDir(dir).filePath(f));
    }
};

GeoDatasetPtr GeoDataset::create(const QString& shpPath, int shapeType, const TableDesc& desc,
                                 const CoordinateSystemPtr& srs)
{
    registerDrivers();
    QuietErrors quiet;
    QFileInfo fi(shpPath);
    const QString dir = fi.absolutePath();
    if (!QFileInfo(dir).isDir()) throw MapError("no such directory");
    auto w = std::make_unique<Writer>();
    w->dir = dir;
    w->base = fi.completeBaseName();
    w->tmpBase = "." + w->base + ".saving";
    if (srs) w->prjText = srs->wkt;

    GDALDriver* drv = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (!drv) throw MapError("no shapefile driver");
    const QByteArray tmpPath = QFile::encodeName(QDir(dir).filePath(w->tmpBase + ".shp"));
    w->ds.reset(drv->Create(tmpPath.constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!w->ds) throw MapError("cannot create shapefile");
    const OGRwkbGeometryType gt = shapeType == moPoint ? wkbPoint : shapeType == moLine ? wkbLineString : wkbPolygon;
    char** opts = CSLSetNameValue(nullptr, "ENCODING", "UTF-8");
    w->layer = w->ds->CreateLayer(w->tmpBase.toUtf8().constData(), nullptr, gt, opts);
    CSLDestroy(opts);
    if (!w->layer) throw MapError("cannot create layer");

    std::shared_ptr<GeoDataset> d(new GeoDataset());
    d->path_ = fi.absoluteFilePath();
    d->shapeType_ = shapeType;
    d->srs_ = srs;
    for (const FieldDef& f : desc.fields()) {
        if (f.name.isEmpty()) throw MapError("field without a name");
        OGRFieldType t = f.type == moString ? OFTString : f.type == moLong ? OFTInteger : OFTReal;
        OGRFieldDefn fd(f.name.toUtf8().constData(), t);
        if (f.width > 0) fd.SetWidth(f.width);
        if (f.precision > 0) fd.SetPrecision(f.precision);
        if (w->layer->CreateField(&fd) != OGRERR_NONE) throw MapError("cannot create field");
        d->fields_.push_back(f);
    }
    d->writer_ = std::move(w);
    d->buildIndex();
    return d;
}

void GeoDataset::append(const ShapePtr& shape, const std::vector<QVariant>& values)
{
    if (!writer_ || writer_->committed) throw MapError("dataset is not being edited");
    QuietErrors quiet;
    OGRFeatureUniquePtr feat(OGRFeature::CreateFeature(writer_->layer->GetLayerDefn()));
    if (shape) {
        GeomPtr g = shape->geom();
        OGRGeometry* og = OGRGeometryFactory::createFromGEOS(geosContext(), const_cast<GEOSGeometry*>(g.get()));
        if (!og) throw MapError("cannot convert geometry");
        feat->SetGeometryDirectly(og);
    }
    for (size_t c = 0; c < fields_.size() && c < values.size(); ++c) {
        const QVariant& v = values[c];
        if (!v.isValid() || v.isNull()) continue;
        if (fields_[c].type == moString) feat->SetField(int(c), v.toString().toUtf8().constData());
        else if (fields_[c].type == moLong) feat->SetField(int(c), GIntBig(v.toLongLong()));
        else {
            bool ok = false;
            double x = v.toDouble(&ok);
            if (!ok) throw MapError("not a number");
            feat->SetField(int(c), x);
        }
    }
    if (writer_->layer->CreateFeature(feat.get()) != OGRERR_NONE || CPLGetLastErrorType() == CE_Failure)
        throw MapError("cannot write record");
    Record rec;
    rec.type = shape ? shape->shapeType() : moNullShape;
    if (shape) {
        rec.geom = shape->geom();
        rec.env = shape->envelope();
    }
    extent_.expand(rec.env);
    lowest_.clear();
    records_.push_back(std::move(rec));
    for (size_t c = 0; c < fields_.size(); ++c) values_.push_back(c < values.size() ? values[c] : QVariant());
}

void GeoDataset::stopEditing()
{
    if (!writer_ || writer_->committed) return;
    QuietErrors quiet;
    Writer& w = *writer_;
    if (w.layer->SyncToDisk() != OGRERR_NONE) throw MapError("cannot write shapefile");
    w.ds.reset();  // closes and flushes the files
    if (CPLGetLastErrorType() == CE_Failure) throw MapError("cannot write shapefile");
    QDir dir(w.dir);
    if (!w.prjText.isEmpty()) {
        QFile prj(dir.filePath(w.tmpBase + ".prj"));
        if (!prj.open(QIODevice::WriteOnly) || prj.write(w.prjText.toUtf8()) < 0 || !prj.flush())
            throw MapError("cannot write projection file");
    }
    // Replace the old set as a whole: no file of it may stay beside the new one.
    // Everything is checked before anything is touched, so a set that cannot
    // be put in place leaves the directory as it was.
    static const QStringList setExts = {"shp", "shx", "dbf", "prj", "cpg", "qix", "sbn", "sbx", "qmd", "xml"};
    QStringList oldFiles;
    for (const QString& f : dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System)) {
        QFileInfo fi(dir.filePath(f));
        if (fi.completeBaseName().compare(w.base, Qt::CaseInsensitive) != 0 || !setExts.contains(fi.suffix().toLower()))
            continue;
        if (!fi.isFile()) throw MapError("the name of the shapefile is taken");
        oldFiles << f;
    }
    if (!QFileInfo(w.dir).isWritable()) throw MapError("the directory cannot be written");
    for (const QString& f : oldFiles)
        if (!dir.remove(f)) throw MapError("cannot replace the existing shapefile");
    QStringList placed;
    for (const QString& f : w.tmpFiles()) {
        const QString dest = w.base + "." + QFileInfo(f).suffix().toLower();
        if (!dir.rename(f, dest)) {
            for (const QString& p : placed) dir.remove(p);
            throw MapError("cannot put the shapefile in place");
        }
        placed << dest;
    }
    w.committed = true;
    writer_.reset();
}
